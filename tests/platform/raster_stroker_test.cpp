// Strokes outlined by the native backend's stroker, then scan-converted: caps, joins, the miter
// limit and closed subpaths. Zero-length subpaths (dots) and miters at other angles are left to
// the differential test, whose corpus strokes them with every cap, join and limit.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "platform/raster_coverage_grid.h"

namespace tessaline {
namespace {

using namespace raster_testing;

// Strokes of known shapes: the area they cover in pixels, within `tolerance`, and some pixels'
// coverage. Round caps, joins and dots are inscribed polygons, which lose at most the flattening
// tolerance times their perimeter.
void expectStroke(const char* name, const Path& path, const StrokeStyle& style, double area,
                  double tolerance, const std::vector<Probe>& probes) {
  SCOPED_TRACE(name);
  const CoverageGrid grid = stroked(path, style);
  EXPECT_NEAR(grid.area(), area, tolerance);
  expectProbes(grid, probes);
}

constexpr LineCap kButt = LineCap::Butt, kSquare = LineCap::Square, kRound = LineCap::Round;

TEST(RasterStroker, CapsJoinsAndClosedSubpaths) {
  const Path line = polyline({{10, 20}, {50, 20}});
  expectStroke("butt caps end at the ends", line, {10, 4, kButt}, 400, 0,
               {{9, 20, 0}, {30, 15, 255}, {30, 14, 0}, {30, 24, 255}, {30, 25, 0}});
  expectStroke("square caps extend by half the width", line, {10, 4, kSquare}, 500, 0,
               {{5, 15, 255}, {4, 20, 0}});
  // Inside the cap's half disc, not in the corner a square cap would fill.
  expectStroke("round caps are half discs", line, {10, 4, kRound}, 400 + pi * 25,
               10 * pi * kFlatteningTolerance,
               {{6, 19, 255}, {5, 15, 0}, {53, 20, 255}, {55, 20, 0}});

  // A right angle: miter length / width = 1/sin(45°) = 1.41421; past the limit the corner's
  // triangle is cut off, exactly as a bevel cuts it.
  const Path corner = polyline({{10, 50}, {50, 50}, {50, 10}});
  expectStroke("a miter within its limit", corner, {10, 1.415}, 800, 0, {});
  expectStroke("a miter past its limit: a bevel", corner, {10, 1.414}, 787.5, 0.02, {});
  expectStroke("round join", corner, {10, 4, kButt, LineJoin::Round}, 775 + pi * 25 / 4,
               pi * 5 / 2 * kFlatteningTolerance, {});

  // Closed subpaths: the mitred start corner; the empty inside; no square cap sticking out at the
  // start.
  expectStroke("closed: joined at the start, no caps",
               polyline({{10, 10}, {50, 10}, {50, 50}, {10, 50}}, true), {10, 4, kSquare}, 1600, 0,
               {{5, 5, 255}, {30, 30, 0}, {4, 10, 0}});
  expectStroke("back at the start unclosed: not joined there",
               polyline({{10, 10}, {50, 10}, {50, 50}, {10, 50}, {10, 10}}), {10, 4, kButt}, 1575,
               0, {{5, 5, 0}});
  // The outline turns back at both ends (bevelled U-turns) and covers the segment once: edge
  // pixels keep their partial coverage.
  expectStroke("closed along one line", polyline({{10, 20.25}, {30, 20.25}, {50, 20.25}}, true),
               {10, 4, kSquare}, 400, 0, {{30, 15, 191}, {30, 25, 64}, {9, 20, 0}});
}

TEST(RasterStroker, ExactUTurnsGoRoundTheFront) {
  // Exactly opposite directions give a cross product of +0 or -0; either way the round join
  // must bulge forward, like a round cap, and leave no hole.
  for (const bool closed : {false, true}) {
    for (const double tip : {50.0, 10.0}) {
      SCOPED_TRACE(::testing::Message() << (closed ? "closed" : "open") << " tip " << tip);
      const CoverageGrid grid =
          stroked(polyline({{60 - tip, 20}, {tip, 20}, {60 - tip, 20}}, closed),
                  {10, 4, kRound, LineJoin::Round});
      // Open, the path runs over its own stroke twice and its edge pixels count twice.
      const double edgePixels = closed ? 0 : 2 * 40 + 2 * pi * 5;
      EXPECT_GE(grid.area(), 400 + pi * 25 - 2 * pi * 5 * kFlatteningTolerance);
      EXPECT_LE(grid.area(), 400 + pi * 25 + edgePixels / 2);
      EXPECT_EQ(grid.at(tip > 30 ? 53 : 6, 20), 255);  // inside the rounded tip
      for (int x = 6; x < 54; ++x) ASSERT_EQ(grid.at(x, 18), 255) << x;
    }
  }
}

TEST(RasterStroker, CapsOnCurvesFaceAlongTheTangent) {
  // A quarter circle stroked as wide as its diameter, as icons draw rounded corners: its butt
  // caps lie exactly on the lines through the centre, not tilted with the curve's end chords.
  // The zero-length line first is what path builders put before an arc.
  Path arc = polyline({{44, 64}, {44, 64}});
  arc.addRelativeArc({64, 64}, 20, pi, pi / 2, AffineTransform::identity());
  for (const LineCap cap : {kButt, kSquare}) {
    SCOPED_TRACE(static_cast<int>(cap));
    const CoverageGrid grid = stroked(arc, {40, 4, cap, LineJoin::Round});
    const int reach = cap == kSquare ? 20 : 0;  // square caps extend half the width
    expectEveryPixel(grid,
                     [&](int x, int y) { return y >= 64 + reach || x >= 64 + reach ? 0 : -1; });
    expectProbes(grid, {{30, 63, 255}, {63, 30, 255}});
  }
}

// The vertices of a flattened curve are joined round whatever the join: on a tight bend a miter
// there would stick out.
TEST(RasterStroker, CurvesAreJoinedRoundWithinThemselves) {
  Path bend = polyline({{20, 110}});
  bend.cubicTo({64, -40}, {64, -40}, {108, 110});
  const CoverageGrid round = stroked(bend, {16, 10, kButt, LineJoin::Round});
  for (const LineJoin join : {LineJoin::Miter, LineJoin::Bevel}) {
    EXPECT_EQ(stroked(bend, {16, 10, kButt, join}).values, round.values);
  }
}

// A round join is the arc around its vertex cut into chords that stray from it by at most the
// flattening tolerance. Turns are taken on both sides of the largest one a single chord may span,
// where the join decides without the turn's angle whether the arc needs inner points.
TEST(RasterStroker, RoundJoinsStayWithinTheToleranceOfTheirArc) {
  const Point corner{64, 64};
  for (const double width : {0.3, 2.0, 10.0, 60.0}) {
    const double hw = width / 2;
    const double oneChord = 2 * std::acos(1 - kFlatteningTolerance / hw);
    for (const double factor : {0.5, 0.999, 1.0, 1.001, 1.5, 2.999, 3.001, 20.0}) {
      const double turn = std::min(factor * oneChord, 3.0);
      SCOPED_TRACE(::testing::Message() << "width " << width << ", turn " << turn);
      const Point out{corner.x + 30 * std::cos(turn), corner.y + 30 * std::sin(turn)};
      FlatPath outline;
      Stroker().stroke(polyline<FlatPath>({{corner.x - 30, corner.y}, corner, out}),
                       {width, 4, kButt, LineJoin::Round}, outline);
      // Neighbours both on the join's circle are a chord of it; the middle of the chord is where
      // it strays farthest.
      const auto onCircle = [&](Point p) {
        return std::abs(std::hypot(p.x - corner.x, p.y - corner.y) - hw) < 1e-9;
      };
      const std::vector<Point>& points = outline.points();
      int chords = 0;
      for (std::size_t i = 1; i < points.size(); ++i) {
        const Point a = points[i - 1], b = points[i];
        if (!onCircle(a) || !onCircle(b)) continue;
        ++chords;
        const Point middle{(a.x + b.x) / 2 - corner.x, (a.y + b.y) / 2 - corner.y};
        EXPECT_LE(hw - std::hypot(middle.x, middle.y), kFlatteningTolerance + 1e-12);
      }
      EXPECT_GE(chords, 1);
    }
  }
}

// Random zigzags, open and closed, with short segments, sharp turns and wide strokes. A stroke
// covers at least every segment's rectangle (the inner sides of turns must not open gaps) and,
// with round joins and caps, exactly the points within half the width of the polyline.
TEST(RasterStroker, RandomPolylinesCoverExactlyTheirStrokedArea) {
  std::mt19937 random(11);
  const auto uniform = [&](double lo, double hi) {
    return lo + (hi - lo) * (random() % 100000) / 100000.0;
  };
  // A pixel whose centre is farther than half its diagonal from the stroke's border lies wholly
  // on one side; polygons for arcs stray inward by up to the flattening tolerance.
  const double margin = std::sqrt(0.5) + kFlatteningTolerance + 0.01;
  for (int n = 0; n < 60; ++n) {
    std::vector<Point> points;
    const int count = 2 + static_cast<int>(random() % 6);
    for (int i = 0; i < count; ++i) points.push_back({uniform(20, 108), uniform(20, 108)});
    const bool closed = n % 3 == 0;
    const double width = uniform(1, 30), hw = width / 2;
    const LineJoin join = static_cast<LineJoin>(n % 3);
    SCOPED_TRACE(::testing::Message() << "polyline " << n << " width " << width << " join "
                                      << static_cast<int>(join) << (closed ? " closed" : ""));
    const CoverageGrid grid = stroked(polyline(points, closed),
                                      {width, 10, join == LineJoin::Round ? kRound : kButt, join});
    expectEveryPixel(grid, [&](int x, int y) {
      const Point c{x + 0.5, y + 0.5};
      double distance = 1e9;
      bool inRectangle = false;
      for (int s = 0; s < (closed ? count : count - 1); ++s) {
        const Point a = points[s], b = points[(s + 1) % count];
        distance = std::min(distance, distanceToSegment(c, a, b));
        const double dx = b.x - a.x, dy = b.y - a.y, length = std::hypot(dx, dy);
        const double along = ((c.x - a.x) * dx + (c.y - a.y) * dy) / length;
        const double across = std::abs((c.x - a.x) * dy - (c.y - a.y) * dx) / length;
        inRectangle |= along > margin && along < length - margin && across < hw - margin;
      }
      if (inRectangle || (join == LineJoin::Round && distance < hw - margin)) return 255;
      // Bevels and round joins never reach beyond half the width; miters may.
      return join != LineJoin::Miter && distance > hw + margin ? 0 : -1;
    });
  }
}

}  // namespace
}  // namespace tessaline
