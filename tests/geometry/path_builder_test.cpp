#include "geometry/path_builder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "geometry/elliptical_arc.h"

namespace tessaline {
namespace {

// The arc is computed in 32-bit floats: centres and radii carry errors of a few float ulps of
// the coordinates used (around 10), so 1e-5 is comfortably above rounding and far below any
// real mistake.
constexpr double kFloatTolerance = 1e-5;
// Radial error of a cubic quarter circle, relative to the radius (worst case 2.7e-4).
constexpr double kRadialTolerance = 3e-4;

struct Arc {
  float x0, y0, rx, ry, rotation, largeArc, sweep, x, y;
};

Path drawArc(const Arc& a) {
  CGMutablePathWrapper builder;
  builder.move({a.x0, a.y0});
  builder.arcTo(a.x0, a.y0, a.rx, a.ry, a.rotation, a.largeArc, a.sweep, a.x, a.y);
  return builder.path();
}

detail::CenterArc centerOf(const Arc& a) {
  auto arc = detail::endpointToCenterArc(a.x0, a.y0, a.rx, a.ry, a.rotation, a.largeArc, a.sweep,
                                         a.x, a.y);
  EXPECT_TRUE(arc.has_value());
  return arc.value_or(detail::CenterArc{});
}

Point cubicAt(Point p0, Point c1, Point c2, Point p1, double t) {
  const double u = 1 - t;
  const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
  return {a * p0.x + b * c1.x + c * c2.x + d * p1.x, a * p0.y + b * c1.y + c * c2.y + d * p1.y};
}

// Points sampled along every cubic of the path (the arc's body).
std::vector<Point> samples(const Path& path) {
  std::vector<Point> out;
  Point current{};
  path.forEach([&](const PathElement& e) {
    if (e.verb == PathVerb::Cubic) {
      for (int i = 0; i <= 16; ++i) {
        out.push_back(cubicAt(current, e.points[0], e.points[1], e.points[2], i / 16.0));
      }
    }
    if (!e.points.empty()) current = e.points.back();
  });
  return out;
}

TEST(PathBuilder, ForwardsSegmentsWithAbsolutePoints) {
  CGMutablePathWrapper builder;
  builder.move({1, 2});
  builder.addLine({3, 4});
  builder.addQuadCurve({7, 8}, {5, 6});
  builder.addCurve({13, 14}, {9, 10}, {11, 12});
  builder.closeSubpath();
  EXPECT_EQ(builder.path().dump(), "M 1 2 L 3 4 Q 5 6 7 8 C 9 10 11 12 13 14 Z");
}

TEST(PathBuilder, OperationsCanBeOverridden) {
  struct Recorder : CGMutablePathWrapper {
    void arcTo(float, float, float, float, float, float, float, float x, float y) override {
      addLine({x, y});
    }
  };
  Recorder recorder;
  CGMutablePathWrapper& builder = recorder;
  builder.move({0, 0});
  builder.arcTo(0, 0, 5, 5, 0, 0, 1, 10, 0);
  EXPECT_EQ(builder.path().dump(), "M 0 0 L 10 0");
}

TEST(EllipticalArc, TinyRadiiGiveAStraightLine) {
  for (const Arc a :
       {Arc{0, 0, 0, 5, 0, 0, 1, 10, 0}, Arc{0, 0, 5, 0, 0, 0, 1, 10, 0},
        Arc{0, 0, 0.0009f, 5, 0, 0, 1, 10, 0}, Arc{0, 0, 5, -0.0009f, 0, 1, 1, 10, 0}}) {
    SCOPED_TRACE(::testing::Message() << "rx " << a.rx << " ry " << a.ry);
    EXPECT_EQ(drawArc(a).dump(), "M 0 0 L 10 0");
    EXPECT_FALSE(detail::endpointToCenterArc(a.x0, a.y0, a.rx, a.ry, a.rotation, a.largeArc,
                                             a.sweep, a.x, a.y));
  }
  // 0.001 itself is not below the threshold.
  EXPECT_TRUE(detail::endpointToCenterArc(0, 0, 0.001f, 5, 0, 0, 1, 10, 0));
}

TEST(EllipticalArc, RadiiTooSmallForTheChordGrowToAHalfCircle) {
  const Arc a{0, 0, 1, 1, 0, 0, 1, 10, 0};
  const detail::CenterArc arc = centerOf(a);
  EXPECT_NEAR(arc.radiusX, 5, kFloatTolerance);
  EXPECT_NEAR(arc.radiusY, 5, kFloatTolerance);
  EXPECT_NEAR(arc.centerX, 5, kFloatTolerance);
  EXPECT_NEAR(arc.centerY, 0, kFloatTolerance);
  EXPECT_NEAR(arc.sweep, M_PI, 1e-6);
  // Through increasing angle from angle π: the half circle passes through (5, -5).
  const Path path = drawArc(a);
  const std::vector<Point> body = samples(path);
  ASSERT_FALSE(body.empty());
  double minY = 0;
  for (Point p : body) {
    minY = std::min(minY, p.y);
    EXPECT_NEAR(std::hypot(p.x - 5, p.y), 5, 5 * kRadialTolerance);
  }
  EXPECT_NEAR(minY, -5, 1e-3);
}

TEST(EllipticalArc, FlagsChooseTheCentreAndTheDirection) {
  const double h = 5 * std::sqrt(3.0);  // distance of the centre from the chord
  struct Case {
    float largeArc, sweep;
    double centerY;
    bool positiveSweep;
    double sweepMagnitude;
  };
  for (const Case c : {Case{0, 1, h, true, M_PI / 3}, Case{0, 0, -h, false, M_PI / 3},
                       Case{1, 1, -h, true, 5 * M_PI / 3}, Case{1, 0, h, false, 5 * M_PI / 3}}) {
    SCOPED_TRACE(::testing::Message() << "largeArc " << c.largeArc << " sweep " << c.sweep);
    const Arc a{0, 0, 10, 10, 0, c.largeArc, c.sweep, 10, 0};
    const detail::CenterArc arc = centerOf(a);
    EXPECT_NEAR(arc.centerX, 5, kFloatTolerance);
    EXPECT_NEAR(arc.centerY, c.centerY, kFloatTolerance);
    EXPECT_EQ(arc.sweep > 0, c.positiveSweep);
    EXPECT_NEAR(std::fabs(arc.sweep), c.sweepMagnitude, 1e-5);
    for (Point p : samples(drawArc(a))) {
      EXPECT_NEAR(std::hypot(p.x - 5, p.y - c.centerY), 10, 10 * kRadialTolerance);
    }
  }
}

TEST(EllipticalArc, FlagsAreComparedExactlyForTheCentreButLooselyForTheSweep) {
  const double h = 5 * std::sqrt(3.0);
  // 1.0005 counts as sweep on, and differs from the large-arc flag 1: centre above the chord.
  const detail::CenterArc nearOne = centerOf({0, 0, 10, 10, 0, 1, 1.0005f, 10, 0});
  EXPECT_NEAR(nearOne.centerY, h, kFloatTolerance);
  EXPECT_GT(nearOne.sweep, 0);
  const detail::CenterArc belowOne = centerOf({0, 0, 10, 10, 0, 1, 0.9995f, 10, 0});
  EXPECT_NEAR(belowOne.centerY, h, kFloatTolerance);
  EXPECT_GT(belowOne.sweep, 0);
  // 2 is neither equal to 0 nor near 1: centre above the chord, sweep off.
  const detail::CenterArc two = centerOf({0, 0, 10, 10, 0, 0, 2, 10, 0});
  EXPECT_NEAR(two.centerY, h, kFloatTolerance);
  EXPECT_LT(two.sweep, 0);
}

TEST(EllipticalArc, EndsAtItsEndPointAndStartsAtItsStartPoint) {
  for (const Arc a : {Arc{0, 0, 10, 10, 0, 0, 1, 10, 0}, Arc{0, 0, 1, 1, 0, 1, 0, 10, 0},
                      Arc{3, 4, 20, 8, 30, 1, 1, -7, 12}, Arc{3, 4, 20, 8, -135, 0, 0, -7, 12},
                      Arc{100, 50, 40, 25, 400, 1, 0, 130, 90}, Arc{0, 0, -6, -4, 10, 0, 1, 5, 5},
                      Arc{-50, 20, 0.5f, 0.25f, 45, 0, 1, 50, -20}}) {
    SCOPED_TRACE(::testing::Message() << "from (" << a.x0 << ", " << a.y0 << ") to (" << a.x << ", "
                                      << a.y << ") rotation " << a.rotation);
    const Path path = drawArc(a);
    ASSERT_GE(path.verbs().size(), 3u);
    EXPECT_EQ(path.verbs()[1], PathVerb::Line);  // the (nearly empty) line to the arc's start
    const Point start = path.points()[1];
    EXPECT_NEAR(start.x, a.x0, kFloatTolerance * 10);
    EXPECT_NEAR(start.y, a.y0, kFloatTolerance * 10);
    EXPECT_NEAR(path.currentPoint()->x, a.x, kFloatTolerance * 10);
    EXPECT_NEAR(path.currentPoint()->y, a.y, kFloatTolerance * 10);
  }
}

TEST(EllipticalArc, RotatedEllipseKeepsItsShape) {
  // Every sampled point, taken back into the ellipse's own axes, lies on the unit circle.
  const Arc a{3, 4, 20, 8, 30, 1, 1, -7, 12};
  const detail::CenterArc arc = centerOf(a);
  const double c = std::cos(arc.rotation), s = std::sin(arc.rotation);
  for (Point p : samples(drawArc(a))) {
    const double dx = p.x - arc.centerX, dy = p.y - arc.centerY;
    const double u = (c * dx + s * dy) / arc.radiusX, v = (-s * dx + c * dy) / arc.radiusY;
    EXPECT_NEAR(std::hypot(u, v), 1, kRadialTolerance);
  }
  EXPECT_NEAR(arc.rotation, M_PI / 6, 1e-6);
}

TEST(EllipticalArc, RotationIsTakenModuloAFullTurn) {
  for (float degrees : {90.0f, 450.0f, -270.0f}) {
    SCOPED_TRACE(degrees);
    const detail::CenterArc arc = centerOf({0, 0, 10, 5, degrees, 0, 1, 6, 3});
    EXPECT_NEAR(arc.rotation, M_PI / 2, 1e-6);
  }
  // The fold is into [-π, π]: 270° becomes -90°.
  EXPECT_NEAR(centerOf({0, 0, 10, 5, 270, 0, 1, 6, 3}).rotation, -M_PI / 2, 1e-6);
  const Path a = drawArc({0, 0, 10, 5, 90, 0, 1, 6, 3});
  const Path b = drawArc({0, 0, 10, 5, 450, 0, 1, 6, 3});
  ASSERT_EQ(a.verbs(), b.verbs());
  for (std::size_t i = 0; i < a.points().size(); ++i) {
    EXPECT_NEAR(a.points()[i].x, b.points()[i].x, 1e-4);
    EXPECT_NEAR(a.points()[i].y, b.points()[i].y, 1e-4);
  }
}

TEST(EllipticalArc, EndPointEqualToStartAddsOnlyALineToTheEllipse) {
  // The centre lands on the point itself; both angles are 0 and nothing turns. What remains is
  // the line to the ellipse's point at angle 0, one radius to the right, so the path's current
  // point is no longer the arc's end point.
  CGMutablePathWrapper builder;
  builder.move({3, 4});
  builder.arcTo(3, 4, 2, 1, 0, 0, 1, 3, 4);
  EXPECT_EQ(builder.path().dump(), "M 3 4 L 5 4");
  const detail::CenterArc arc = centerOf({3, 4, 2, 1, 0, 0, 1, 3, 4});
  EXPECT_EQ(arc.centerX, 3);
  EXPECT_EQ(arc.centerY, 4);
  EXPECT_EQ(arc.sweep, 0);
}

TEST(EllipticalArc, SweepOnTurnsByTheFloatFullTurn) {
  // Equal flags give the same centre both times; the sweep that points the wrong way is turned
  // by 2·π_f, the float value of 2π widened, which is slightly less than 2π.
  const detail::CenterArc arc = centerOf({10, 0, 10, 10, 0, 1, 1, 0, 10});
  const detail::CenterArc reverse = centerOf({10, 0, 10, 10, 0, 0, 0, 0, 10});
  EXPECT_GT(arc.sweep, 0);
  EXPECT_LT(reverse.sweep, 0);
  EXPECT_NEAR(arc.sweep - reverse.sweep, 6.283185005187988, 1e-6);
}

}  // namespace
}  // namespace tessaline
