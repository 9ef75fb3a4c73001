// Coverage of whole small canvases, for the tests of the native backend's flattening, stroking
// and scan conversion.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <numeric>
#include <vector>

#include "platform/path.h"
#include "platform/raster/coverage_rasterizer.h"
#include "platform/raster/curve_flattener.h"
#include "platform/raster/stroker.h"

namespace tessaline::raster_testing {

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

inline void expectProbes(const CoverageGrid& grid, const std::vector<Probe>& probes) {
  for (const Probe& p : probes) EXPECT_EQ(grid.at(p.x, p.y), p.coverage) << p.x << "," << p.y;
}

// Every pixel within `tolerance` of expected(x, y); a negative expectation is not checked.
inline void expectEveryPixel(const CoverageGrid& grid, const auto& expected, double tolerance = 0) {
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
inline P polyline(const std::vector<Point>& points, bool closed = false) {
  P path;
  path.moveTo(points[0]);
  for (std::size_t i = 1; i < points.size(); ++i) path.lineTo(points[i]);
  if (closed) path.close();
  return path;
}

inline FlatPath polygon(const std::vector<Point>& points) {
  return polyline<FlatPath>(points, true);
}
inline FlatPath rect(double x0, double y0, double x1, double y1) {
  return polygon({{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}});
}

// Sweeps what was added to `rasterizer`, whose canvas is `size` pixels square; every pixel must
// come at most once.
inline CoverageGrid sweep(CoverageRasterizer& rasterizer, FillRule rule, int size) {
  CoverageGrid grid(size, size);
  rasterizer.sweep(rule, grid);
  EXPECT_EQ(grid.duplicates, 0);
  return grid;
}

inline CoverageGrid rasterize(const FlatPath& path, FillRule rule = FillRule::Winding,
                              int size = 64) {
  CoverageRasterizer rasterizer(size, size);
  rasterizer.begin({0, 0, size, size});
  rasterizer.addPath(path);
  return sweep(rasterizer, rule, size);
}

inline CoverageGrid stroked(const Path& path, const StrokeStyle& style) {
  FlatPath flat, outline;
  EXPECT_TRUE(flattenPath(path, flat));
  Stroker().stroke(flat, style, outline);
  return rasterize(outline, FillRule::Winding, 128);
}

inline double distanceToSegment(Point p, Point a, Point b) {
  const double dx = b.x - a.x, dy = b.y - a.y, lengthSquared = dx * dx + dy * dy;
  const double t =
      lengthSquared == 0
          ? 0
          : std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / lengthSquared, 0.0, 1.0);
  return std::hypot(p.x - a.x - t * dx, p.y - a.y - t * dy);
}

}  // namespace tessaline::raster_testing
