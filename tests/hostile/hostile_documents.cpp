#include "hostile_documents.h"

#include <array>
#include <string>

namespace tessaline::testing {
namespace {

constexpr int kDepth = 100000;
constexpr int kManySymbols = 100000;
constexpr std::size_t kLargeBytes = 50u << 20;
constexpr std::size_t kLongPathChars = 1000000;

constexpr std::array kCases{
    HostileCase{HostileKind::LargeDocument, "large-document", "icon-0"},
    HostileCase{HostileKind::ManySymbols, "many-symbols", "s-99999"},
    HostileCase{HostileKind::LongPath, "long-path", "long"},
    HostileCase{HostileKind::DeepGroups, "deep-groups", "deep"},
    HostileCase{HostileKind::DeepDefs, "deep-defs", "deep"},
    HostileCase{HostileKind::DeepClipPaths, "deep-clip-paths", "deep"},
    HostileCase{HostileKind::DeepUnknown, "deep-unknown", "deep"},
};

constexpr std::string_view kMarker = "<rect x='0' y='0' width='24' height='24' fill='#ff0000'/>";

// An ordinary icon of about 1 KB: strokes, fills, a group with a transform, an arc.
void appendIcon(std::string& out, std::size_t n) {
  out += "<symbol id='icon-" + std::to_string(n) + "' viewBox='0 0 24 24'>";
  out +=
      "<g transform='translate(1 1)' stroke='#202020' stroke-width='2' fill='none' "
      "stroke-linecap='round' stroke-linejoin='round'>";
  out += "<path d='M3 12h18M12 3v18'/><circle cx='12' cy='12' r='9'/>";
  out += "<path d='M4.5 4.5a10 10 0 0 1 15 0l-2 3c-1.5-1.2-3.2-1.8-5-1.8s-3.5.6-5 1.8z'/>";
  out += "</g><rect x='2' y='2' width='6' height='6' rx='1.5' fill='#3060c0' opacity='0.8'/>";
  out += "<polygon points='14 14 22 14 18 22' fill='#c03030'/>";
  out += "<ellipse cx='6' cy='18' rx='3' ry='2' fill='#30a030'/>";
  out += "<path d='M2 22c2-4 6-4 8 0s6 4 8 0 4-4 4-4' stroke='#000' fill='none'/>";
  out += "<line x1='1' y1='1' x2='23' y2='23' stroke='#888' stroke-width='0.5'/>";
  out += "</symbol>\n";
}

void appendNested(std::string& out, std::string_view open, std::string_view close,
                  std::string_view inner) {
  out.reserve(out.size() + kDepth * (open.size() + close.size()) + inner.size());
  for (int i = 0; i < kDepth; ++i) out += open;
  out += inner;
  for (int i = 0; i < kDepth; ++i) out += close;
}

std::string hostileBody(HostileKind kind) {
  std::string out;
  switch (kind) {
    case HostileKind::LargeDocument:
      out.reserve(kLargeBytes + 4096);
      for (std::size_t n = 0; out.size() < kLargeBytes; ++n) appendIcon(out, n);
      break;
    case HostileKind::ManySymbols:
      for (int n = 0; n < kManySymbols; ++n) {
        out += "<symbol id='s-" + std::to_string(n) +
               "' viewBox='0 0 24 24'><circle cx='12' cy='12' r='6'/></symbol>\n";
      }
      break;
    case HostileKind::LongPath: {
      // A zigzag of relative lines, closed right after its last number.
      std::string d = "M0 12";
      d.reserve(kLongPathChars + 16);
      while (d.size() + 1 < kLongPathChars) d += "l.01 1 .01-1";
      d += 'z';
      out += "<symbol id='long' viewBox='0 0 24 24'><path fill='none' stroke='#000' d='" + d +
             "'/></symbol>\n";
      break;
    }
    case HostileKind::DeepGroups:
      out += "<symbol id='deep' viewBox='0 0 24 24'>";
      appendNested(out, "<g fill='#0000ff'>", "</g>", "<circle cx='12' cy='12' r='6'/>");
      out += "</symbol>\n";
      break;
    case HostileKind::DeepDefs:
      out += "<symbol id='deep' viewBox='0 0 24 24'>";
      appendNested(out, "<defs>", "</defs>", "<circle id='c' cx='12' cy='12' r='6'/>");
      out += "<use href='#c' fill='#0000ff'/></symbol>\n";
      break;
    case HostileKind::DeepClipPaths:
      out += "<symbol id='deep' viewBox='0 0 24 24'><defs><clipPath id='k'>";
      appendNested(out, "<clipPath>", "</clipPath>", "<circle cx='12' cy='12' r='6'/>");
      out +=
          "</clipPath></defs><rect width='24' height='24' fill='#0000ff' "
          "clip-path='url(#k)'/></symbol>\n";
      break;
    case HostileKind::DeepUnknown:
      out += "<symbol id='deep' viewBox='0 0 24 24'>";
      appendNested(out, "<x>", "</x>", "<circle cx='12' cy='12' r='6' fill='#0000ff'/>");
      out += "</symbol>\n";
      break;
  }
  return out;
}

}  // namespace

std::span<const HostileCase> hostileCases() {
  return kCases;
}

std::string makeHostileDocument(HostileKind kind) {
  std::string document = "<svg xmlns='http://www.w3.org/2000/svg'>\n";
  document += "<symbol id='first' viewBox='0 0 24 24'>";
  document += kMarker;
  document += "</symbol>\n";
  document += hostileBody(kind);
  document += "<symbol id='last' viewBox='0 0 24 24'>";
  document += kMarker;
  document += "</symbol>\n</svg>\n";
  return document;
}

}  // namespace tessaline::testing
