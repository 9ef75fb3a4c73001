#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parse/svg_component.h"
#include "parse/svg_definition.h"
#include "render/recording_canvas.h"
#include "tessaline/svg_file.h"

namespace tessaline {
namespace {

using Calls = std::vector<std::string>;

// A shape whose outline is whatever the test says.
class FakeShape final : public PresentationAttributeSVGComponent {
 public:
  FakeShape(PresentationAttributes attributes, DrawPathResult outline)
      : PresentationAttributeSVGComponent("fake", std::move(attributes)),
        outline_(std::move(outline)) {}
  DrawPathResult getDrawPath() const override { return outline_; }

 private:
  DrawPathResult outline_;
};

Path square(double size = 10) {
  Path p;
  p.moveTo({0, 0});
  p.lineTo({size, 0});
  p.lineTo({size, size});
  p.lineTo({0, size});
  p.close();
  return p;
}

// 128 view-box units on the 256-pixel canvas: everything is scaled by exactly 2.
constexpr Rect kBox{0, 0, 128, 128};
const std::string kSquareAt2x = "M 0 0 L 20 0 L 20 20 L 0 20 Z";

struct Drawn {
  std::optional<std::string> result;
  Calls calls;
  testing::RecordingCanvas canvas;
};

Drawn draw(const PresentationAttributes& own, DrawPathResult outline,
           const PresentationAttributes* inherited = nullptr, std::optional<Rect> viewBox = kBox) {
  const SVGFile file("");
  const SVGDefinition definition;
  FakeShape shape(own, std::move(outline));
  Drawn drawn;
  drawn.result = shape.draw(drawn.canvas, viewBox, file, definition, inherited);
  drawn.calls = drawn.canvas.calls;
  return drawn;
}

PresentationAttributes fill(std::string value) {
  PresentationAttributes a;
  a.fill = std::move(value);
  return a;
}

TEST(ComponentDrawing, FillThenStrokeBetweenOneSaveAndOneRestore) {
  PresentationAttributes a = fill("#ff0000");
  a.stroke = "#0000ff";
  a.strokeWidth = "3";
  const Drawn d = draw(a, {square(), std::nullopt, std::nullopt});
  EXPECT_EQ(d.result, std::nullopt);
  EXPECT_EQ(d.calls,
            (Calls{"clip -", "fill default " + kSquareAt2x, "stroke " + kSquareAt2x, "restore"}));
  ASSERT_EQ(d.canvas.fills.size(), 1u);
  EXPECT_EQ(d.canvas.fills[0].color, (Color{1, 0, 0, 1}));
  ASSERT_EQ(d.canvas.strokes.size(), 1u);
  EXPECT_EQ(d.canvas.strokes[0].strokeWidth, 6.0f) << "stroke width in canvas pixels";
}

TEST(ComponentDrawing, OutlineIsTransformedAndKeepsItsFillRule) {
  PresentationAttributes a = fill("#ff0000");
  a.transform = "translate(5 0)";
  const Drawn d = draw(a, {square(), std::nullopt, FillRule::EvenOdd});
  // The transform list acts first, then the view-box scale.
  EXPECT_EQ(d.calls, (Calls{"clip -", "fill evenodd M 10 0 L 30 0 L 30 20 L 10 20 Z", "restore"}));
}

TEST(ComponentDrawing, NothingToPaintStillBalancesTheState) {
  const Drawn d = draw(fill("none"), {square(), std::nullopt, std::nullopt});
  EXPECT_EQ(d.result, std::nullopt);
  EXPECT_EQ(d.calls, (Calls{"clip -", "restore"}));
}

TEST(ComponentDrawing, OutlineWithAMessageIsDrawnAndReported) {
  const Drawn d = draw(fill("#00ff00"), {square(), "L/l command must have an Y value", {}});
  EXPECT_EQ(d.result, "L/l command must have an Y value");
  EXPECT_EQ(d.calls, (Calls{"clip -", "fill default " + kSquareAt2x, "restore"}));
}

TEST(ComponentDrawing, OwnStylingWinsOverInherited) {
  PresentationAttributes inherited = fill("#00ff00");
  inherited.stroke = "#0000ff";
  inherited.transform = "translate(100 100)";
  PresentationAttributes own = fill("#ff0000");
  own.transform = "translate(5 0)";
  const Drawn d = draw(own, {square(), std::nullopt, std::nullopt}, &inherited);
  // Own fill and transform (which replaces the inherited one), inherited stroke.
  EXPECT_EQ(d.calls, (Calls{"clip -", "fill default M 10 0 L 30 0 L 30 20 L 10 20 Z",
                            "stroke M 10 0 L 30 0 L 30 20 L 10 20 Z", "restore"}));
  ASSERT_EQ(d.canvas.fills.size(), 1u);
  EXPECT_EQ(d.canvas.fills[0].color, (Color{1, 0, 0, 1}));
}

TEST(ComponentDrawing, ClipFollowsTheShapeTransform) {
  PresentationAttributes a = fill("#ff0000");
  a.transform = "translate(5 0)";
  a.clipPath = "path('M0 0 L10 0 L10 10 Z')";
  const Drawn d = draw(a, {square(), std::nullopt, std::nullopt});
  EXPECT_EQ(d.result, std::nullopt);
  EXPECT_EQ(d.calls, (Calls{"clip M 10 0 L 30 0 L 30 20 Z",
                            "fill default M 10 0 L 30 0 L 30 20 L 10 20 Z", "restore"}));
}

TEST(ComponentDrawing, UntransformableClipCountsAsNone) {
  // 1e40 does not fit a 32-bit float: the clip outline holds an infinite coordinate.
  PresentationAttributes a = fill("#ff0000");
  a.clipPath = "path('M0 0 L10000000000000000000000000000000000000000 0 L0 10 Z')";
  const Drawn d = draw(a, {square(), std::nullopt, std::nullopt});
  EXPECT_EQ(d.result, std::nullopt);
  EXPECT_EQ(d.calls, (Calls{"clip -", "fill default " + kSquareAt2x, "restore"}));
}

TEST(ComponentDrawing, FirstFailingStepReturnsAndDrawsNothing) {
  Path huge;  // finite, but not once scaled by 2
  huge.moveTo({0, 0});
  huge.lineTo({1e308, 0});
  struct Case {
    const char* expected;
    std::optional<Rect> viewBox;
    std::optional<std::string> fill, transform, clip;
    DrawPathResult outline;
  };
  const DrawPathResult good{square(), std::nullopt, std::nullopt};
  const DrawPathResult none{std::nullopt, "own message", std::nullopt};
  const DrawPathResult overflow{huge, std::nullopt, std::nullopt};
  const Case cases[] = {
      {"Invalid ViewBox", std::nullopt, "red", "skewX(1)", "bad", none},
      {"Invalid transform function $functionName", kBox, "red", "skewX(1)", "bad", none},
      {"Invalid path", kBox, "red", std::nullopt, "bad", none},
      {"Invalid color", kBox, "red", std::nullopt, "bad", overflow},
      {"Unable to transform", kBox, "#fff", std::nullopt, "bad", overflow},
      {"Invalid Clip Path Pointer", kBox, "#fff", std::nullopt, "bad", good},
      {"Unable to find clip path for key", kBox, "#fff", std::nullopt, "url(#nowhere)", good},
      {"Unable to find clip path data", kBox, "#fff", std::nullopt, "path('M0 0 L1 1", good},
      {"SVG must start with m or M", kBox, "#fff", std::nullopt, "path('L0 0')", good},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.expected);
    PresentationAttributes a;
    a.fill = c.fill;
    a.transform = c.transform;
    a.clipPath = c.clip;
    const Drawn d = draw(a, c.outline, nullptr, c.viewBox);
    EXPECT_EQ(d.result, c.expected);
    EXPECT_EQ(d.calls, Calls{});
  }
}

TEST(ComponentDrawingDeathTest, ClipDataEndingBeforeItStartsStops) {
  PresentationAttributes a = fill("#ff0000");
  a.clipPath = "path(')";
  EXPECT_DEATH(draw(a, {square(), std::nullopt, std::nullopt}), "fatal error: clip-path");
}

}  // namespace
}  // namespace tessaline
