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

std::optional<detail::CenterArc> centerArc(const Arc& a) {
  return detail::endpointToCenterArc(a.x0, a.y0, a.rx, a.ry, a.rotation, a.largeArc, a.sweep, a.x,
                                     a.y);
}

// Points sampled along every cubic of the path (the arc's body).
std::vector<Point> samples(const Path& path) {
  std::vector<Point> out;
  Point p0{};
  path.forEach([&](const PathElement& e) {
    for (int i = 0; e.verb == PathVerb::Cubic && i <= 16; ++i) {
      const double t = i / 16.0, u = 1 - t;
      const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
      out.push_back({a * p0.x + b * e.points[0].x + c * e.points[1].x + d * e.points[2].x,
                     a * p0.y + b * e.points[0].y + c * e.points[1].y + d * e.points[2].y});
    }
    if (!e.points.empty()) p0 = e.points.back();
  });
  return out;
}

// From (0, 0) to (10, 0). Radii too small for the chord grow to a half circle. Of the two centres
// for radius 10, equal flags pick the one below the chord; the sweep flag sets the direction. The
// flags are compared exactly for the centre but the sweep flag within 0.001 of 1: 1.0005 and
// 0.9995 sweep positively yet differ from a large-arc flag of 1, and 2 is neither 0 nor near 1.
TEST(EllipticalArc, FlagsChooseTheCentreAndTheDirection) {
  const double h = 5 * std::sqrt(3.0);  // distance of the centre from the chord
  struct Case {
    float rx, largeArc, sweepFlag;
    double centerY, radius, sweep;
    Point middle;  // of the drawn arc
  };
  for (const Case c :
       {Case{1, 0, 1, 0, 5, M_PI, {5, -5}}, Case{10, 0, 1, h, 10, M_PI / 3, {5, h - 10}},
        Case{10, 0, 0, -h, 10, -M_PI / 3, {5, 10 - h}},
        Case{10, 1, 1, -h, 10, 5 * M_PI / 3, {5, -h - 10}},
        Case{10, 1, 0, h, 10, -5 * M_PI / 3, {5, h + 10}},
        Case{10, 1, 1.0005f, h, 10, M_PI / 3, {5, h - 10}},
        Case{10, 1, 0.9995f, h, 10, M_PI / 3, {5, h - 10}},
        Case{10, 0, 2, h, 10, -5 * M_PI / 3, {5, h + 10}}}) {
    SCOPED_TRACE(::testing::Message() << c.rx << " " << c.largeArc << " " << c.sweepFlag);
    const Arc a{0, 0, c.rx, c.rx, 0, c.largeArc, c.sweepFlag, 10, 0};
    const detail::CenterArc arc = centerArc(a).value();
    EXPECT_NEAR(arc.centerX, 5, kFloatTolerance);
    EXPECT_NEAR(arc.centerY, c.centerY, kFloatTolerance);
    EXPECT_NEAR(arc.radiusX, c.radius, kFloatTolerance);
    EXPECT_NEAR(arc.sweep, c.sweep, 1e-6);
    // The drawn body passes through the middle of the arc the centre and sweep describe.
    double nearestToMiddle = INFINITY;
    for (Point p : samples(drawArc(a))) {
      nearestToMiddle = std::min(nearestToMiddle, std::hypot(p.x - c.middle.x, p.y - c.middle.y));
    }
    EXPECT_LT(nearestToMiddle, 1e-3);
  }
}

// Whatever the radii, rotation and flags, the arc runs from its start point to its end point on
// its ellipse: every sampled point, taken back into the ellipse's own axes, lies on the unit
// circle.
TEST(EllipticalArc, RunsFromStartToEndOnItsEllipse) {
  for (const Arc a :
       {Arc{3, 4, 20, 8, -135, 0, 0, -7, 12}, Arc{100, 50, 40, 25, 400, 1, 0, 130, 90},
        Arc{0, 0, -6, -4, 10, 0, 1, 5, 5}, Arc{-50, 20, 0.5f, 0.25f, 45, 0, 1, 50, -20}}) {
    SCOPED_TRACE(::testing::Message() << "rotation " << a.rotation);
    const Path path = drawArc(a);
    ASSERT_GE(path.verbs().size(), 3u);
    EXPECT_EQ(path.verbs()[1], PathVerb::Line);  // the (nearly empty) line to the arc's start
    EXPECT_NEAR(path.points()[1].x, a.x0, kFloatTolerance * 10);
    EXPECT_NEAR(path.points()[1].y, a.y0, kFloatTolerance * 10);
    EXPECT_NEAR(path.currentPoint()->x, a.x, kFloatTolerance * 10);
    EXPECT_NEAR(path.currentPoint()->y, a.y, kFloatTolerance * 10);
    const detail::CenterArc arc = centerArc(a).value();
    const double c = std::cos(arc.rotation), s = std::sin(arc.rotation);
    for (Point p : samples(path)) {
      const double dx = p.x - arc.centerX, dy = p.y - arc.centerY;
      const double u = (c * dx + s * dy) / arc.radiusX, v = (-s * dx + c * dy) / arc.radiusY;
      EXPECT_NEAR(std::hypot(u, v), 1, kRadialTolerance);
    }
  }
}

// Rotation is taken modulo a full turn into [-pi, pi]. A radius below 0.001 (not 0.001 itself)
// gives a straight line and no centre.
TEST(EllipticalArc, RotationRadiiEndPointAndSweepQuirks) {
  for (const Arc a : {Arc{0, 0, 0, 5, 0, 0, 1, 10, 0}, Arc{0, 0, 5, -0.0009f, 0, 1, 1, 10, 0}}) {
    EXPECT_EQ(drawArc(a).dump(), "M 0 0 L 10 0") << a.rx << " " << a.ry;
    EXPECT_FALSE(centerArc(a)) << a.rx << " " << a.ry;
  }
  EXPECT_TRUE(centerArc({0, 0, 0.001f, 5, 0, 0, 1, 10, 0}));
  for (const auto& [degrees, radians] :
       {std::pair{30.0f, M_PI / 6}, {450.0f, M_PI / 2}, {-270.0f, M_PI / 2}, {270.0f, -M_PI / 2}}) {
    EXPECT_NEAR(centerArc({0, 0, 10, 5, degrees, 0, 1, 6, 3}).value().rotation, radians, 1e-6)
        << degrees;
  }
  // An end point equal to the start puts the centre on the point itself with nothing to turn:
  // what remains is the line to the ellipse's point at angle 0, one radius to the right.
  EXPECT_EQ(drawArc({3, 4, 2, 1, 0, 0, 1, 3, 4}).dump(), "M 3 4 L 5 4");
  EXPECT_EQ(centerArc({3, 4, 2, 1, 0, 0, 1, 3, 4}).value().sweep, 0);
  // A sweep pointing the wrong way is turned by the float value of 2*pi widened, slightly less
  // than 2*pi; equal flags give the same centre both times.
  EXPECT_NEAR(centerArc({10, 0, 10, 10, 0, 1, 1, 0, 10}).value().sweep -
                  centerArc({10, 0, 10, 10, 0, 0, 0, 0, 10}).value().sweep,
              6.283185005187988, 1e-6);
}

}  // namespace
}  // namespace tessaline
