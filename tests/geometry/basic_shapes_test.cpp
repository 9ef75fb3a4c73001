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

void expectMissing(const DrawPathResult& result, const std::string& message) {
  EXPECT_FALSE(result.path);
  EXPECT_EQ(result.message, message);
  EXPECT_FALSE(result.fillRule);
}

void expectOutlineOnly(const DrawPathResult& result, const Path& expected) {
  ASSERT_TRUE(result.path);
  EXPECT_EQ(*result.path, expected);
  EXPECT_FALSE(result.message);
  EXPECT_FALSE(result.fillRule);
}

TEST(PathComponent, ParsesItsDataAndMapsTheFillRule) {
  struct Case {
    std::string fillRule;
    FillRule expected;
  };
  for (const Case& c : {Case{"nonzero", FillRule::Winding}, Case{"evenodd", FillRule::EvenOdd},
                        Case{"EvenOdd", FillRule::Winding}, Case{"inherit", FillRule::Winding},
                        Case{"", FillRule::Winding}}) {
    SCOPED_TRACE("fill rule \"" + c.fillRule + "\"");
    const PathComponent path("p", kNoAttributes, "M0 0 L10 0 L10 10 Z", c.fillRule);
    const DrawPathResult result = path.getDrawPath();
    EXPECT_EQ(outline(result), "M 0 0 L 10 0 L 10 10 Z");
    EXPECT_FALSE(result.message);
    EXPECT_EQ(result.fillRule, c.expected);
  }
}

TEST(PathComponent, ReturnsThePartialOutlineWithTheError) {
  const PathComponent path("p", kNoAttributes, "M0 0 L10", "evenodd");
  const DrawPathResult result = path.getDrawPath();
  EXPECT_EQ(outline(result), "M 0 0");
  EXPECT_EQ(result.message, "L/l command must have an Y value");
  EXPECT_EQ(result.fillRule, FillRule::EvenOdd);
  // Nothing is cached: a second call gives the same fresh result.
  EXPECT_EQ(outline(path.getDrawPath()), "M 0 0");

  const DrawPathResult empty = PathComponent("p", kNoAttributes, "", "").getDrawPath();
  EXPECT_EQ(outline(empty), "");
  EXPECT_EQ(empty.message, "SVG must start with m or M");
}

TEST(BasicShapes, MissingValuesGiveNoOutlineAndAMessage) {
  const std::optional<float> none;
  const std::string m = "Missing Properties";
  expectMissing(RectComponent("r", kNoAttributes, 0, 0, 10, none, 0, 0).getDrawPath(), m);
  expectMissing(RectComponent("r", kNoAttributes, 0, 0, none, 10, 0, 0).getDrawPath(), m);
  expectMissing(CircleComponent("c", kNoAttributes, 1, 2, none).getDrawPath(), m);
  expectMissing(CircleComponent("c", kNoAttributes, 1, none, 3).getDrawPath(), m);
  expectMissing(CircleComponent("c", kNoAttributes, none, 2, 3).getDrawPath(), m);
  expectMissing(EllipseComponent("e", kNoAttributes, 1, 2, 3, none).getDrawPath(), m);
  expectMissing(EllipseComponent("e", kNoAttributes, 1, 2, none, 4).getDrawPath(), m);
  expectMissing(EllipseComponent("e", kNoAttributes, 1, none, 3, 4).getDrawPath(), m);
  expectMissing(EllipseComponent("e", kNoAttributes, none, 2, 3, 4).getDrawPath(), m);
  // The polygon's own spelling, with a lower-case p.
  PolygonComponent polygon("t", "5 5", kNoAttributes);
  polygon.points.clear();
  expectMissing(polygon.getDrawPath(), "Missing properties");
}

TEST(RectComponent, RoundsAllCornersByRxAlone) {
  const RectComponent rect("r", kNoAttributes, 1, 2, 10, 20, 3, 9);
  expectOutlineOnly(rect.getDrawPath(), makeRoundedRectPath({1, 2, 10, 20}, 3));
  EXPECT_EQ(outline(RectComponent("r", kNoAttributes, 1, 2, 10, 20, 0, 5).getDrawPath()),
            "M 1 2 L 11 2 L 11 22 L 1 22 Z");
}

TEST(CircleComponent, IsTheOvalOfItsBoundingSquare) {
  expectOutlineOnly(CircleComponent("c", kNoAttributes, 10, 20, 5).getDrawPath(),
                    makeOvalPath({5, 15, 10, 10}));
  // A zero radius still has an outline, the oval of an empty rectangle.
  expectOutlineOnly(CircleComponent("c", kNoAttributes, 5, 5, 0).getDrawPath(),
                    makeOvalPath({5, 5, 0, 0}));
  // The box is computed in 32 bits: 0.1f + 0.1f, not the double sum of the widened values.
  const DrawPathResult small = CircleComponent("c", kNoAttributes, 1, 1, 0.1f).getDrawPath();
  ASSERT_TRUE(small.path);
  EXPECT_EQ(*small.path,
            makeOvalPath({static_cast<double>(1.0f - 0.1f), static_cast<double>(1.0f - 0.1f),
                          static_cast<double>(0.1f + 0.1f), static_cast<double>(0.1f + 0.1f)}));
}

TEST(EllipseComponent, IsTheOvalOfItsBoundingBox) {
  const DrawPathResult result = EllipseComponent("e", kNoAttributes, 10, 20, 4, 2).getDrawPath();
  expectOutlineOnly(result, makeOvalPath({6, 18, 8, 4}));
  // Right-most point first.
  EXPECT_EQ(result.path->points().front(), (Point{14, 20}));
}

TEST(LineComponent, IsAnOpenTwoPointPath) {
  expectOutlineOnly(LineComponent("l", kNoAttributes, 1, 2, 3, 4).getDrawPath(), [] {
    Path p;
    p.moveTo({1, 2});
    p.lineTo({3, 4});
    return p;
  }());
  EXPECT_EQ(outline(LineComponent("l", kNoAttributes, 0, 0, 0, 0).getDrawPath()), "M 0 0 L 0 0");
}

std::vector<Point> pointsOf(std::string_view text) {
  return PolygonComponent(std::nullopt, text, kNoAttributes).points;
}

TEST(PolygonComponent, SplitsAtSpacesFirstAndAtCommasOnlyWithoutSpaces) {
  using Points = std::vector<Point>;
  EXPECT_EQ(pointsOf("0 0 10 0 10 10"), (Points{{0, 0}, {10, 0}, {10, 10}}));
  EXPECT_EQ(pointsOf("0,0,10,0,10,10"), (Points{{0, 0}, {10, 0}, {10, 10}}));
  // Each space-separated component contributes only its leading number.
  EXPECT_EQ(pointsOf("0,0 10,0 10,10 0,10"), (Points{{0, 10}, {10, 0}}));
  // Empty components between adjacent spaces count, as 0.
  EXPECT_EQ(pointsOf("1  2 3"), (Points{{1, 0}, {2, 3}}));
  EXPECT_EQ(pointsOf("1.5px -2e1 abc 4"), (Points{{1.5, -20}, {0, 4}}));
  EXPECT_EQ(pointsOf("5 5"), (Points{{5, 5}}));
}

TEST(PolygonComponent, OutlineIsClosed) {
  const PolygonComponent triangle("t", "0 0 10 0 10 10", kNoAttributes);
  const DrawPathResult result = triangle.getDrawPath();
  EXPECT_EQ(outline(result), "M 0 0 L 10 0 L 10 10 Z");
  EXPECT_FALSE(result.message);
  EXPECT_FALSE(result.fillRule);
  EXPECT_EQ(outline(PolygonComponent("t", "5 5", kNoAttributes).getDrawPath()), "M 5 5 Z");
  EXPECT_EQ(PolygonComponent(std::nullopt, "5 5", kNoAttributes).id, "");
}

using PolygonComponentDeathTest = ::testing::Test;

TEST(PolygonComponentDeathTest, AnOddNumberOfComponentsStops) {
  EXPECT_DEATH(pointsOf("0 0 10"), "polygon point list read past its end");
  EXPECT_DEATH(pointsOf("5"), "polygon point list read past its end");
  EXPECT_DEATH(pointsOf(""), "polygon point list read past its end");
  EXPECT_DEATH(pointsOf("1,2,3"), "polygon point list read past its end");
  EXPECT_DEATH(pointsOf("1 2 "), "polygon point list read past its end");
}

}  // namespace
}  // namespace tessaline
