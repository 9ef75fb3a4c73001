#include "geometry/basic_shapes.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <tuple>
#include <vector>

namespace tessaline {
namespace {

const PresentationAttributes kNoAttributes;

std::string outline(const DrawPathResult& result) {
  return result.path ? result.path->dump(6) : "<none>";
}

// The fill rule is matched exactly and case-sensitively, anything else is non-zero; a data error
// comes with the partial outline and the rule. Nothing is cached: a second call gives the same.
TEST(PathComponent, ParsesItsDataAndMapsTheFillRule) {
  for (const auto& [d, rule, path, message, expected] :
       {std::tuple{"M0 0 L10 0 L10 10 Z", "evenodd", "M 0 0 L 10 0 L 10 10 Z",
                   std::optional<std::string>(), FillRule::EvenOdd},
        {"M0 0 L10 0 L10 10 Z", "EvenOdd", "M 0 0 L 10 0 L 10 10 Z", std::nullopt,
         FillRule::Winding},
        {"M0 0 L10", "evenodd", "M 0 0", "L/l command must have an Y value", FillRule::EvenOdd}}) {
    const PathComponent component("p", kNoAttributes, d, rule);
    for (int call = 0; call < 2; ++call) {
      const DrawPathResult result = component.getDrawPath();
      EXPECT_EQ(outline(result), path) << d << rule;
      EXPECT_EQ(result.message, message) << d << rule;
      EXPECT_EQ(result.fillRule, expected) << d << rule;
    }
  }
}

// A rect rounds all corners by rx alone; circles and ellipses are the ovals of their bounding
// boxes, with the box computed in 32 bits (0.1f + 0.1f, not the double sum of the widened
// values); a line is an open two-point path. None has a fill rule of its own. Parsing leaves only a
// circle's or ellipse's cy absent; a rect's size and a polygon's points are checked here too, and
// the polygon has its own spelling, with a lower-case p.
TEST(BasicShapes, OutlinesAreThoseOfThePlatformShapesAndMissingValuesGiveAMessage) {
  PolygonComponent polygon("t", "5 5", kNoAttributes);
  polygon.points.clear();
  Path line;
  line.moveTo({1, 2});
  line.lineTo({3, 4});
  const double corner = 1.0f - 0.1f, size = 0.1f + 0.1f;
  const std::tuple<DrawPathResult, std::optional<Path>, std::optional<std::string>> cases[] = {
      {RectComponent("r", kNoAttributes, 1, 2, 10, 20, 3, 9).getDrawPath(),
       makeRoundedRectPath({1, 2, 10, 20}, 3), std::nullopt},
      {CircleComponent("c", kNoAttributes, 1, 1, 0.1f).getDrawPath(),
       makeOvalPath({corner, corner, size, size}), std::nullopt},
      {EllipseComponent("e", kNoAttributes, 10, 20, 4, 2).getDrawPath(),
       makeOvalPath({6, 18, 8, 4}), std::nullopt},
      {LineComponent("l", kNoAttributes, 1, 2, 3, 4).getDrawPath(), line, std::nullopt},
      {RectComponent("r", kNoAttributes, 0, 0, 10, std::nullopt, 0, 0).getDrawPath(), std::nullopt,
       "Missing Properties"},
      {CircleComponent("c", kNoAttributes, 1, std::nullopt, 3).getDrawPath(), std::nullopt,
       "Missing Properties"},
      {EllipseComponent("e", kNoAttributes, 1, std::nullopt, 3, 4).getDrawPath(), std::nullopt,
       "Missing Properties"},
      {polygon.getDrawPath(), std::nullopt, "Missing properties"},
  };
  for (const auto& [result, path, message] : cases) {
    SCOPED_TRACE(message.value_or(path ? path->dump(6) : ""));
    EXPECT_EQ(result.path, path);
    EXPECT_EQ(result.message, message);
    EXPECT_FALSE(result.fillRule);
  }
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

TEST(PolygonComponentDeathTest, AnOddNumberOfComponentsStops) {
  for (const char* text : {"0 0 10", "", "1,2,3", "1 2 ", "1 \u03012"}) {
    EXPECT_DEATH(pointsOf(text), "polygon point list read past its end") << text;
  }
}

}  // namespace
}  // namespace tessaline
