#include "geometry/basic_shapes.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace tessaline {
namespace {

const PresentationAttributes kNoAttributes;

std::string outline(const DrawPathResult& result) {
  return result.path ? result.path->dump(6) : "<none>";
}

// Shapes other than path have no message and no fill rule of their own.
void expectOutlineOnly(const DrawPathResult& result, const Path& expected) {
  ASSERT_TRUE(result.path);
  EXPECT_EQ(*result.path, expected);
  EXPECT_FALSE(result.message);
  EXPECT_FALSE(result.fillRule);
}

// The fill rule is matched exactly and case-sensitively, anything else is non-zero; a data error
// comes with the partial outline and the rule. Nothing is cached: a second call gives the same.
TEST(PathComponent, ParsesItsDataAndMapsTheFillRule) {
  for (const auto& [fillRule, expected] :
       {std::pair{"evenodd", FillRule::EvenOdd}, {"EvenOdd", FillRule::Winding}}) {
    const DrawPathResult result =
        PathComponent("p", kNoAttributes, "M0 0 L10 0 L10 10 Z", fillRule).getDrawPath();
    EXPECT_EQ(outline(result), "M 0 0 L 10 0 L 10 10 Z") << fillRule;
    EXPECT_FALSE(result.message) << fillRule;
    EXPECT_EQ(result.fillRule, expected) << fillRule;
  }
  const PathComponent path("p", kNoAttributes, "M0 0 L10", "evenodd");
  const DrawPathResult result = path.getDrawPath();
  EXPECT_EQ(outline(result), "M 0 0");
  EXPECT_EQ(result.message, "L/l command must have an Y value");
  EXPECT_EQ(result.fillRule, FillRule::EvenOdd);
  EXPECT_EQ(outline(path.getDrawPath()), "M 0 0");
}

// Parsing leaves only a circle's or ellipse's cy absent; a rect's size and a polygon's points are
// checked here too. The polygon has its own spelling, with a lower-case p.
TEST(BasicShapes, MissingValuesGiveNoOutlineAndAMessage) {
  const std::optional<float> none;
  PolygonComponent polygon("t", "5 5", kNoAttributes);
  polygon.points.clear();
  const std::pair<DrawPathResult, const char*> cases[] = {
      {RectComponent("r", kNoAttributes, 0, 0, 10, none, 0, 0).getDrawPath(), "Missing Properties"},
      {CircleComponent("c", kNoAttributes, 1, none, 3).getDrawPath(), "Missing Properties"},
      {EllipseComponent("e", kNoAttributes, 1, none, 3, 4).getDrawPath(), "Missing Properties"},
      {polygon.getDrawPath(), "Missing properties"},
  };
  for (const auto& [result, message] : cases) {
    EXPECT_FALSE(result.path) << message;
    EXPECT_EQ(result.message, message);
    EXPECT_FALSE(result.fillRule);
  }
}

// A rect rounds all corners by rx alone; circles and ellipses are the ovals of their bounding
// boxes, with the box computed in 32 bits (0.1f + 0.1f, not the double sum of the widened
// values); a line is an open two-point path.
TEST(BasicShapes, OutlinesAreThoseOfThePlatformShapes) {
  expectOutlineOnly(RectComponent("r", kNoAttributes, 1, 2, 10, 20, 3, 9).getDrawPath(),
                    makeRoundedRectPath({1, 2, 10, 20}, 3));
  const double corner = 1.0f - 0.1f, size = 0.1f + 0.1f;
  expectOutlineOnly(CircleComponent("c", kNoAttributes, 1, 1, 0.1f).getDrawPath(),
                    makeOvalPath({corner, corner, size, size}));
  expectOutlineOnly(EllipseComponent("e", kNoAttributes, 10, 20, 4, 2).getDrawPath(),
                    makeOvalPath({6, 18, 8, 4}));
  Path line;
  line.moveTo({1, 2});
  line.lineTo({3, 4});
  expectOutlineOnly(LineComponent("l", kNoAttributes, 1, 2, 3, 4).getDrawPath(), line);
}

std::vector<Point> pointsOf(std::string_view text) {
  return PolygonComponent(std::nullopt, text, kNoAttributes).points;
}

// Components are read by the lenient number reader, an empty one (between adjacent spaces) as 0.
// How spaces and commas split the list is in api/svg_file_test.cpp (SVGFileReading).
TEST(PolygonComponent, ReadsEachComponentLeniently) {
  EXPECT_EQ(pointsOf("1  2 3"), (std::vector<Point>{{1, 0}, {2, 3}}));
  EXPECT_EQ(pointsOf("1.5px -2e1 abc 4"), (std::vector<Point>{{1.5, -20}, {0, 4}}));
  // A blank carrying a combining mark separates nothing.
  EXPECT_EQ(pointsOf("1 \u03012 3 \u03014"), (std::vector<Point>{{1, 3}}));
  // The outline is closed; a missing id is empty.
  const DrawPathResult result =
      PolygonComponent("t", "0 0 10 0 10 10", kNoAttributes).getDrawPath();
  EXPECT_EQ(outline(result), "M 0 0 L 10 0 L 10 10 Z");
  EXPECT_FALSE(result.message || result.fillRule);
  EXPECT_EQ(PolygonComponent(std::nullopt, "5 5", kNoAttributes).id, "");
}

using PolygonComponentDeathTest = ::testing::Test;

TEST(PolygonComponentDeathTest, AnOddNumberOfComponentsStops) {
  for (const char* text : {"0 0 10", "", "1,2,3", "1 2 ", "1 \u03012"}) {
    EXPECT_DEATH(pointsOf(text), "polygon point list read past its end") << text;
  }
}

}  // namespace
}  // namespace tessaline
