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

// A symbol holding the red marker square.
std::string markerSymbol(std::string_view id) {
  return "<symbol id='" + std::string(id) +
         "' viewBox='0 0 24 24'><rect x='0' y='0' width='24' height='24' fill='#ff0000'/>"
         "</symbol>\n";
}

// An ordinary icon of about 1 KB: strokes, fills, a group with a transform, an arc.
void appendIcon(std::string& out, std::size_t n) {
  out += "<symbol id='icon-" + std::to_string(n) +
         "' viewBox='0 0 24 24'>"
         "<g transform='translate(1 1)' stroke='#202020' stroke-width='2' fill='none' "
         "stroke-linecap='round' stroke-linejoin='round'>"
         "<path d='M3 12h18M12 3v18'/><circle cx='12' cy='12' r='9'/>"
         "<path d='M4.5 4.5a10 10 0 0 1 15 0l-2 3c-1.5-1.2-3.2-1.8-5-1.8s-3.5.6-5 1.8z'/>"
         "</g><rect x='2' y='2' width='6' height='6' rx='1.5' fill='#3060c0' opacity='0.8'/>"
         "<polygon points='14 14 22 14 18 22' fill='#c03030'/>"
         "<ellipse cx='6' cy='18' rx='3' ry='2' fill='#30a030'/>"
         "<path d='M2 22c2-4 6-4 8 0s6 4 8 0 4-4 4-4' stroke='#000' fill='none'/>"
         "<line x1='1' y1='1' x2='23' y2='23' stroke='#888' stroke-width='0.5'/></symbol>\n";
}

// The symbol "deep": `before`, kDepth levels of `open` ... `close` around `inner`, then `after`.
std::string deepSymbol(std::string_view before, std::string_view open, std::string_view close,
                       std::string_view inner, std::string_view after) {
  std::string out = "<symbol id='deep' viewBox='0 0 24 24'>";
  out.reserve(kDepth * (open.size() + close.size()) + 256);
  out += before;
  for (int i = 0; i < kDepth; ++i) out += open;
  out += inner;
  for (int i = 0; i < kDepth; ++i) out += close;
  return out.append(after).append("</symbol>\n");
}

constexpr std::string_view kCircle = "<circle cx='12' cy='12' r='6'/>";

std::string hostileBody(HostileKind kind) {
  std::string out;
  switch (kind) {
    case HostileKind::LargeDocument:
      out.reserve(kLargeBytes + 4096);
      for (std::size_t n = 0; out.size() < kLargeBytes; ++n) appendIcon(out, n);
      return out;
    case HostileKind::ManySymbols:
      for (int n = 0; n < kManySymbols; ++n) {
        out += "<symbol id='s-" + std::to_string(n) + "' viewBox='0 0 24 24'>" +
               std::string(kCircle) + "</symbol>\n";
      }
      return out;
    case HostileKind::LongPath:
      // A zigzag of relative lines, closed right after its last number.
      out = "M0 12";
      out.reserve(kLongPathChars + 16);
      while (out.size() + 1 < kLongPathChars) out += "l.01 1 .01-1";
      return "<symbol id='long' viewBox='0 0 24 24'><path fill='none' stroke='#000' d='" + out +
             "z'/></symbol>\n";
    case HostileKind::DeepGroups:
      return deepSymbol("", "<g fill='#0000ff'>", "</g>", kCircle, "");
    case HostileKind::DeepDefs:
      return deepSymbol("", "<defs>", "</defs>", "<circle id='c' cx='12' cy='12' r='6'/>",
                        "<use href='#c' fill='#0000ff'/>");
    case HostileKind::DeepClipPaths:
      return deepSymbol("<defs><clipPath id='k'>", "<clipPath>", "</clipPath>", kCircle,
                        "</clipPath></defs><rect width='24' height='24' fill='#0000ff' "
                        "clip-path='url(#k)'/>");
    case HostileKind::DeepUnknown:
      return deepSymbol("", "<x>", "</x>", "<circle cx='12' cy='12' r='6' fill='#0000ff'/>", "");
  }
  return out;
}

}  // namespace

std::span<const HostileCase> hostileCases() {
  return kCases;
}

std::string makeHostileDocument(HostileKind kind) {
  return "<svg xmlns='http://www.w3.org/2000/svg'>\n" + markerSymbol("first") + hostileBody(kind) +
         markerSymbol("last") + "</svg>\n";
}

}  // namespace tessaline::testing
