#include "style/paint.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <sstream>

#include "style/style_test_helpers.h"

namespace tessaline {
namespace {

// The paints resolved from "name=value|..." (a view box of two pixels per unit), in the order
// getPaints() gives them: "F" fill or "S" stroke, the colour as RRGGBBAA, "/" the paint alpha, and
// for a stroke its width in pixels, miter limit, cap and join; or the error.
std::string paintsFor(std::string_view attributes) {
  PresentationAttributes parsed;
  parsed.parse(testing::tag(attributes));
  const PresentationPaint paint =
      PresentationPaint::get(testing::SizeOnlyCanvas(256, 256), {0, 0, 128, 128}, parsed);
  if (paint.error) return *paint.error;
  std::ostringstream out;
  const auto color = [&](const char* kind, const Color& c, std::int64_t alpha) {
    char hex[9];
    std::snprintf(hex, sizeof hex, "%02lx%02lx%02lx%02lx", std::lround(c.red * 255),
                  std::lround(c.green * 255), std::lround(c.blue * 255),
                  std::lround(c.alpha * 255));
    out << (out.tellp() > 0 ? " " : "") << kind << hex << '/' << alpha;
  };
  for (const Paint* p : paint.getPaints()) {
    if (auto* fill = dynamic_cast<const FillPaint*>(p)) color("F", fill->color, fill->alpha);
    if (auto* stroke = dynamic_cast<const StrokePaint*>(p)) {
      color("S", stroke->color, stroke->alpha);
      out << " w" << stroke->strokeWidth << " m" << stroke->strokeMiter << " c"
          << static_cast<int>(stroke->strokeCap) << " j" << static_cast<int>(stroke->strokeLine);
    }
  }
  return out.str();
}

// Without fill or stroke the fill is black, but a stroke alone draws no implicit fill. "none" in
// any case drops a paint and an empty one counts as absent; an invalid colour (keywords other
// than currentColor included) drops every paint. Four characters double the last three.
// Opacity is multiplied by 255 in float, truncated and clamped; a fill opacity replaces it for
// the fill only. Widths are converted to pixels, the miter limit is at least 1, and caps (butt,
// round, square) and joins (miter, bevel, round) fold case but are not trimmed.
TEST(PresentationPaint, Resolves) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "F000000ff/255"},
      {"fill=#ff0000|stroke=#0000ff", "Fff0000ff/255 S0000ffff/255 w2 m4 c0 j0"},
      {"fill=NONE", ""},
      {"fill=|stroke=", "F000000ff/255"},
      {"fill=none|stroke=#fff", "Sffffffff/255 w2 m4 c0 j0"},
      {"fill=red|stroke=#000", "Invalid color"},
      {"fill=#000|stroke=red", "Invalid color"},
      {"fill=xabc", "Invalid color"},
      {"fill=rgb(0,0,0)", "Invalid color"},
      {"fill=#12345|stroke=none", "Invalid color"},
      {"fill=#abc", "Faabbccff/255"},
      {"fill=aabbcc", "Faabbccff/255"},
      {"fill=#aabbcc80", "Faabbcc80/255"},
      {"fill=CURRENTCOLOR", "F000000ff/255"},
      {"stroke=#000|opacity=0.999", "S000000ff/254 w2 m4 c0 j0"},
      {"fill=#fff|opacity=2", "Fffffffff/255"},
      {"fill=#fff|opacity=-0.001", "Fffffffff/0"},
      {"fill=#fff|opacity=abc", "Fffffffff/0"},
      {"fill=#fff|opacity=0.2px", "Fffffffff/51"},
      {"fill=#fff|opacity=1e39", "Fffffffff/255"},
      {"fill=#fff|opacity=-1e39", "Fffffffff/0"},
      {"fill=#fff|stroke=#000|opacity=0.5|fill-opacity=1",
       "Fffffffff/255 S000000ff/127 w2 m4 c0 j0"},
      {"fill=#fff|stroke=#000|fill-opacity=0.5", "Fffffffff/127 S000000ff/255 w2 m4 c0 j0"},
      {"fill=#fff|opacity=0.5|fill-opacity=", "Fffffffff/127"},
      {"fill-opacity=0.25", "F000000ff/63"},
      {"stroke=#000|stroke-width=2px|stroke-miterlimit=0.5", "S000000ff/255 w4 m1 c0 j0"},
      {"stroke=#000|stroke-width= 0.25|stroke-miterlimit=abc", "S000000ff/255 w0.5 m1 c0 j0"},
      {"stroke=#000|stroke-width=abc|stroke-miterlimit=1.5", "S000000ff/255 w0 m1.5 c0 j0"},
      {"stroke=#000|stroke-width=|stroke-miterlimit=", "S000000ff/255 w2 m4 c0 j0"},
      {"stroke=#000|stroke-linecap=Round|stroke-linejoin=bevel", "S000000ff/255 w2 m4 c1 j1"},
      {"stroke=#000|stroke-linecap=SQUARE|stroke-linejoin=ROUND", "S000000ff/255 w2 m4 c2 j2"},
      {"stroke=#000|stroke-linecap= round|stroke-linejoin=round ", "S000000ff/255 w2 m4 c0 j0"},
      {"stroke=#000|stroke-linecap=round|stroke-linejoin=ARCS", "S000000ff/255 w2 m4 c1 j0"},
  };
  for (const auto& [attributes, paints] : cases) {
    EXPECT_EQ(paintsFor(attributes), paints) << attributes;
  }
}

}  // namespace
}  // namespace tessaline
