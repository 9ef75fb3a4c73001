// Renders the same symbols in one process with librsvg and with Tessaline and prints, per sprite,
// the median time per icon and the ratio librsvg / Tessaline, for rendering alone and for parsing
// plus rendering.
//
//   tessaline_rsvg_compare [--reps N] [--limit N] [--backend native|cairo] SPRITE.svg...
//
// Tessaline renders with its own (native) backend unless --backend cairo is given. Each time is
// the best of N repetitions (default 5); --limit takes only the first N symbols of each sprite.
//
// Each symbol is wrapped for librsvg as a standalone 256 x 256 document whose view box is the
// symbol's, with the symbol's own attributes on a group around its content, so both libraries
// draw the same geometry at the same scale. Tessaline is timed through its public entry
// (SVGFile, then getUIImageForKey), librsvg through rsvg_handle_render_document onto a fresh
// 256 x 256 cairo image surface: both times include creating and reading the canvas.
#include <cairo.h>
#include <librsvg/rsvg.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tessaline/tessaline.h"

namespace {

using Clock = std::chrono::steady_clock;

struct SymbolText {
  std::string key;
  std::string standalone;  // the symbol as its own SVG document, for librsvg
  std::string sprite;      // the symbol alone in a sprite, for Tessaline's parse + render
};

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

std::string attributeValue(const std::string& tag, const std::string& name) {
  for (char quote : {'"', '\''}) {
    const std::string needle = " " + name + "=" + quote;
    const auto at = tag.find(needle);
    if (at == std::string::npos) continue;
    const auto start = at + needle.size();
    const auto end = tag.find(quote, start);
    if (end != std::string::npos) return tag.substr(start, end - start);
  }
  return {};
}

// Symbols never nest, so a plain scan for "<symbol" ... "</symbol>" finds each one.
std::vector<SymbolText> extractSymbols(const std::string& text) {
  std::vector<SymbolText> symbols;
  std::size_t at = 0;
  while ((at = text.find("<symbol", at)) != std::string::npos) {
    const auto tagEnd = text.find('>', at);
    const auto close = text.find("</symbol>", tagEnd);
    if (tagEnd == std::string::npos || close == std::string::npos) break;
    std::string tag = text.substr(at, tagEnd - at);
    const std::string body = text.substr(tagEnd + 1, close - tagEnd - 1);
    SymbolText symbol;
    symbol.key = attributeValue(tag, "id");
    std::string viewBox = attributeValue(tag, "viewBox");
    if (viewBox.empty()) viewBox = "0 0 24 24";
    // The symbol's presentation attributes go on a group around its content.
    std::string group = "<g";
    for (const char* name : {"fill", "stroke", "stroke-width", "stroke-linecap", "stroke-linejoin",
                             "stroke-miterlimit", "opacity", "fill-opacity"}) {
      const std::string value = attributeValue(tag, name);
      if (!value.empty()) group += std::string(" ") + name + "=\"" + value + "\"";
    }
    group += ">";
    symbol.standalone =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" "
        "width=\"256\" height=\"256\" viewBox=\"" +
        viewBox + "\">" + group + body + "</g></svg>";
    symbol.sprite =
        "<svg xmlns=\"http://www.w3.org/2000/svg\">" + text.substr(at, close + 9 - at) + "</svg>";
    if (!symbol.key.empty()) symbols.push_back(std::move(symbol));
    at = close;
  }
  return symbols;
}

double median(std::vector<double> values) {
  if (values.empty()) return 0;
  std::sort(values.begin(), values.end());
  const std::size_t n = values.size();
  return n % 2 ? values[n / 2] : (values[n / 2 - 1] + values[n / 2]) / 2;
}

template <typename Work>
double bestMicroseconds(int reps, Work&& work) {
  double best = 1e300;
  for (int i = 0; i < reps; ++i) {
    const auto start = Clock::now();
    work();
    const std::chrono::duration<double, std::micro> elapsed = Clock::now() - start;
    best = std::min(best, elapsed.count());
  }
  return best;
}

void renderWithRsvg(RsvgHandle* handle) {
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 256, 256);
  cairo_t* cr = cairo_create(surface);
  const RsvgRectangle viewport{0, 0, 256, 256};
  rsvg_handle_render_document(handle, cr, &viewport, nullptr);
  cairo_destroy(cr);
  cairo_surface_flush(surface);
  cairo_surface_destroy(surface);
}

RsvgHandle* parseWithRsvg(const std::string& document) {
  return rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(document.data()),
                                   document.size(), nullptr);
}

}  // namespace

int main(int argc, char** argv) {
  int reps = 5;
  std::size_t limit = 0;
  tessaline::RasterBackend backend = tessaline::RasterBackend::Native;
  std::vector<std::string> files;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--reps" && i + 1 < argc) {
      reps = std::max(1, std::atoi(argv[++i]));
    } else if (arg == "--limit" && i + 1 < argc) {
      limit = static_cast<std::size_t>(std::atol(argv[++i]));
    } else if (arg == "--backend" && i + 1 < argc) {
      const std::string name = argv[++i];
      backend =
          name == "cairo" ? tessaline::RasterBackend::Cairo : tessaline::RasterBackend::Native;
    } else {
      files.push_back(arg);
    }
  }
  if (files.empty()) {
    std::fprintf(stderr,
                 "usage: tessaline_rsvg_compare [--reps N] [--limit N] [--backend native|cairo] "
                 "SPRITE.svg...\n");
    return 2;
  }

  std::printf("%-28s %7s | %10s %10s %7s | %10s %10s %7s\n", "sprite", "icons", "rsvg us",
              "tess us", "ratio", "rsvg+p us", "tess+p us", "ratio");
  for (const std::string& path : files) {
    const std::string text = readFile(path);
    std::vector<SymbolText> symbols = extractSymbols(text);
    if (limit && symbols.size() > limit) symbols.resize(limit);
    const tessaline::SVGFile sprite(text);

    std::vector<double> rsvgRender, tessRender, rsvgFull, tessFull;
    for (const SymbolText& symbol : symbols) {
      RsvgHandle* handle = parseWithRsvg(symbol.standalone);
      if (!handle) continue;
      rsvgRender.push_back(bestMicroseconds(reps, [&] { renderWithRsvg(handle); }));
      g_object_unref(handle);
      rsvgFull.push_back(bestMicroseconds(reps, [&] {
        RsvgHandle* fresh = parseWithRsvg(symbol.standalone);
        if (fresh) renderWithRsvg(fresh), g_object_unref(fresh);
      }));
      tessRender.push_back(
          bestMicroseconds(reps, [&] { (void)sprite.getUIImageForKey(symbol.key, backend); }));
      tessFull.push_back(bestMicroseconds(reps, [&] {
        const tessaline::SVGFile single(symbol.sprite);
        (void)single.getUIImageForKey(symbol.key, backend);
      }));
    }
    const double rr = median(rsvgRender), tr = median(tessRender);
    const double rf = median(rsvgFull), tf = median(tessFull);
    std::string name = path.substr(path.find_last_of('/') + 1);
    std::printf("%-28s %7zu | %10.1f %10.1f %6.2fx | %10.1f %10.1f %6.2fx\n", name.c_str(),
                rsvgRender.size(), rr, tr, tr > 0 ? rr / tr : 0, rf, tf, tf > 0 ? rf / tf : 0);
  }
  return 0;
}
