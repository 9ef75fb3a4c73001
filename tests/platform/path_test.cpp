#include "platform/path.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <utility>

namespace tessaline {
namespace {

// A cubic quarter circle with k = 4/3·tan(π/8) strays at most 2.7e-4 of the radius from the true
// circle; smaller pieces stray far less. Allow a little over the worst case.
constexpr double kRadialTolerance = 3e-4;

// Largest |distance from center - radius| over samples of every cubic of `path`.
double maxRadialError(const Path& path, Point center, double radius) {
  double worst = 0;
  Point p0{};
  path.forEach([&](const PathElement& e) {
    for (int i = 0; e.verb == PathVerb::Cubic && i <= 64; ++i) {
      const double t = i / 64.0, u = 1 - t;
      const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
      const Point p{a * p0.x + b * e.points[0].x + c * e.points[1].x + d * e.points[2].x,
                    a * p0.y + b * e.points[0].y + c * e.points[1].y + d * e.points[2].y};
      worst = std::max(worst, std::fabs(std::hypot(p.x - center.x, p.y - center.y) - radius));
    }
    if (!e.points.empty()) p0 = e.points.back();
  });
  return worst;
}

// The path of one relative arc, after a move to `from` when given.
Path arc(Point center, double radius, double start, double delta, std::optional<Point> from = {}) {
  Path path;
  if (from) path.moveTo(*from);
  path.addRelativeArc(center, radius, start, delta, AffineTransform::identity());
  return path;
}

// The arc starts with a move, or a line from the current point; a zero delta adds only that.
// Ovals start at the right and run through increasing angle (toward +y first); a zero-size one is
// still a closed outline. Rounded rectangles start where the top edge leaves the top-left corner;
// a radius that is zero, negative or NaN gives sharp corners. Negative sizes describe the same
// rectangle.
TEST(Path, ArcsOvalsAndRoundedRectsHaveThePlatformsOutline) {
  struct Case {
    Path path;
    int precision;  // digits after the point in the dump, 0 for all
    std::string dump;
  };
  const std::string oval =
      "M 18 22 C 18 23.104569 16.209139 24 14 24 C 11.790861 24 10 23.104569 10 22 "
      "C 10 20.895431 11.790861 20 14 20 C 16.209139 20 18 20.895431 18 22 Z";
  const std::string rounded =
      "M 4 2 L 8 2 C 9.656854 2 11 3.343146 11 5 L 11 19 C 11 20.656854 9.656854 22 8 22 "
      "L 4 22 C 2.343146 22 1 20.656854 1 19 L 1 5 C 1 3.343146 2.343146 2 4 2 Z";
  const Case cases[] = {
      {arc({0, 0}, 10, 0, M_PI / 2), 6, "M 10 0 C 10 5.522847 5.522847 10 0 10"},
      {arc({0, 0}, 10, 0, M_PI / 2, Point{-5, -5}), 6,
       "M -5 -5 L 10 0 C 10 5.522847 5.522847 10 0 10"},
      {arc({5, 5}, 2, M_PI, 0, Point{0, 0}), 0, "M 0 0 L 3 5"},
      {makeOvalPath({10, 20, 8, 4}), 6, oval},
      {makeOvalPath({18, 24, -8, -4}), 6, oval},  // negative sizes: the same rectangle
      {makeOvalPath({10, 24, 8, -4}), 6, oval},
      {makeOvalPath({5, 5, 0, 0}), 0,
       "M 5 5 C 5 5 5 5 5 5 C 5 5 5 5 5 5 C 5 5 5 5 5 5 C 5 5 5 5 5 5 Z"},
      {makeRoundedRectPath({1, 2, 10, 20}, 3), 6, rounded},
      {makeRoundedRectPath({11, 22, -10, -20}, 3), 6, rounded},
  };
  for (const Case& c : cases) EXPECT_EQ(c.path.dump(c.precision), c.dump);
  for (double radius : {0.0, -2.0, std::nan("")}) {
    EXPECT_EQ(makeRoundedRectPath({1, 2, 10, 20}, radius).dump(), "M 1 2 L 11 2 L 11 22 L 1 22 Z");
  }
  // Radii are at most half the shorter side: on a 10-wide rectangle the top edge vanishes.
  const Path pill = makeRoundedRectPath({0, 0, 10, 20}, 100);
  EXPECT_EQ(pill, makeRoundedRectPath({0, 0, 10, 20}, 5));
  EXPECT_EQ(pill.points()[0], (Point{5, 0}));
  EXPECT_EQ(pill.points()[1], (Point{5, 0}));
  // The oval's points on its axes are exact.
  const Path ovalPath = makeOvalPath({10, 20, 8, 4});
  const Point onAxes[] = {{18, 22}, {14, 24}, {10, 22}, {14, 20}, {18, 22}};
  for (int i = 0; i < 5; ++i) EXPECT_EQ(ovalPath.points()[3 * i], onAxes[i]);
}

// At most a quarter turn per cubic; the arc ends exactly at the end angle (sin and cos of
// multiples of π/2 are off by ~1e-16) and stays on the circle, whichever way it turns.
TEST(Path, ArcsEndAtTheEndAngleOnTheCircleInQuarterTurnCubics) {
  const Point center{3, -2};
  const double radius = 7;
  const std::pair<double, int> turns[] = {
      {0.1, 1},  {0.2, 1},   {1.5, 1}, {M_PI / 2, 1}, {-M_PI / 2, 1}, {M_PI / 2 + 1e-6, 2},
      {M_PI, 2}, {-M_PI, 2}, {3.5, 3}, {-4.0, 3},     {2 * M_PI, 4},  {-6.283185005187988, 4},
      {7, 5}};
  for (double start : {0.0, 0.3, 1.0, -2.5}) {
    for (const auto& [delta, cubics] : turns) {
      SCOPED_TRACE(::testing::Message() << "start " << start << " delta " << delta);
      const Path path = arc(center, radius, start, delta);
      const Point first = path.points().front(), last = *path.currentPoint();
      EXPECT_NEAR(first.x, center.x + radius * std::cos(start), 1e-9);
      EXPECT_NEAR(first.y, center.y + radius * std::sin(start), 1e-9);
      EXPECT_NEAR(last.x, center.x + radius * std::cos(start + delta), 1e-9);
      EXPECT_NEAR(last.y, center.y + radius * std::sin(start + delta), 1e-9);
      EXPECT_LT(maxRadialError(path, center, radius), kRadialTolerance * radius);
      EXPECT_EQ(std::ranges::count(path.verbs(), PathVerb::Cubic), cubics);
    }
  }
  EXPECT_LT(maxRadialError(makeOvalPath({-3, 1, 12, 12}), {3, 7}, 6), kRadialTolerance * 6);
}

}  // namespace
}  // namespace tessaline
