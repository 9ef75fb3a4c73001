// How a shape draws: styling, transform, outline, paint and clip are worked out in that order,
// the first failure draws nothing, and the paints go between one save and one restore; and where
// a clip outline comes from.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "geometry/basic_shapes.h"
#include "parse/svg_component.h"
#include "parse/svg_definition.h"
#include "render/recording_canvas.h"
#include "tessaline/svg_file.h"

namespace tessaline {
namespace {

using Calls = std::vector<std::string>;
using Components = std::vector<std::shared_ptr<SVGComponent>>;

// The attributes the tests set, spelt with designated initializers.
struct Style {
  std::optional<std::string> fill = {}, transform = {}, stroke = {}, strokeWidth = {},
                             clipPath = {};
  PresentationAttributes get() const {
    PresentationAttributes a;
    a.fill = fill;
    a.transform = transform;
    a.stroke = stroke;
    a.strokeWidth = strokeWidth;
    a.clipPath = clipPath;
    return a;
  }
};

// A shape whose outline is whatever the test says.
class FakeShape final : public PresentationAttributeSVGComponent {
 public:
  FakeShape(PresentationAttributes attributes, DrawPathResult outline)
      : PresentationAttributeSVGComponent("fake", std::move(attributes)), outline_(outline) {}
  DrawPathResult getDrawPath() const override { return outline_; }

 private:
  DrawPathResult outline_;
};

std::shared_ptr<RectComponent> rect(std::string id, float at, float size, Style style = {}) {
  return std::make_shared<RectComponent>(std::move(id), style.get(), at, at, size, size, 0.f, 0.f);
}

std::shared_ptr<SVGComponent> clip(std::string id, Components children) {
  auto definition = std::make_shared<SVGDefinition>();
  definition->svgComponents = std::move(children);
  return std::make_shared<ClipPathComponent>(std::move(id), std::move(definition));
}

Path square() {
  return *rect("", 0, 10)->getDrawPath().path;
}

// 128 view-box units on the 256-pixel canvas: everything is scaled by exactly 2.
constexpr Rect kBox{0, 0, 128, 128};
const std::string kSquareAt2x = "M 0 0 L 20 0 L 20 20 L 0 20 Z";
const std::string kMoved = "M 10 0 L 30 0 L 30 20 L 10 20 Z";  // translate(5 0) first
const Style kInherited{
    .fill = "#00ff00", .transform = "translate(100 100)", .stroke = "#0000ff", .strokeWidth = "3"};

struct Drawn {
  std::optional<std::string> result;
  testing::RecordingCanvas canvas;
};

// Draws a shape inside a definition whose defs hold the clip paths the values below name.
Drawn draw(const Style& own, const DrawPathResult& outline = {square(), {}, {}},
           bool inherit = false, const std::optional<Rect>& box = kBox) {
  static const auto owner = [] {
    auto definition = std::make_shared<SVGDefinition>();
    definition->svgSubDefinitions = std::make_shared<SVGDefinition>();
    definition->svgSubDefinitions->svgComponents = {
        clip("c", {rect("a", 1, 4)}),
        rect("c", 9, 9),  // a later non-clip of the same id
        clip("a ", {rect("b", 2, 4)}),
        clip("twice", {rect("a", 1, 4)}),
        clip("twice", {rect("b", 2, 4)}),
        clip("emptied", {rect("a", 1, 4)}),
        clip("emptied", {}),
        clip("use-first", {std::make_shared<UseComponent>("u", "#a", "", PresentationAttributes()),
                           rect("a", 1, 4)}),
        clip("moved", {rect("a", 1, 4, {.transform = "translate(100 100)"})})};
    return definition;
  }();
  const SVGFile file("");
  const PresentationAttributes inherited = kInherited.get();
  Drawn drawn;
  drawn.result = FakeShape(own.get(), outline)
                     .draw(drawn.canvas, box, file, *owner, inherit ? &inherited : nullptr);
  return drawn;
}

void expectPaints(const Drawn& d) {
  for (const FillPaint& fill : d.canvas.fills) EXPECT_EQ(fill.color, (Color{1, 0, 0, 1}));
  for (const StrokePaint& stroke : d.canvas.strokes) {
    EXPECT_EQ(stroke.strokeWidth, 6.0f) << "stroke width in canvas pixels";
  }
}

TEST(ComponentDrawing, StepsInOrderAndTheFirstFailureDrawsNothing) {
  Path huge;  // finite, but not once scaled by 2
  huge.moveTo({0, 0});
  huge.lineTo({1e308, 0});
  const DrawPathResult none{std::nullopt, "own message", std::nullopt};
  const std::string fill = "fill default " + kSquareAt2x;
  const Style failing{.fill = "red", .transform = "skewX(1)", .clipPath = "bad"};
  struct Case {
    std::optional<std::string> result;
    Calls calls;
    Style own;
    DrawPathResult outline = {square(), {}, {}};
    bool inherit = false;
    std::optional<Rect> box = kBox;
  };
  const Case cases[] = {
      {{},
       {"clip -", fill, "stroke " + kSquareAt2x, "restore"},
       {.fill = "#ff0000", .stroke = "#0000ff", .strokeWidth = "3"}},
      {{},
       {"clip -", "fill evenodd " + kMoved, "restore"},
       {.fill = "#ff0000", .transform = "translate(5 0)"},
       {square(), {}, FillRule::EvenOdd}},
      {{}, {"clip -", "restore"}, {.fill = "none"}},  // nothing to paint still balances the state
      // An outline that came with a message is drawn and reported.
      {"L/l command must have an Y value",
       {"clip -", fill, "restore"},
       {.fill = "#ff0000"},
       {square(), "L/l command must have an Y value", {}}},
      // Own fill and transform (replacing the inherited one), inherited stroke.
      {{},
       {"clip -", "fill default " + kMoved, "stroke " + kMoved, "restore"},
       {.fill = "#ff0000", .transform = "translate(5 0)"},
       {square(), {}, {}},
       true},
      // The clip follows the shape's transform.
      {{},
       {"clip M 10 0 L 30 0 L 30 20 Z", "fill default " + kMoved, "restore"},
       {.fill = "#ff0000",
        .transform = "translate(5 0)",
        .clipPath = "path('M0 0 L10 0 L10 10 Z')"}},
      // 1e40 does not fit a 32-bit float: an untransformable clip outline counts as none.
      {{},
       {"clip -", fill, "restore"},
       {.fill = "#ff0000",
        .clipPath = "path('M0 0 L10000000000000000000000000000000000000000 0 L0 10 Z')"}},
      {"Invalid ViewBox", {}, failing, none, false, std::nullopt},
      {"Invalid transform function $functionName", {}, failing, none},
      {"Invalid path", {}, {.fill = "red", .clipPath = "bad"}, none},
      {"Invalid color", {}, {.fill = "red", .clipPath = "bad"}, {huge, {}, {}}},
      {"Unable to transform", {}, {.fill = "#fff", .clipPath = "bad"}, {huge, {}, {}}},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    SCOPED_TRACE(i);
    const Case& c = cases[i];
    const Drawn d = draw(c.own, c.outline, c.inherit, c.box);
    EXPECT_EQ(d.result, c.result);
    EXPECT_EQ(d.canvas.calls, c.calls);
    expectPaints(d);
  }
}

TEST(ClipPaths, ClipPathValues) {
  // Only the first child of a clip path counts, as its bare outline (no transform of its own).
  const std::string first = "clip M 2 2 L 10 2 L 10 10 L 2 10 Z";
  const std::string second = "clip M 4 4 L 12 4 L 12 12 L 4 12 Z";
  const std::pair<std::string, std::vector<std::string>> cases[] = {
      {first, {"url(#c)", "url(#c) and more", "url(#moved)"}},
      {second, {"url(#a )", "url(#twice)"}},  // keys keep their blanks; the last match decides
      {"Unable to find clip path for key",
       {"url(#c", "url(#nowhere)", "url(#C)", "url(#c )", "url(#emptied)", "url(#use-first)"}},
      {"Invalid Clip Path Pointer", {"URL(#c)", " url(#c)", "none", ""}},
      {"Unable to find clip path data", {"path('M0 0 L10 0"}},
      {"SVG must start with m or M", {"path('')", "path('L0 0')"}},
      // Unlike a shape's own data, inline clip data is all or nothing.
      {"L/l command must have an X value", {"path('M0 0 L10 0 L')"}},
  };
  for (const auto& [expected, values] : cases) {
    for (const std::string& value : values) {
      SCOPED_TRACE(value);
      const Drawn d = draw({.fill = "#ff0000", .clipPath = value});
      const bool clipped = expected.starts_with("clip ");
      EXPECT_EQ(d.result, clipped ? std::nullopt : std::optional(expected));
      EXPECT_EQ(d.canvas.calls,
                (clipped ? Calls{expected, "fill default " + kSquareAt2x, "restore"} : Calls{}));
    }
  }
  // Only the `defs` are searched.
  SVGDefinition noDefs;
  noDefs.svgComponents = {clip("c", {rect("a", 1, 4)})};
  EXPECT_EQ(noDefs.getClipPath("c"), std::nullopt);
}

TEST(ClipPathsDeathTest, InlineDataEndingInsideItsOpeningStops) {
  EXPECT_DEATH(draw({.fill = "#ff0000", .clipPath = "path(')"}), "fatal error: clip-path");
  EXPECT_DEATH(draw({.fill = "#ff0000", .clipPath = "path(')M0 0')"}), "fatal error: clip-path");
}

}  // namespace
}  // namespace tessaline
