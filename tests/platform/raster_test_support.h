#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "platform/raster/coverage_rasterizer.h"
#include "platform/raster/flat_path.h"

namespace tessaline::testing {

// Per-pixel coverage of a whole canvas, filled from the rasterizer's spans.
struct CoverageGrid {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> values;
  int duplicates = 0;  // pixels handed out twice in one sweep; always 0

  CoverageGrid(int w, int h) : width(w), height(h), values(static_cast<std::size_t>(w) * h, 0) {}

  std::uint8_t at(int x, int y) const { return values[static_cast<std::size_t>(y) * width + x]; }

  // Sum of coverage in pixels (255 = one pixel).
  double area() const {
    double sum = 0;
    for (std::uint8_t v : values) sum += v;
    return sum / 255;
  }

  void solid(int y, int x, int length, std::uint8_t coverage) {
    for (int i = 0; i < length; ++i) set(x + i, y, coverage);
  }
  void varying(int y, int x, int length, const std::uint8_t* coverage) {
    for (int i = 0; i < length; ++i) set(x + i, y, coverage[i]);
  }

 private:
  void set(int x, int y, std::uint8_t v) {
    // Every pixel is handed out at most once per sweep.
    std::uint8_t& cell = values[static_cast<std::size_t>(y) * width + x];
    if (cell != 0) ++duplicates;
    cell = v;
  }
};

inline FlatPath polygon(std::initializer_list<Point> points) {
  FlatPath path;
  bool first = true;
  for (Point p : points) {
    if (first) {
      path.moveTo(p);
      first = false;
    } else {
      path.lineTo(p);
    }
  }
  path.close();
  return path;
}

inline CoverageGrid rasterize(const FlatPath& path, FillRule rule, int width = 64,
                              int height = 64) {
  CoverageRasterizer rasterizer(width, height);
  rasterizer.begin({0, 0, width, height});
  rasterizer.addPath(path);
  CoverageGrid grid(width, height);
  rasterizer.sweep(rule, grid);
  return grid;
}

}  // namespace tessaline::testing
