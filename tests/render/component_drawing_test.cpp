// How a shape draws: styling, transform, outline, paint and clip are worked out in that order,
// the first failure draws nothing, and the paints go between one save and one restore; and where
// a clip outline comes from.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parse/parse_test_helpers.h"
#include "render/recording_canvas.h"
#include "tessaline/svg_file.h"

namespace tessaline {
namespace {

using Calls = std::vector<std::string>;

// 128 view-box units on the 256-pixel canvas: everything is scaled by exactly 2. The symbol's
// defs hold the clip paths the values below name.
const SVGFile& document() {
  static const SVGFile file(
      "<svg><symbol id='s' viewBox='0 0 128 128'><defs>"
      "<clipPath id='c'><rect x='1' y='1' width='4' height='4'/></clipPath>"
      "<rect id='c' x='9' y='9' width='9' height='9'/>"  // a later non-clip of the same id
      "<clipPath id='a '><rect x='2' y='2' width='4' height='4'/></clipPath>"
      "<clipPath id='twice'><rect x='1' y='1' width='4' height='4'/></clipPath>"
      "<clipPath id='twice'><rect x='2' y='2' width='4' height='4'/></clipPath>"
      "<clipPath id='emptied'><rect x='1' y='1' width='4' height='4'/></clipPath>"
      "<clipPath id='emptied'></clipPath>"
      "<clipPath id='use-first'><use href='#c'/><rect width='4' height='4'/></clipPath>"
      "<clipPath id='moved'><rect x='1' y='1' width='4' height='4' transform='scale(3)'/>"
      "</clipPath></defs>"
      "<clipPath id='outside'><rect x='1' y='1' width='4' height='4'/></clipPath>"
      "</symbol></svg>");
  return file;
}

struct Drawn {
  std::optional<std::string> result;
  testing::RecordingCanvas canvas;
};

// Draws `element`, read as the content of a symbol, as though it stood in the symbol above.
Drawn draw(const std::string& element, bool inherit = false,
           const std::optional<Rect>& box = Rect{0, 0, 128, 128}) {
  PresentationAttributes inherited;
  inherited.fill = "#00ff00", inherited.transform = "translate(100 100)";
  inherited.stroke = "#0000ff", inherited.strokeWidth = "3";
  const auto parsed = testing::parseSymbolBody(element);
  Drawn drawn;
  drawn.result = parsed->svgComponents.at(0)->draw(drawn.canvas, box, document(),
                                                   *document().symbolDefinitions.at("s"),
                                                   inherit ? &inherited : nullptr);
  return drawn;
}

TEST(ComponentDrawing, StepsInOrderAndTheFirstFailureDrawsNothing) {
  const std::string square = "M 0 0 L 20 0 L 20 20 L 0 20 Z";
  const std::string moved = "M 10 0 L 30 0 L 30 20 L 10 20 Z";  // translate(5 0) first
  // Each failing element also carries what would make every later step fail.
  const std::string failing = " fill='red' clip-path='bad'/>";
  const std::string big = "1" + std::string(40, '0');  // 1e40: beyond a 32-bit float
  const std::string skewed = "<circle cx='1' r='1' transform='skewX(1)'" + failing;
  const std::string huge = "<path d='M0 0 L" + big + " 0'";
  struct Case {
    std::string element;
    std::optional<std::string> result;
    Calls calls;
    bool inherit = false;
    std::optional<Rect> box = Rect{0, 0, 128, 128};
  };
  const Case cases[] = {
      {"<rect width='10' height='10' fill='#ff0000' stroke='#0000ff' stroke-width='3'/>",
       {},
       {"clip -", "fill default " + square, "stroke " + square, "restore"}},
      // Nothing to paint still balances the state.
      {"<rect width='10' height='10' fill='none'/>", {}, {"clip -", "restore"}},
      // An outline that came with a message is drawn and reported.
      {"<path d='M0 0 H10 V10 H0 Z L5' fill='#ff0000'/>",
       "L/l command must have an Y value",
       {"clip -", "fill winding " + square, "restore"}},
      // Own fill and transform (replacing the inherited one), inherited stroke.
      {"<path d='M0 0 H10 V10 H0 Z' fill='#ff0000' fill-rule='evenodd' transform='translate(5)'/>",
       {},
       {"clip -", "fill evenodd " + moved, "stroke " + moved, "restore"},
       true},
      // The clip follows the shape's transform.
      {"<rect width='10' height='10' fill='#ff0000' transform='translate(5 0)' "
       "clip-path=\"path('M0 0 L10 0 L10 10 Z')\"/>",
       {},
       {"clip M 10 0 L 30 0 L 30 20 Z", "fill default " + moved, "restore"}},
      // An untransformable clip outline counts as none.
      {"<rect width='10' height='10' fill='#ff0000' clip-path=\"path('M0 0 L" + big +
           " 0 L0 10 Z')\"/>",
       {},
       {"clip -", "fill default " + square, "restore"}},
      // The first failure draws nothing; a circle's own outline message is dropped.
      {skewed, "Invalid ViewBox", {}, false, {}},
      {skewed, "Invalid transform function $functionName", {}},
      {"<circle cx='1' r='1'" + failing, "Invalid path", {}},
      {huge + failing, "Invalid color", {}},
      {huge + " fill='#fff' clip-path='bad'/>", "Unable to transform", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.element);
    const Drawn d = draw(c.element, c.inherit, c.box);
    EXPECT_EQ(d.result, c.result);
    EXPECT_EQ(d.canvas.calls, c.calls);
    for (const FillPaint& fill : d.canvas.fills) EXPECT_EQ(fill.color, (Color{1, 0, 0, 1}));
    for (const StrokePaint& stroke : d.canvas.strokes) {
      EXPECT_EQ(stroke.strokeWidth, 6.0f) << "stroke width in canvas pixels";
    }
  }
}

TEST(ClipPaths, ClipPathValues) {
  // Only the first child of a clip path counts, as its bare outline (no transform of its own).
  const std::string first = "clip M 2 2 L 10 2 L 10 10 L 2 10 Z";
  const std::string second = "clip M 4 4 L 12 4 L 12 12 L 4 12 Z";
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {first, {"url(#c) and more", "url(#moved)"}},
      {second, {"url(#a )", "url(#twice)"}},  // keys keep their blanks; the last match decides
      // Only the defs are searched.
      {"Unable to find clip path for key",
       {"url(#c", "url(#C)", "url(#emptied)", "url(#use-first)", "url(#outside)"}},
      // A combining mark makes the character it follows another one: "#", ")" and "'" included.
      {"Unable to find clip path for key", {"url(#c)\u0301"}},
      {"Invalid Clip Path Pointer",
       {"URL(#c)", "none", "url(#\u0301c)", "path('\u0301M0 0 L10 0 L10 10 Z')"}},
      {"Unable to find clip path data", {"path('M0 0 L10 0", "path('M0 0 L10 0 L10 10 Z')\u0301"}},
      {"SVG must start with m or M", {"path('L0 0')"}},
      // Unlike a shape's own data, inline clip data is all or nothing.
      {"L/l command must have an X value", {"path('M0 0 L10 0 L')"}},
  };
  for (const auto& [expected, values] : cases) {
    for (const std::string& value : values) {
      SCOPED_TRACE(value);
      const Drawn d =
          draw("<rect width='10' height='10' fill='#ff0000' clip-path=\"" + value + "\"/>");
      const bool clipped = expected.starts_with("clip ");
      EXPECT_EQ(d.result, clipped ? std::nullopt : std::optional(expected));
      EXPECT_EQ(d.canvas.calls,
                (clipped ? Calls{expected, "fill default M 0 0 L 20 0 L 20 20 L 0 20 Z", "restore"}
                         : Calls{}));
    }
  }
}

TEST(ClipPathsDeathTest, InlineDataEndingInsideItsOpeningStops) {
  EXPECT_DEATH(draw("<rect width='10' height='10' fill='#ff0000' clip-path=\"path(')M0 0')\"/>"),
               "fatal error: clip-path");
}

}  // namespace
}  // namespace tessaline
