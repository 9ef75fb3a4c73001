#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "platform/path.h"
#include "platform/raster/curve_flattener.h"
#include "platform/raster/stroker.h"
#include "raster_test_support.h"

namespace tessaline {
namespace {

using testing::CoverageGrid;
using testing::rasterize;

constexpr int kSize = 128;

CoverageGrid strokeCoverage(const Path& path, const StrokeStyle& style) {
  FlatPath flat, outline;
  EXPECT_TRUE(flattenPath(path, flat));
  Stroker stroker;
  stroker.stroke(flat, style, outline);
  return rasterize(outline, FillRule::Winding, kSize, kSize);
}

Path polyline(std::initializer_list<Point> points, bool closed = false) {
  Path path;
  bool first = true;
  for (Point p : points) {
    if (first)
      path.moveTo(p);
    else
      path.lineTo(p);
    first = false;
  }
  if (closed) path.close();
  return path;
}

StrokeStyle style(double width, LineCap cap, LineJoin join = LineJoin::Miter, double limit = 4) {
  return {width, limit, cap, join};
}

TEST(RasterStroker, CapsExtendByHalfTheWidthExceptButt) {
  const Path line = polyline({{10, 20}, {50, 20}});
  const CoverageGrid butt = strokeCoverage(line, style(10, LineCap::Butt));
  const CoverageGrid square = strokeCoverage(line, style(10, LineCap::Square));
  const CoverageGrid round = strokeCoverage(line, style(10, LineCap::Round));
  EXPECT_EQ(butt.area(), 40 * 10);
  EXPECT_EQ(square.area(), 50 * 10);
  // A 40 x 10 body and two half discs of radius 5, drawn as inscribed polygons that lose at most
  // the tolerance times the perimeter.
  EXPECT_NEAR(round.area(), 400 + std::numbers::pi * 25,
              2 * std::numbers::pi * 5 * kFlatteningTolerance);
  for (const CoverageGrid* grid : {&butt, &square, &round}) {
    EXPECT_EQ(grid->at(30, 15), 255);
    EXPECT_EQ(grid->at(30, 14), 0);
    EXPECT_EQ(grid->at(30, 24), 255);
    EXPECT_EQ(grid->at(30, 25), 0);
  }
  EXPECT_EQ(butt.at(9, 20), 0);
  EXPECT_EQ(square.at(5, 15), 255);
  EXPECT_EQ(square.at(4, 20), 0);
  EXPECT_EQ(round.at(6, 19), 255);  // inside the cap's half disc
  EXPECT_EQ(round.at(5, 15), 0);    // the corner a square cap would fill
  EXPECT_EQ(round.at(53, 20), 255);
  EXPECT_EQ(round.at(55, 20), 0);
}

TEST(RasterStroker, MiterLimitSwitchesToBevel) {
  // A right angle: miter length / width = 1/sin(45°) = 1.41421.
  const Path corner = polyline({{10, 50}, {50, 50}, {50, 10}});
  const double miter =
      strokeCoverage(corner, style(10, LineCap::Butt, LineJoin::Miter, 1.415)).area();
  const double bevel =
      strokeCoverage(corner, style(10, LineCap::Butt, LineJoin::Miter, 1.414)).area();
  const double explicitBevel =
      strokeCoverage(corner, style(10, LineCap::Butt, LineJoin::Bevel, 10)).area();
  const double round = strokeCoverage(corner, style(10, LineCap::Butt, LineJoin::Round)).area();
  EXPECT_EQ(miter, 45 * 10 + 35 * 10);
  EXPECT_NEAR(bevel, miter - 12.5, 0.02);  // the corner's triangle is cut off
  EXPECT_EQ(bevel, explicitBevel);
  EXPECT_NEAR(round, miter - 25 + std::numbers::pi * 25 / 4,
              std::numbers::pi * 5 / 2 * kFlatteningTolerance);

  // A sharp 30° corner: the ratio is 1/sin(15°) = 3.8637, so 4 mitres and 3.8 bevels; the miter
  // tip lies 5 · 3.8637 = 19.3 px from the corner, at (118.7, 105).
  const double angle = std::numbers::pi / 6;
  const Path sharp =
      polyline({{10, 100}, {100, 100}, {100 - 80 * std::cos(angle), 100 - 80 * std::sin(angle)}});
  const CoverageGrid kept = strokeCoverage(sharp, style(10, LineCap::Butt, LineJoin::Miter, 4));
  const CoverageGrid cut = strokeCoverage(sharp, style(10, LineCap::Butt, LineJoin::Miter, 3.8));
  EXPECT_EQ(kept.at(115, 104), 255);  // inside the tip
  EXPECT_EQ(cut.at(115, 104), 0);
  EXPECT_EQ(cut.at(97, 101), 255);
}

TEST(RasterStroker, ClosedSubpathsJoinAtTheStartAndHaveNoCaps) {
  const Path closed = polyline({{10, 10}, {50, 10}, {50, 50}, {10, 50}}, true);
  const CoverageGrid ring = strokeCoverage(closed, style(10, LineCap::Square));
  EXPECT_EQ(ring.area(), 50 * 50 - 30 * 30);
  EXPECT_EQ(ring.at(5, 5), 255);  // the mitred start corner
  EXPECT_EQ(ring.at(30, 30), 0);  // the inside stays empty
  EXPECT_EQ(ring.at(4, 10), 0);   // no square cap sticks out at the start

  // Returning to the start without closing leaves the start corner unjoined.
  const Path open = polyline({{10, 10}, {50, 10}, {50, 50}, {10, 50}, {10, 10}});
  const CoverageGrid unjoined = strokeCoverage(open, style(10, LineCap::Butt));
  EXPECT_EQ(unjoined.area(), 50 * 50 - 30 * 30 - 25);
  EXPECT_EQ(unjoined.at(5, 5), 0);

  // Closed along one line, the outline turns back at both ends (bevelled U-turns) and covers
  // the segment once: edge pixels keep their partial coverage.
  const CoverageGrid flat = strokeCoverage(polyline({{10, 20.25}, {30, 20.25}, {50, 20.25}}, true),
                                           style(10, LineCap::Square));
  EXPECT_EQ(flat.area(), 400);
  EXPECT_EQ(flat.at(30, 15), 191);
  EXPECT_EQ(flat.at(30, 25), 64);
  EXPECT_EQ(flat.at(9, 20), 0);
}

TEST(RasterStroker, DegenerateSubpaths) {
  struct Case {
    const char* name;
    Path path;
    LineCap cap;
    double area;
  };
  Path dot = polyline({{30, 30}, {30, 30}});
  Path closedPoint = polyline({{30, 30}}, true);
  Path loneMove = polyline({{30, 30}});
  Path curve;
  curve.moveTo({30, 30});
  curve.cubicTo({30, 30}, {30, 30}, {30, 30});
  const double disc = std::numbers::pi * 36;  // width 12
  const Case cases[] = {
      {"zero-length line, round", dot, LineCap::Round, disc},
      {"zero-length line, butt", dot, LineCap::Butt, 0},
      {"zero-length line, square", dot, LineCap::Square, 0},
      {"closed single point, round", closedPoint, LineCap::Round, disc},
      {"zero-length curve, round", curve, LineCap::Round, disc},
      {"lone move, round", loneMove, LineCap::Round, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const CoverageGrid grid = strokeCoverage(c.path, style(12, c.cap));
    EXPECT_NEAR(grid.area(), c.area, 2 * std::numbers::pi * 6 * kFlatteningTolerance);
    EXPECT_EQ(grid.at(30, 30), c.area > 0 ? 255 : 0);
  }
}

TEST(RasterStroker, ExactUTurnsGoRoundTheFront) {
  // Exactly opposite directions give a cross product of +0 or -0; either way the round join
  // must bulge forward, like a round cap, and leave no hole.
  for (const bool closed : {false, true}) {
    for (const Point tip : {Point{50, 20}, Point{10, 20}}) {
      const Point other{60 - tip.x, 20};
      SCOPED_TRACE(::testing::Message() << (closed ? "closed" : "open") << " tip " << tip.x);
      const CoverageGrid grid = strokeCoverage(polyline({other, tip, other}, closed),
                                               style(10, LineCap::Round, LineJoin::Round));
      // Open, the path runs over its own stroke twice and its edge pixels count twice.
      const double edgePixels = closed ? 0 : 2 * 40 + 2 * std::numbers::pi * 5;
      EXPECT_GE(grid.area(),
                400 + std::numbers::pi * 25 - 2 * std::numbers::pi * 5 * kFlatteningTolerance);
      EXPECT_LE(grid.area(), 400 + std::numbers::pi * 25 + edgePixels / 2);
      EXPECT_EQ(grid.at(tip.x > 30 ? 53 : 6, 20), 255);  // inside the rounded tip
      for (int x = 6; x < 54; ++x) ASSERT_EQ(grid.at(x, 18), 255) << x;
    }
  }
}

TEST(RasterStroker, CapsOnCurvesFaceAlongTheTangent) {
  // A quarter circle stroked as wide as its diameter, as icons draw rounded corners: its butt
  // caps lie exactly on the lines through the centre, not tilted with the curve's end chords.
  // The zero-length line first is what path builders put before an arc.
  for (const LineCap cap : {LineCap::Butt, LineCap::Square}) {
    SCOPED_TRACE(static_cast<int>(cap));
    Path arc;
    arc.moveTo({44, 64});
    arc.lineTo({44, 64});
    arc.addRelativeArc({64, 64}, 20, std::numbers::pi, std::numbers::pi / 2,
                       AffineTransform::identity());
    const CoverageGrid grid = strokeCoverage(arc, style(40, cap, LineJoin::Round));
    const int reach = cap == LineCap::Square ? 20 : 0;  // square caps extend half the width
    for (int y = 0; y < kSize; ++y) {
      for (int x = 0; x < kSize; ++x) {
        if (y >= 64 + reach || x >= 64 + reach) {
          ASSERT_EQ(grid.at(x, y), 0) << x << "," << y;
        }
      }
    }
    EXPECT_EQ(grid.at(30, 63), 255);
    EXPECT_EQ(grid.at(63, 30), 255);
  }
}

TEST(RasterStroker, CurvesAreStrokedSmoothlyWithoutGaps) {
  const double r = 40;
  const Path circle = makeOvalPath({64 - r, 64 - r, 2 * r, 2 * r});
  for (LineJoin join : {LineJoin::Miter, LineJoin::Bevel, LineJoin::Round}) {
    SCOPED_TRACE(static_cast<int>(join));
    const CoverageGrid ring = strokeCoverage(circle, style(6, LineCap::Butt, join));
    EXPECT_NEAR(ring.area(), std::numbers::pi * (43 * 43 - 37 * 37), 3);
    EXPECT_EQ(ring.at(64, 64), 0);
    for (int k = 0; k < 64; ++k) {
      const double a = k * 2 * std::numbers::pi / 64;
      const int x = static_cast<int>(std::floor(64 + r * std::cos(a)));
      const int y = static_cast<int>(std::floor(64 + r * std::sin(a)));
      ASSERT_EQ(ring.at(x, y), 255) << k;
    }
  }
}

double distanceToSegment(Point p, Point a, Point b) {
  const double dx = b.x - a.x, dy = b.y - a.y;
  const double t =
      std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
  return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
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
    const double width = uniform(1, 30);
    const double hw = width / 2;
    const LineJoin join = static_cast<LineJoin>(n % 3);
    const LineCap cap = join == LineJoin::Round ? LineCap::Round : LineCap::Butt;
    SCOPED_TRACE(::testing::Message() << "polyline " << n << " width " << width << " join "
                                      << static_cast<int>(join) << (closed ? " closed" : ""));
    Path path;
    path.moveTo(points[0]);
    for (int i = 1; i < count; ++i) path.lineTo(points[i]);
    if (closed) path.close();
    const CoverageGrid grid = strokeCoverage(path, style(width, cap, join, 10));

    const int segments = closed ? count : count - 1;
    for (int y = 0; y < kSize; ++y) {
      for (int x = 0; x < kSize; ++x) {
        const Point c{x + 0.5, y + 0.5};
        double distance = 1e9;
        bool inRectangle = false;
        for (int s = 0; s < segments; ++s) {
          const Point a = points[s], b = points[(s + 1) % count];
          distance = std::min(distance, distanceToSegment(c, a, b));
          const double length = std::hypot(b.x - a.x, b.y - a.y);
          const double along = ((c.x - a.x) * (b.x - a.x) + (c.y - a.y) * (b.y - a.y)) / length;
          const double across =
              std::abs((c.x - a.x) * (b.y - a.y) - (c.y - a.y) * (b.x - a.x)) / length;
          inRectangle =
              inRectangle || (along > margin && along < length - margin && across < hw - margin);
        }
        if (inRectangle || (join == LineJoin::Round && distance < hw - margin)) {
          ASSERT_EQ(grid.at(x, y), 255) << x << "," << y;
        }
        // Bevels and round joins never reach beyond half the width; miters may.
        if (join != LineJoin::Miter && distance > hw + margin) {
          ASSERT_EQ(grid.at(x, y), 0) << x << "," << y;
        }
      }
    }
  }
}

}  // namespace
}  // namespace tessaline
