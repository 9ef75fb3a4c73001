#include "platform/raster/curve_flattener.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace tessaline {
namespace {

double distanceToSegment(Point p, Point a, Point b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double lengthSquared = dx * dx + dy * dy;
  const double t =
      lengthSquared == 0
          ? 0
          : std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / lengthSquared, 0.0, 1.0);
  return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

// Largest distance from the true curve, sampled finely, to the polyline of `flat`.
double deviation(const FlatPath& flat, const auto& curveAt) {
  const std::vector<Point>& points = flat.points();
  double worst = 0;
  for (int i = 0; i <= 2000; ++i) {
    const Point c = curveAt(i / 2000.0);
    double nearest = std::numeric_limits<double>::infinity();
    for (std::size_t k = 1; k < points.size(); ++k) {
      nearest = std::min(nearest, distanceToSegment(c, points[k - 1], points[k]));
    }
    worst = std::max(worst, nearest);
  }
  return worst;
}

TEST(RasterFlattener, CurvesStayWithinTheTolerance) {
  std::mt19937 random(3);
  const auto coordinate = [&] { return (random() % 300000) / 1000.0 - 20; };
  for (int n = 0; n < 100; ++n) {
    const Point p0{coordinate(), coordinate()}, p1{coordinate(), coordinate()},
        p2{coordinate(), coordinate()}, p3{coordinate(), coordinate()};
    SCOPED_TRACE(n);
    Path path;
    path.moveTo(p0);
    FlatPath flat;
    if (n % 2) {
      path.quadTo(p1, p2);
      ASSERT_TRUE(flattenPath(path, flat));
      EXPECT_LE(deviation(flat,
                          [&](double t) {
                            const double u = 1 - t;
                            return Point{u * u * p0.x + 2 * u * t * p1.x + t * t * p2.x,
                                         u * u * p0.y + 2 * u * t * p1.y + t * t * p2.y};
                          }),
                kFlatteningTolerance);
    } else {
      path.cubicTo(p1, p2, p3);
      ASSERT_TRUE(flattenPath(path, flat));
      EXPECT_LE(deviation(flat,
                          [&](double t) {
                            const double u = 1 - t;
                            const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t,
                                         d = t * t * t;
                            return Point{a * p0.x + b * p1.x + c * p2.x + d * p3.x,
                                         a * p0.y + b * p1.y + c * p2.y + d * p3.y};
                          }),
                kFlatteningTolerance);
    }
    // Interior points are marked smooth; the end is a real vertex.
    EXPECT_EQ(flat.smooth().back(), 0);
    EXPECT_EQ(flat.points().back(), n % 2 ? p2 : p3);
  }
}

TEST(RasterFlattener, SubpathsFollowThePlatformPath) {
  Path path;
  path.moveTo({1, 1});  // a lone move: a contour of one point
  path.moveTo({10, 10});
  path.lineTo({20, 10});
  path.close();
  path.lineTo({10, 30});  // continues from the closed subpath's start as a new contour
  path.close();
  path.close();  // a second close: a closed contour of the start point alone
  FlatPath flat;
  ASSERT_TRUE(flattenPath(path, flat));
  const std::vector<FlatContour>& contours = flat.contours();
  ASSERT_EQ(contours.size(), 4u);
  EXPECT_EQ(contours[0].end - contours[0].begin, 1u);
  EXPECT_FALSE(contours[0].closed);
  EXPECT_EQ(contours[1].end - contours[1].begin, 2u);
  EXPECT_TRUE(contours[1].closed);
  ASSERT_EQ(contours[2].end - contours[2].begin, 2u);
  EXPECT_EQ(flat.points()[contours[2].begin], (Point{10, 10}));
  EXPECT_TRUE(contours[2].closed);
  EXPECT_EQ(contours[3].end - contours[3].begin, 1u);
  EXPECT_TRUE(contours[3].closed);
}

TEST(RasterFlattener, RecordsTheTangentsOfCurvesAtContourEnds) {
  Path path;
  path.moveTo({0, 0});
  path.lineTo({0, 0});  // no length: the curve after it still starts the contour
  path.cubicTo({0, 0}, {10, 0}, {10, 10});  // leaves toward its second control point
  path.lineTo({10, 10});
  FlatPath flat;
  ASSERT_TRUE(flattenPath(path, flat));
  ASSERT_EQ(flat.contours().size(), 1u);
  EXPECT_EQ(flat.contours()[0].startTangent, (Point{10, 0}));
  EXPECT_EQ(flat.contours()[0].endTangent, (Point{0, 10}));
  path.lineTo({20, 10});  // a straight end has no tangent of its own
  ASSERT_TRUE(flattenPath(path, flat));
  EXPECT_EQ(flat.contours()[0].endTangent, (Point{}));
}

TEST(RasterFlattener, CullsCurvesOutsideTheBoxAndRejectsNonFinitePaths) {
  Path path;
  path.moveTo({-50, 0});
  path.cubicTo({-80, 20}, {-90, 40}, {-50, 60});  // all left of the box: its chord will do
  path.cubicTo({10, 70}, {20, 80}, {30, 60});     // crosses the box: flattened
  FlatPath culled, full;
  ASSERT_TRUE(flattenPath(path, culled, Rect{0, 0, 100, 100}));
  ASSERT_TRUE(flattenPath(path, full));
  EXPECT_EQ(culled.points()[1], (Point{-50, 60}));
  EXPECT_GT(culled.points().size(), 3u);
  EXPECT_GT(full.points().size(), culled.points().size());

  Path broken;
  broken.moveTo({0, 0});
  broken.lineTo({std::numeric_limits<double>::quiet_NaN(), 1});
  EXPECT_FALSE(flattenPath(broken, full));
  EXPECT_TRUE(full.points().empty());
}

TEST(RasterFlattener, SegmentCountsFollowTheBound) {
  // A straight "curve" needs one segment; the count grows with the square root of the bend.
  EXPECT_EQ(cubicSegmentCount({0, 0}, {1, 1}, {2, 2}, {3, 3}, kFlatteningTolerance), 1);
  const int bent = cubicSegmentCount({0, 0}, {0, 100}, {100, 100}, {100, 0}, kFlatteningTolerance);
  const int bentTwice =
      cubicSegmentCount({0, 0}, {0, 400}, {400, 400}, {400, 0}, kFlatteningTolerance);
  EXPECT_NEAR(bentTwice, 2 * bent, 1);
  // A one-step bound of 0.75 · |(100, -100)| = 106.07 px, within 0.05 px: ceil(sqrt(2121.3)) = 47.
  EXPECT_EQ(bent, 47);
  // |(0, -200)| / 4 = 50 px, within 0.05 px: ceil(sqrt(1000)) = 32.
  EXPECT_EQ(quadSegmentCount({0, 0}, {50, 100}, {100, 0}, kFlatteningTolerance), 32);
  EXPECT_EQ(cubicSegmentCount({0, 0}, {1e12, 0}, {0, 1e12}, {1, 1}, kFlatteningTolerance),
            kMaxCurveSegments);
}

}  // namespace
}  // namespace tessaline
