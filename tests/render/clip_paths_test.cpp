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

std::shared_ptr<SVGComponent> rect(std::string id, float x, float size) {
  return std::make_shared<RectComponent>(std::move(id), PresentationAttributes(), x, x, size, size,
                                         0.0f, 0.0f);
}

std::shared_ptr<ClipPathComponent> clipPath(std::string id,
                                            std::vector<std::shared_ptr<SVGComponent>> children) {
  auto definition = std::make_shared<SVGDefinition>();
  definition->svgComponents = std::move(children);
  return std::make_shared<ClipPathComponent>(std::move(id), std::move(definition));
}

// A definition whose `defs` hold the given components.
std::shared_ptr<SVGDefinition> withDefs(std::vector<std::shared_ptr<SVGComponent>> defs) {
  auto definition = std::make_shared<SVGDefinition>();
  definition->svgSubDefinitions = std::make_shared<SVGDefinition>();
  definition->svgSubDefinitions->svgComponents = std::move(defs);
  return definition;
}

std::string dump(const std::optional<Path>& path) {
  return path ? path->dump(3) : "none";
}

TEST(ClipPaths, AClipPathIsNeverPainted) {
  const SVGFile file("");
  const SVGDefinition owner;
  testing::RecordingCanvas canvas;
  const auto clip = clipPath("c", {rect("r", 0, 4)});
  EXPECT_EQ(clip->draw(canvas, Rect{0, 0, 24, 24}, file, owner, nullptr),
            "Invalid Draw call to clip path");
  EXPECT_EQ(canvas.calls, Calls{});
}

TEST(ClipPaths, OnlyTheFirstChildShapeCounts) {
  const std::string firstRect = "M 1 1 L 5 1 L 5 5 L 1 5 Z";
  EXPECT_EQ(dump(clipPath("c", {rect("a", 1, 4), rect("b", 10, 4)})->getClipPath()), firstRect);
  EXPECT_EQ(dump(clipPath("c", {})->getClipPath()), "none");
  // A first child that is not a shape gives nothing, even when a shape follows it.
  auto use = std::make_shared<UseComponent>("u", "#a", "", PresentationAttributes());
  EXPECT_EQ(dump(clipPath("c", {use, rect("a", 1, 4)})->getClipPath()), "none");
  // The child's own transform is not applied.
  PresentationAttributes moved;
  moved.transform = "translate(100 100)";
  auto movedRect = std::make_shared<RectComponent>("m", moved, 1.0f, 1.0f, 4.0f, 4.0f, 0.0f, 0.0f);
  EXPECT_EQ(dump(clipPath("c", {movedRect})->getClipPath()), firstRect);
}

TEST(ClipPaths, LookupByKeyOnlyAmongDefsAndTheLastMatchDecides) {
  {
    SCOPED_TRACE("no defs");
    SVGDefinition definition;
    definition.svgComponents = {clipPath("c", {rect("a", 1, 4)})};  // drawn, not in defs
    EXPECT_EQ(dump(definition.getClipPath("c")), "none");
  }
  {
    SCOPED_TRACE("exact key");
    const auto definition = withDefs({rect("c", 9, 9), clipPath("c", {rect("a", 1, 4)})});
    EXPECT_EQ(dump(definition->getClipPath("c")), "M 1 1 L 5 1 L 5 5 L 1 5 Z");
    EXPECT_EQ(dump(definition->getClipPath("C")), "none");
    EXPECT_EQ(dump(definition->getClipPath("c ")), "none");
  }
  {
    SCOPED_TRACE("duplicates");
    const auto later =
        withDefs({clipPath("c", {rect("a", 1, 4)}), clipPath("c", {rect("b", 2, 4)})});
    EXPECT_EQ(dump(later->getClipPath("c")), "M 2 2 L 6 2 L 6 6 L 2 6 Z");
    // The last one decides even when it has no outline.
    const auto empty = withDefs({clipPath("c", {rect("a", 1, 4)}), clipPath("c", {})});
    EXPECT_EQ(dump(empty->getClipPath("c")), "none");
  }
}

// What a shape with `clip-path` `value` draws inside a definition whose defs hold clip "c".
struct Clipped {
  std::optional<std::string> result;
  Calls calls;
};

Clipped drawClipped(const std::string& value) {
  const SVGFile file("");
  const auto owner =
      withDefs({clipPath("c", {rect("a", 1, 4)}), clipPath("a ", {rect("b", 2, 4)})});
  PresentationAttributes attributes;
  attributes.clipPath = value;
  const RectComponent shape("s", attributes, 0.0f, 0.0f, 8.0f, 8.0f, 0.0f, 0.0f);
  testing::RecordingCanvas canvas;
  // 256 view-box units on 256 pixels: coordinates come through unscaled.
  const auto result = shape.draw(canvas, Rect{0, 0, 256, 256}, file, *owner, nullptr);
  return {result, canvas.calls};
}

TEST(ClipPaths, ClipPathValues) {
  const std::string shape = "fill default M 0 0 L 8 0 L 8 8 L 0 8 Z";
  struct Case {
    const char* value;
    std::optional<std::string> error;
    std::string clip;  // the first canvas call when drawn
  };
  const Case cases[] = {
      {"url(#c)", std::nullopt, "clip M 1 1 L 5 1 L 5 5 L 1 5 Z"},
      {"url(#c) and more", std::nullopt, "clip M 1 1 L 5 1 L 5 5 L 1 5 Z"},
      {"url(#a )", std::nullopt, "clip M 2 2 L 6 2 L 6 6 L 2 6 Z"},  // the key keeps its blank
      {"url(#c", "Unable to find clip path for key", ""},
      {"url(#nowhere)", "Unable to find clip path for key", ""},
      {"URL(#c)", "Invalid Clip Path Pointer", ""},
      {" url(#c)", "Invalid Clip Path Pointer", ""},
      {"none", "Invalid Clip Path Pointer", ""},
      {"", "Invalid Clip Path Pointer", ""},
      {"path('M0 0 L10 0 L10 10 Z')", std::nullopt, "clip M 0 0 L 10 0 L 10 10 Z"},
      {"path('')", "SVG must start with m or M", ""},
      {"path('M0 0 L10 0", "Unable to find clip path data", ""},
      // Unlike a shape's own data, inline clip data is all or nothing.
      {"path('M0 0 L10 0 L')", "L/l command must have an X value", ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.value);
    const Clipped drawn = drawClipped(c.value);
    EXPECT_EQ(drawn.result, c.error);
    if (c.error) {
      EXPECT_EQ(drawn.calls, Calls{});
    } else {
      EXPECT_EQ(drawn.calls, (Calls{c.clip, shape, "restore"}));
    }
  }
}

TEST(ClipPathsDeathTest, InlineDataEndingInsideItsOpeningStops) {
  EXPECT_DEATH(drawClipped("path(')"), "fatal error");
  EXPECT_DEATH(drawClipped("path(')M0 0')"), "fatal error");
}

}  // namespace
}  // namespace tessaline
