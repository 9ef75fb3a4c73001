#include "platform/path.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace tessaline {
namespace {

// Exact trigonometry of the endpoints: sin and cos of multiples of π/2 are off by ~1e-16.
constexpr double kPointTolerance = 1e-9;
// A cubic quarter circle with k = 4/3·tan(π/8) strays at most 2.7e-4 of the radius from the true
// circle; smaller pieces stray far less. Allow a little over the worst case.
constexpr double kRadialTolerance = 3e-4;

Point cubicAt(Point p0, Point c1, Point c2, Point p1, double t) {
  const double u = 1 - t;
  const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
  return {a * p0.x + b * c1.x + c * c2.x + d * p1.x, a * p0.y + b * c1.y + c * c2.y + d * p1.y};
}

// Largest |distance from center - radius| over samples of every cubic of `path`.
double maxRadialError(const Path& path, Point center, double radius) {
  double worst = 0;
  Point current{};
  path.forEach([&](const PathElement& e) {
    if (e.verb == PathVerb::Cubic) {
      for (int i = 0; i <= 64; ++i) {
        const Point p = cubicAt(current, e.points[0], e.points[1], e.points[2], i / 64.0);
        worst = std::max(worst, std::fabs(std::hypot(p.x - center.x, p.y - center.y) - radius));
      }
    }
    if (!e.points.empty()) current = e.points.back();
  });
  return worst;
}

int countVerb(const Path& path, PathVerb verb) {
  int n = 0;
  for (PathVerb v : path.verbs()) n += v == verb;
  return n;
}

void expectNear(Point actual, Point expected, double tolerance = kPointTolerance) {
  EXPECT_NEAR(actual.x, expected.x, tolerance);
  EXPECT_NEAR(actual.y, expected.y, tolerance);
}

TEST(PathRelativeArc, StartsWithAMoveOrALineFromTheCurrentPoint) {
  Path fresh;
  fresh.addRelativeArc({0, 0}, 10, 0, M_PI / 2, AffineTransform::identity());
  EXPECT_EQ(fresh.dump(6), "M 10 0 C 10 5.522847 5.522847 10 0 10");

  Path continued;
  continued.moveTo({-5, -5});
  continued.addRelativeArc({0, 0}, 10, 0, M_PI / 2, AffineTransform::identity());
  EXPECT_EQ(continued.dump(6), "M -5 -5 L 10 0 C 10 5.522847 5.522847 10 0 10");
}

TEST(PathRelativeArc, ZeroDeltaAddsOnlyTheLineToTheStart) {
  Path path;
  path.moveTo({0, 0});
  path.addRelativeArc({5, 5}, 2, M_PI, 0, AffineTransform::identity());
  EXPECT_EQ(path.dump(9), "M 0 0 L 3 5");
}

TEST(PathRelativeArc, UsesAtMostAQuarterTurnPerCubic) {
  struct Case {
    double delta;
    int cubics;
  };
  for (const Case c :
       {Case{0.1, 1}, Case{M_PI / 2, 1}, Case{M_PI / 2 + 1e-6, 2}, Case{M_PI, 2}, Case{-M_PI, 2},
        Case{3.5, 3}, Case{2 * M_PI, 4}, Case{-6.283185005187988, 4}, Case{7, 5}}) {
    SCOPED_TRACE(c.delta);
    Path path;
    path.addRelativeArc({0, 0}, 1, 0.3, c.delta, AffineTransform::identity());
    EXPECT_EQ(countVerb(path, PathVerb::Cubic), c.cubics);
  }
}

TEST(PathRelativeArc, EndsAtTheEndAngleAndStaysOnTheCircle) {
  const Point center{3, -2};
  const double radius = 7;
  for (double start : {0.0, 1.0, -2.5}) {
    for (double delta : {0.2, 1.5, M_PI, -M_PI / 2, -4.0, 2 * M_PI}) {
      SCOPED_TRACE(::testing::Message() << "start " << start << " delta " << delta);
      Path path;
      path.addRelativeArc(center, radius, start, delta, AffineTransform::identity());
      expectNear(path.points().front(),
                 {center.x + radius * std::cos(start), center.y + radius * std::sin(start)});
      expectNear(*path.currentPoint(), {center.x + radius * std::cos(start + delta),
                                        center.y + radius * std::sin(start + delta)});
      EXPECT_LT(maxRadialError(path, center, radius), kRadialTolerance * radius);
    }
  }
}

TEST(PathRelativeArc, PositiveDeltaTurnsTowardIncreasingAngle) {
  // A quarter turn from angle 0: positive delta passes below the x axis in y-down terms (+y).
  Path positive;
  positive.addRelativeArc({0, 0}, 1, 0, M_PI / 2, AffineTransform::identity());
  expectNear(*positive.currentPoint(), {0, 1});
  Path negative;
  negative.addRelativeArc({0, 0}, 1, 0, -M_PI / 2, AffineTransform::identity());
  expectNear(*negative.currentPoint(), {0, -1});
  // The first control point leaves along the direction of travel.
  EXPECT_GT(positive.points()[1].y, 0);
  EXPECT_LT(negative.points()[1].y, 0);
}

TEST(PathRelativeArc, MapsEveryPointThroughTheTransform) {
  const auto transform = AffineTransform::makeTranslation(10, 20).scaled(3, 2);
  Path mapped;
  mapped.addRelativeArc({0, 0}, 1, 0.5, 2.5, transform);
  Path plain;
  plain.addRelativeArc({0, 0}, 1, 0.5, 2.5, AffineTransform::identity());
  ASSERT_EQ(mapped.verbs(), plain.verbs());
  for (std::size_t i = 0; i < plain.points().size(); ++i) {
    expectNear(mapped.points()[i], transform.apply(plain.points()[i]));
  }
}

TEST(OvalPath, StartsAtTheRightAndRunsThroughIncreasingAngle) {
  const Path oval = makeOvalPath({10, 20, 8, 4});
  EXPECT_EQ(oval.verbs(),
            (std::vector<PathVerb>{PathVerb::Move, PathVerb::Cubic, PathVerb::Cubic,
                                   PathVerb::Cubic, PathVerb::Cubic, PathVerb::Close}));
  // Right, bottom (+y), left, top, and back to the right.
  EXPECT_EQ(oval.points()[0], (Point{18, 22}));
  EXPECT_EQ(oval.points()[3], (Point{14, 24}));
  EXPECT_EQ(oval.points()[6], (Point{10, 22}));
  EXPECT_EQ(oval.points()[9], (Point{14, 20}));
  EXPECT_EQ(oval.points()[12], (Point{18, 22}));
}

TEST(OvalPath, StaysCloseToTheInscribedCircle) {
  const Path circle = makeOvalPath({-3, 1, 12, 12});
  EXPECT_LT(maxRadialError(circle, {3, 7}, 6), kRadialTolerance * 6);
}

TEST(OvalPath, NegativeSizesDescribeTheSameRectangle) {
  EXPECT_EQ(makeOvalPath({18, 24, -8, -4}), makeOvalPath({10, 20, 8, 4}));
  EXPECT_EQ(makeOvalPath({10, 24, 8, -4}), makeOvalPath({10, 20, 8, 4}));
}

TEST(OvalPath, ZeroSizeRectangleStillGivesAClosedOutline) {
  const Path dot = makeOvalPath({5, 5, 0, 0});
  EXPECT_EQ(dot.dump(), "M 5 5 C 5 5 5 5 5 5 C 5 5 5 5 5 5 C 5 5 5 5 5 5 C 5 5 5 5 5 5 Z");
}

TEST(RoundedRectPath, ZeroOrNegativeRadiusGivesSharpCorners) {
  for (double radius : {0.0, -2.0, std::nan("")}) {
    SCOPED_TRACE(radius);
    EXPECT_EQ(makeRoundedRectPath({1, 2, 10, 20}, radius).dump(), "M 1 2 L 11 2 L 11 22 L 1 22 Z");
  }
}

TEST(RoundedRectPath, RoundsEveryCornerByTheRadius) {
  const Path rounded = makeRoundedRectPath({1, 2, 10, 20}, 3);
  EXPECT_EQ(rounded.dump(6),
            "M 4 2 L 8 2 C 9.656854 2 11 3.343146 11 5 L 11 19 C 11 20.656854 9.656854 22 8 22 "
            "L 4 22 C 2.343146 22 1 20.656854 1 19 L 1 5 C 1 3.343146 2.343146 2 4 2 Z");
}

TEST(RoundedRectPath, ClampsTheRadiusToHalfTheShorterSide) {
  EXPECT_EQ(makeRoundedRectPath({0, 0, 10, 20}, 100), makeRoundedRectPath({0, 0, 10, 20}, 5));
  // With radius 5 on a 10-wide rectangle the top and bottom edges shrink to nothing.
  const Path pill = makeRoundedRectPath({0, 0, 10, 20}, 5);
  EXPECT_EQ(pill.points()[0], (Point{5, 0}));
  EXPECT_EQ(pill.points()[1], (Point{5, 0}));
}

TEST(RoundedRectPath, NegativeSizesDescribeTheSameRectangle) {
  EXPECT_EQ(makeRoundedRectPath({11, 22, -10, -20}, 3), makeRoundedRectPath({1, 2, 10, 20}, 3));
}

}  // namespace
}  // namespace tessaline
