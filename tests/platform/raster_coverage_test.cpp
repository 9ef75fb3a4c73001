// The geometry of the native backend: curves flattened into polylines, strokes outlined, and
// outlines scan-converted into exact-area coverage.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <numeric>
#include <random>
#include <vector>

#include "platform/path.h"
#include "platform/raster/coverage_rasterizer.h"
#include "platform/raster/curve_flattener.h"
#include "platform/raster/stroker.h"

namespace tessaline {
namespace {

using std::numbers::pi;

// Per-pixel coverage of a whole canvas, filled from the rasterizer's spans.
struct CoverageGrid {
  int width, height;
  std::vector<std::uint8_t> values;
  int duplicates = 0;  // pixels handed out twice in one sweep

  CoverageGrid(int w, int h) : width(w), height(h), values(static_cast<std::size_t>(w) * h) {}
  std::uint8_t at(int x, int y) const { return values[static_cast<std::size_t>(y) * width + x]; }
  double area() const { return std::accumulate(values.begin(), values.end(), 0.0) / 255; }
  void solid(int y, int x, int length, std::uint8_t c) {
    for (int i = 0; i < length; ++i) set(x + i, y, c);
  }
  void varying(int y, int x, int length, const std::uint8_t* c) {
    for (int i = 0; i < length; ++i) set(x + i, y, c[i]);
  }
  void set(int x, int y, std::uint8_t v) {
    std::uint8_t& cell = values[static_cast<std::size_t>(y) * width + x];
    duplicates += cell != 0;
    cell = v;
  }
};

struct Probe {
  int x, y, coverage;
};

void expectProbes(const CoverageGrid& grid, const std::vector<Probe>& probes) {
  for (const Probe& p : probes) EXPECT_EQ(grid.at(p.x, p.y), p.coverage) << p.x << "," << p.y;
}

// Every pixel within `tolerance` of expected(x, y); a negative expectation is not checked.
void expectEveryPixel(const CoverageGrid& grid, const auto& expected, double tolerance = 0) {
  for (int y = 0; y < grid.height; ++y) {
    for (int x = 0; x < grid.width; ++x) {
      const double e = expected(x, y);
      if (e >= 0) {
        ASSERT_NEAR(grid.at(x, y), e, tolerance) << x << "," << y;
      }
    }
  }
}

template <typename P = Path>
P polyline(const std::vector<Point>& points, bool closed = false) {
  P path;
  path.moveTo(points[0]);
  for (std::size_t i = 1; i < points.size(); ++i) path.lineTo(points[i]);
  if (closed) path.close();
  return path;
}

FlatPath polygon(const std::vector<Point>& points) {
  return polyline<FlatPath>(points, true);
}
FlatPath rect(double x0, double y0, double x1, double y1) {
  return polygon({{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}});
}

// Sweeps what was added to `rasterizer`, whose canvas is `size` pixels square; every pixel must
// come at most once.
CoverageGrid sweep(CoverageRasterizer& rasterizer, FillRule rule, int size) {
  CoverageGrid grid(size, size);
  rasterizer.sweep(rule, grid);
  EXPECT_EQ(grid.duplicates, 0);
  return grid;
}

CoverageGrid rasterize(const FlatPath& path, FillRule rule = FillRule::Winding, int size = 64) {
  CoverageRasterizer rasterizer(size, size);
  rasterizer.begin({0, 0, size, size});
  rasterizer.addPath(path);
  return sweep(rasterizer, rule, size);
}

CoverageGrid stroked(const Path& path, const StrokeStyle& style) {
  FlatPath flat, outline;
  EXPECT_TRUE(flattenPath(path, flat));
  Stroker().stroke(flat, style, outline);
  return rasterize(outline, FillRule::Winding, 128);
}

double distanceToSegment(Point p, Point a, Point b) {
  const double dx = b.x - a.x, dy = b.y - a.y, lengthSquared = dx * dx + dy * dy;
  const double t =
      lengthSquared == 0
          ? 0
          : std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / lengthSquared, 0.0, 1.0);
  return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

// Area of the part of a convex polygon inside pixel (x, y), by clipping it to the inner side
// (a·x + b·y + c >= 0) of each of the pixel's sides in turn (Sutherland-Hodgman).
double exactPixelArea(std::vector<Point> poly, double x, double y) {
  const double sides[4][3] = {{1, 0, -x}, {-1, 0, x + 1}, {0, 1, -y}, {0, -1, y + 1}};
  for (const auto& [a, b, c] : sides) {
    std::vector<Point> out;
    for (std::size_t i = 0; i < poly.size(); ++i) {
      const Point p = poly[i], q = poly[(i + 1) % poly.size()];
      const double dp = a * p.x + b * p.y + c, dq = a * q.x + b * q.y + c;
      if (dp >= 0) out.push_back(p);
      if ((dp >= 0) != (dq >= 0))
        out.push_back({p.x + dp / (dp - dq) * (q.x - p.x), p.y + dp / (dp - dq) * (q.y - p.y)});
    }
    poly = out;
  }
  double twice = 0;
  for (std::size_t i = 0; i < poly.size(); ++i) {
    twice += poly[i].x * poly[(i + 1) % poly.size()].y - poly[(i + 1) % poly.size()].x * poly[i].y;
  }
  return std::abs(twice) / 2;
}

TEST(RasterCoverage, PixelAlignedSquareFillsExactly) {
  for (FillRule rule : {FillRule::Winding, FillRule::EvenOdd}) {
    SCOPED_TRACE(static_cast<int>(rule));
    expectEveryPixel(rasterize(rect(10, 12, 20, 30), rule),
                     [](int x, int y) { return x >= 10 && x < 20 && y >= 12 && y < 30 ? 255 : 0; });
  }
}

// Partly covered pixels get their area rounded to nearest, and geometry huge or far away is
// clipped rather than overflowed.
TEST(RasterCoverage, KnownShapesGetTheirExactCoverage) {
  std::vector<Probe> diagonal = {{3, 3, 255}, {15, 15, 0}};
  for (int i = 0; i < 16; ++i) diagonal.push_back({i, 15 - i, 128});  // halves what it crosses
  const struct {
    FlatPath shape;
    double area;  // in pixels; negative: not checked
    std::vector<Probe> probes;
  } cases[] = {
      {rect(10.5, 0, 20, 4), -1, {{10, 2, 128}, {11, 2, 255}, {9, 2, 0}}},  // 127.5
      {rect(0, 5.75, 8, 9), -1, {{3, 5, 64}, {3, 6, 255}}},                 // 63.75
      {polygon({{0, 0}, {16, 0}, {0, 16}}), -1, diagonal},
      {rect(-1e9, -1e9, 1e9, 1e9), 64 * 64, {}},  // far larger than the canvas: all of it
      {rect(-1e7, 10, 20.5, 20), -1, {{0, 15, 255}, {20, 15, 128}, {21, 15, 0}, {5, 9, 0}}},
      {rect(-1e8, 30, 1e8, 31), 64, {{40, 30, 255}}},       // a sliver from far away: a 1 px band
      {polygon({{-50, 10}, {-10, 10}, {-10, 20}}), 0, {}},  // wholly outside
      {polygon({{70, 10}, {90, 10}, {90, 20}}), 0, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    const CoverageGrid grid = rasterize(c.shape);
    if (c.area >= 0) {
      EXPECT_EQ(grid.area(), c.area);
    }
    expectProbes(grid, c.probes);
  }
}

TEST(RasterCoverage, RandomTrianglesMatchTheExactAreaOfEveryPixel) {
  std::mt19937 random(7);
  const auto coordinate = [&] { return (random() % 40000) / 1000.0 - 4; };  // -4 ... 36
  for (int n = 0; n < 200; ++n) {
    const std::vector<Point> triangle = {
        {coordinate(), coordinate()}, {coordinate(), coordinate()}, {coordinate(), coordinate()}};
    SCOPED_TRACE(::testing::Message() << "triangle " << n);
    // Vertices and crossings round to 1/256 px, which moves each edge by at most 1/512 px in x
    // and y; two edges in one pixel and the final rounding stay within 2 levels.
    expectEveryPixel(
        rasterize(polygon(triangle), n % 2 ? FillRule::EvenOdd : FillRule::Winding, 32),
        [&](int x, int y) { return exactPixelArea(triangle, x, y) * 255; }, 2);
  }
}

TEST(RasterCoverage, FillRulesDifferOnASelfOverlappingStar) {
  // A pentagram drawn in one stroke: its centre pentagon winds twice.
  std::vector<Point> points;
  for (int i = 0; i < 5; ++i) {
    const double angle = -pi / 2 + i * 4 * pi / 5;
    points.push_back({32 + 30 * std::cos(angle), 32 + 30 * std::sin(angle)});
  }
  const CoverageGrid nonZero = rasterize(polygon(points), FillRule::Winding);
  const CoverageGrid evenOdd = rasterize(polygon(points), FillRule::EvenOdd);
  // The centre, and a point: covered once, by both rules.
  expectProbes(nonZero, {{32, 32, 255}, {32, 6, 255}});
  expectProbes(evenOdd, {{32, 32, 0}, {32, 6, 255}});
  // Both rules agree everywhere outside the centre pentagon, whose corners lie 11.5 px out.
  expectEveryPixel(evenOdd, [&](int x, int y) {
    return std::hypot(x + 0.5 - 32, y + 0.5 - 32) > 12.5 ? nonZero.at(x, y) : -1;
  });
  EXPECT_GT(nonZero.area() - evenOdd.area(), 200);
}

TEST(RasterCoverage, BoxLimitsWorkWithoutChangingCoverageInside) {
  const FlatPath shape = polygon({{3.3, 2.7}, {60.1, 10.4}, {30.2, 61.9}, {-5, 40}});
  const CoverageGrid full = rasterize(shape);
  CoverageRasterizer rasterizer(64, 64);
  const PixelBox box{10, 20, 40, 50};
  rasterizer.begin(box);
  rasterizer.addPath(shape);
  EXPECT_EQ(rasterizer.bounds(), box);  // the shape crosses the whole box
  // An edge split where it leaves the box gets a new end point, rounded to 1/256 px, which can
  // move the pixels it crosses by one level.
  const CoverageGrid part = sweep(rasterizer, FillRule::Winding, 64);
  const auto inBox = [&](int x, int y) {
    return x >= box.x0 && x < box.x1 && y >= box.y0 && y < box.y1;
  };
  expectEveryPixel(
      part, [&](int x, int y) { return inBox(x, y) ? full.at(x, y) : -1; }, 1);
  expectEveryPixel(part, [&](int x, int y) { return inBox(x, y) ? -1 : 0; });
  // The sweep left the rasterizer empty: a new shape sees none of the old one.
  rasterizer.begin({0, 0, 64, 64});
  rasterizer.addPath(rect(1, 1, 2, 2));
  const CoverageGrid again = sweep(rasterizer, FillRule::Winding, 64);
  EXPECT_EQ(again.area(), 1);
  EXPECT_EQ(again.at(1, 1), 255);
}

TEST(RasterCoverage, CoverageMappingOfSummedAreas) {
  constexpr std::uint32_t full = CoverageRasterizer::kFullArea;
  EXPECT_EQ(CoverageRasterizer::nonZeroCoverage(full), 255);
  EXPECT_EQ(CoverageRasterizer::nonZeroCoverage(0u - full), 255);  // wound the other way
  EXPECT_EQ(CoverageRasterizer::nonZeroCoverage(3 * full), 255);
  EXPECT_EQ(CoverageRasterizer::nonZeroCoverage(full / 2), 128);
  EXPECT_EQ(CoverageRasterizer::evenOddCoverage(2 * full), 0);
  EXPECT_EQ(CoverageRasterizer::evenOddCoverage(3 * full), 255);
  EXPECT_EQ(CoverageRasterizer::evenOddCoverage(0u - full), 255);
  EXPECT_EQ(CoverageRasterizer::evenOddCoverage(full + full / 4), 191);  // 1.25 folds to 0.75
}

TEST(RasterFlattener, CurvesStayWithinTheTolerance) {
  std::mt19937 random(3);
  const auto coordinate = [&] { return (random() % 300000) / 1000.0 - 20; };
  for (int n = 0; n < 100; ++n) {
    SCOPED_TRACE(n);
    std::vector<Point> p;
    for (int i = 0; i < 4; ++i) p.push_back({coordinate(), coordinate()});
    Path path;
    path.moveTo(p[0]);
    if (n % 2) {
      p.pop_back();
      path.quadTo(p[1], p[2]);
    } else {
      path.cubicTo(p[1], p[2], p[3]);
    }
    FlatPath flat;
    ASSERT_TRUE(flattenPath(path, flat));
    // The largest distance from the true curve, sampled finely (de Casteljau), to the polyline.
    double worst = 0;
    for (int i = 0; i <= 2000; ++i) {
      std::vector<Point> q = p;
      for (std::size_t m = q.size() - 1; m > 0; --m) {
        for (std::size_t k = 0; k < m; ++k) {
          q[k] = {q[k].x + (q[k + 1].x - q[k].x) * i / 2000,
                  q[k].y + (q[k + 1].y - q[k].y) * i / 2000};
        }
      }
      double nearest = std::numeric_limits<double>::infinity();
      for (std::size_t k = 1; k < flat.points().size(); ++k) {
        nearest =
            std::min(nearest, distanceToSegment(q[0], flat.points()[k - 1], flat.points()[k]));
      }
      worst = std::max(worst, nearest);
    }
    EXPECT_LE(worst, kFlatteningTolerance);
    // The end is a real vertex, not a smooth one.
    EXPECT_EQ(flat.smooth().back(), 0);
    EXPECT_EQ(flat.points().back(), p.back());
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
  const std::pair<std::uint32_t, bool> expected[] = {{1, false}, {2, true}, {2, true}, {1, true}};
  ASSERT_EQ(flat.contours().size(), 4u);
  for (int i = 0; i < 4; ++i) {
    const FlatContour& contour = flat.contours()[i];
    ASSERT_EQ(contour.end - contour.begin, expected[i].first) << i;
    EXPECT_EQ(contour.closed, expected[i].second) << i;
  }
  EXPECT_EQ(flat.points()[flat.contours()[2].begin], (Point{10, 10}));
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

// Strokes of known shapes: the area they cover in pixels, within `tolerance`, and some pixels'
// coverage. Round caps, joins and dots are inscribed polygons, which lose at most the flattening
// tolerance times their perimeter.
void expectStroke(const char* name, const Path& path, const StrokeStyle& style, double area,
                  double tolerance, const std::vector<Probe>& probes) {
  SCOPED_TRACE(name);
  const CoverageGrid grid = stroked(path, style);
  if (!std::isnan(area)) {
    EXPECT_NEAR(grid.area(), area, tolerance);
  }
  expectProbes(grid, probes);
}

constexpr LineCap kButt = LineCap::Butt, kSquare = LineCap::Square, kRound = LineCap::Round;
constexpr double kUnchecked = std::numeric_limits<double>::quiet_NaN();

TEST(RasterStroker, CapsAndJoins) {
  const Path line = polyline({{10, 20}, {50, 20}});
  for (const LineCap cap : {kButt, kSquare, kRound}) {  // the body is as wide as the stroke
    expectStroke("body", line, {10, 4, cap}, kUnchecked, 0,
                 {{30, 15, 255}, {30, 14, 0}, {30, 24, 255}, {30, 25, 0}});
  }
  expectStroke("butt caps end at the ends", line, {10, 4, kButt}, 400, 0, {{9, 20, 0}});
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
  expectStroke("a miter past its limit", corner, {10, 1.414}, 787.5, 0.02, {});
  EXPECT_EQ(stroked(corner, {10, 1.414}).area(),
            stroked(corner, {10, 10, kButt, LineJoin::Bevel}).area());
  expectStroke("round join", corner, {10, 4, kButt, LineJoin::Round}, 775 + pi * 25 / 4,
               pi * 5 / 2 * kFlatteningTolerance, {});
  // A sharp 30° corner: the ratio is 1/sin(15°) = 3.8637, so 4 mitres and 3.8 bevels; the miter
  // tip lies 5 · 3.8637 = 19.3 px from the corner, at (118.7, 105).
  const Path sharp =
      polyline({{10, 100}, {100, 100}, {100 - 80 * std::cos(pi / 6), 100 - 80 * std::sin(pi / 6)}});
  expectStroke("a sharp miter within its limit", sharp, {10, 4}, kUnchecked, 0, {{115, 104, 255}});
  expectStroke("a sharp miter past its limit", sharp, {10, 3.8}, kUnchecked, 0,
               {{115, 104, 0}, {97, 101, 255}});

  // A circle stroked with any join stays round, without gaps.
  const double r = 40;
  std::vector<Probe> ring = {{64, 64, 0}};
  for (int k = 0; k < 64; ++k) {
    ring.push_back({static_cast<int>(std::floor(64 + r * std::cos(k * 2 * pi / 64))),
                    static_cast<int>(std::floor(64 + r * std::sin(k * 2 * pi / 64))), 255});
  }
  for (LineJoin join : {LineJoin::Miter, LineJoin::Bevel, LineJoin::Round}) {
    expectStroke("circle", makeOvalPath({64 - r, 64 - r, 2 * r, 2 * r}), {6, 4, kButt, join},
                 pi * (43 * 43 - 37 * 37), 3, ring);
  }
}

TEST(RasterStroker, ClosedAndDegenerateSubpaths) {
  // The mitred start corner; the empty inside; no square cap sticking out at the start.
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

  // With no length, round caps draw a dot of the stroke width and others nothing.
  const Path dot = polyline({{30, 30}, {30, 30}});
  Path curve = polyline({{30, 30}});
  curve.cubicTo({30, 30}, {30, 30}, {30, 30});
  const double disc = pi * 36, tolerance = 12 * pi * kFlatteningTolerance;
  expectStroke("zero-length line, round", dot, {12, 4, kRound}, disc, tolerance, {{30, 30, 255}});
  expectStroke("zero-length line, butt", dot, {12, 4, kButt}, 0, tolerance, {{30, 30, 0}});
  expectStroke("zero-length line, square", dot, {12, 4, kSquare}, 0, tolerance, {{30, 30, 0}});
  expectStroke("closed single point, round", polyline({{30, 30}}, true), {12, 4, kRound}, disc,
               tolerance, {{30, 30, 255}});
  expectStroke("zero-length curve, round", curve, {12, 4, kRound}, disc, tolerance,
               {{30, 30, 255}});
  expectStroke("lone move, round", polyline({{30, 30}}), {12, 4, kRound}, 0, tolerance,
               {{30, 30, 0}});
}

TEST(RasterStroker, ExactUTurnsGoRoundTheFront) {
  // Exactly opposite directions give a cross product of +0 or -0; either way the round join
  // must bulge forward, like a round cap, and leave no hole.
  for (const bool closed : {false, true}) {
    for (const Point tip : {Point{50, 20}, Point{10, 20}}) {
      const Point other{60 - tip.x, 20};
      SCOPED_TRACE(::testing::Message() << (closed ? "closed" : "open") << " tip " << tip.x);
      const CoverageGrid grid =
          stroked(polyline({other, tip, other}, closed), {10, 4, LineCap::Round, LineJoin::Round});
      // Open, the path runs over its own stroke twice and its edge pixels count twice.
      const double edgePixels = closed ? 0 : 2 * 40 + 2 * pi * 5;
      EXPECT_GE(grid.area(), 400 + pi * 25 - 2 * pi * 5 * kFlatteningTolerance);
      EXPECT_LE(grid.area(), 400 + pi * 25 + edgePixels / 2);
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
    Path arc = polyline({{44, 64}, {44, 64}});
    arc.addRelativeArc({64, 64}, 20, pi, pi / 2, AffineTransform::identity());
    const CoverageGrid grid = stroked(arc, {40, 4, cap, LineJoin::Round});
    const int reach = cap == LineCap::Square ? 20 : 0;  // square caps extend half the width
    expectEveryPixel(grid,
                     [&](int x, int y) { return y >= 64 + reach || x >= 64 + reach ? 0 : -1; });
    expectProbes(grid, {{30, 63, 255}, {63, 30, 255}});
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
    const LineCap cap = join == LineJoin::Round ? LineCap::Round : LineCap::Butt;
    SCOPED_TRACE(::testing::Message() << "polyline " << n << " width " << width << " join "
                                      << static_cast<int>(join) << (closed ? " closed" : ""));
    const CoverageGrid grid = stroked(polyline(points, closed), {width, 10, cap, join});
    expectEveryPixel(grid, [&](int x, int y) {
      const Point c{x + 0.5, y + 0.5};
      double distance = 1e9;
      bool inRectangle = false;
      for (int s = 0; s < (closed ? count : count - 1); ++s) {
        const Point a = points[s], b = points[(s + 1) % count];
        distance = std::min(distance, distanceToSegment(c, a, b));
        const double length = std::hypot(b.x - a.x, b.y - a.y);
        const double along = ((c.x - a.x) * (b.x - a.x) + (c.y - a.y) * (b.y - a.y)) / length;
        const double across =
            std::abs((c.x - a.x) * (b.y - a.y) - (c.y - a.y) * (b.x - a.x)) / length;
        inRectangle =
            inRectangle || (along > margin && along < length - margin && across < hw - margin);
      }
      if (inRectangle || (join == LineJoin::Round && distance < hw - margin)) return 255;
      // Bevels and round joins never reach beyond half the width; miters may.
      return join != LineJoin::Miter && distance > hw + margin ? 0 : -1;
    });
  }
}

}  // namespace
}  // namespace tessaline
