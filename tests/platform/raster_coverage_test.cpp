// The geometry of the native backend: curves flattened into polylines and outlines
// scan-converted into exact-area coverage.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "platform/path.h"
#include "platform/raster/coverage_rasterizer.h"
#include "platform/raster/curve_flattener.h"
#include "platform/raster_coverage_grid.h"

namespace tessaline {
namespace {

using namespace raster_testing;

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
  for (std::size_t i = 0, n = poly.size(); i < n; ++i) {
    twice += poly[i].x * poly[(i + 1) % n].y - poly[(i + 1) % n].x * poly[i].y;
  }
  return std::abs(twice) / 2;
}

// Geometry huge or far away is clipped rather than overflowed. Partly covered pixels rounding to
// nearest (half and quarter pixels to 128 and 64) are pinned by the translucency test, which
// checks every pixel of boxes on whole and half pixels. The fill rules' mapping of summed areas is
// checked by the vector sweep's comparison with the cell-by-cell one and by the differential
// test's self-crossing fills.
TEST(RasterCoverage, KnownShapesGetTheirExactCoverage) {
  const struct {
    FlatPath shape;
    double area;  // in pixels
    std::vector<Probe> probes;
  } cases[] = {
      {rect(-1e9, -1e9, 1e9, 1e9), 64 * 64, {}},  // far larger than the canvas: all of it
      {rect(-1e7, 10, 20.5, 20),
       20 * 10 + 10 * 128 / 255.0,
       {{0, 15, 255}, {20, 15, 128}, {21, 15, 0}, {5, 9, 0}}},
      {rect(-1e8, 30, 1e8, 31), 64, {{40, 30, 255}}},       // a sliver from far away: a 1 px band
      {polygon({{-50, 10}, {-10, 10}, {-10, 20}}), 0, {}},  // wholly outside
      {polygon({{70, 10}, {90, 10}, {90, 20}}), 0, {}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);
    const CoverageGrid grid = rasterize(c.shape);
    EXPECT_DOUBLE_EQ(grid.area(), c.area);
    expectProbes(grid, c.probes);
  }
}

TEST(RasterCoverage, RandomTrianglesMatchTheExactAreaOfEveryPixel) {
  std::mt19937 random(7);
  const auto uniform = [&](double lo, double hi) {
    return lo + (random() % static_cast<unsigned>(1000 * (hi - lo))) / 1000.0;
  };
  for (int n = 0; n < 300; ++n) {
    // Past 256 pixels the marks of touched cells take more than one word per row; the last
    // hundred triangles straddle the first word's end (column 256) and must come out just as exact.
    const bool wide = n >= 200;
    const auto point = [&] {
      return wide ? Point{uniform(240, 276), uniform(0, 32)}
                  : Point{uniform(-4, 36), uniform(-4, 36)};
    };
    const std::vector<Point> triangle = {point(), point(), point()};
    SCOPED_TRACE(::testing::Message() << "triangle " << n);
    // Vertices and crossings round to 1/256 px, which moves each edge by at most 1/512 px in x
    // and y; two edges in one pixel and the final rounding stay within 2 levels.
    expectEveryPixel(
        rasterize(polygon(triangle), n % 2 ? FillRule::EvenOdd : FillRule::Winding,
                  wide ? 300 : 32),
        [&](int x, int y) {
          const bool near = !wide || (x >= 239 && x < 278 && y < 33);  // only to save time
          return near ? exactPixelArea(triangle, x, y) * 255 : 0;
        },
        2);
  }
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
  // move the pixels it crosses by one level; nothing outside the box is drawn.
  const CoverageGrid part = sweep(rasterizer, FillRule::Winding, 64);
  const auto inBox = [&](int x, int y) {
    return x >= box.x0 && x < box.x1 && y >= box.y0 && y < box.y1;
  };
  expectEveryPixel(
      part, [&](int x, int y) { return inBox(x, y) ? full.at(x, y) : 0; }, 1);
}

// Every point of the true curve, sampled finely (de Casteljau), lies within the tolerance of the
// polyline; the end is a real vertex, not a smooth one.
TEST(RasterFlattener, CurvesStayWithinTheTolerance) {
  std::mt19937 random(3);
  const auto coordinate = [&] { return (random() % 300000) / 1000.0 - 20; };
  for (int n = 0; n < 100; ++n) {
    SCOPED_TRACE(n);
    std::vector<Point> p(n % 2 ? 3 : 4);
    for (Point& point : p) point = {coordinate(), coordinate()};
    Path path = polyline({p[0]});
    n % 2 ? path.quadTo(p[1], p[2]) : path.cubicTo(p[1], p[2], p[3]);
    FlatPath flat;
    ASSERT_TRUE(flattenPath(path, flat));
    const std::vector<Point>& f = flat.points();
    for (double t = 0; t <= 1; t += 1 / 2000.0) {
      std::vector<Point> q = p;
      for (std::size_t m = q.size() - 1; m > 0; --m) {
        for (std::size_t k = 0; k < m; ++k)
          q[k] = {q[k].x + (q[k + 1].x - q[k].x) * t, q[k].y + (q[k + 1].y - q[k].y) * t};
      }
      double nearest = 1e9;
      for (std::size_t k = 1; k < f.size(); ++k)
        nearest = std::min(nearest, distanceToSegment(q[0], f[k - 1], f[k]));
      ASSERT_LE(nearest, kFlatteningTolerance) << "t " << t;
    }
    EXPECT_EQ(flat.smooth().back(), 0);
    EXPECT_EQ(f.back(), p.back());
  }
}

// Subpaths follow the platform path's, and curves wholly outside the box are replaced by their
// chords.
TEST(RasterFlattener, SubpathsFollowThePlatformPathAndCurvesOutsideTheBoxAreCulled) {
  Path path = polyline({{1, 1}});  // a lone move: a contour of one point
  path.moveTo({10, 10});
  path.lineTo({20, 10});
  path.close();
  path.lineTo({10, 30});  // continues from the closed subpath's start as a new contour
  path.close();
  path.close();  // a second close: a closed contour of the start point alone
  FlatPath flat;
  ASSERT_TRUE(flattenPath(path, flat));
  using Contours = std::vector<std::pair<std::uint32_t, bool>>;  // point count, closed
  Contours contours;
  for (const FlatContour& c : flat.contours()) contours.push_back({c.end - c.begin, c.closed});
  EXPECT_EQ(contours, (Contours{{1, false}, {2, true}, {2, true}, {1, true}}));
  EXPECT_EQ(flat.points()[flat.contours().at(2).begin], (Point{10, 10}));

  Path curves = polyline({{-50, 0}});
  curves.cubicTo({-80, 20}, {-90, 40}, {-50, 60});  // all left of the box: its chord will do
  curves.cubicTo({10, 70}, {20, 80}, {30, 60});     // crosses the box: flattened
  FlatPath culled, full;
  ASSERT_TRUE(flattenPath(curves, culled, Rect{0, 0, 100, 100}));
  ASSERT_TRUE(flattenPath(curves, full));
  EXPECT_EQ(culled.points()[1], (Point{-50, 60}));
  EXPECT_GT(culled.points().size(), 3u);
  EXPECT_GT(full.points().size(), culled.points().size());
}

}  // namespace
}  // namespace tessaline
