#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <numbers>
#include <random>
#include <vector>

#include "platform/path.h"
#include "platform/raster/coverage_rasterizer.h"
#include "platform/raster/curve_flattener.h"
#include "raster_test_support.h"

namespace tessaline {
namespace {

using testing::CoverageGrid;
using testing::polygon;
using testing::rasterize;

// Area of the part of a convex polygon inside pixel (px, py), by clipping it against the four
// sides of the pixel in turn (Sutherland-Hodgman, exact for convex input).
double exactPixelArea(std::vector<Point> poly, int px, int py) {
  const auto clip = [&](auto inside, auto intersect) {
    std::vector<Point> out;
    for (std::size_t i = 0; i < poly.size(); ++i) {
      const Point a = poly[i], b = poly[(i + 1) % poly.size()];
      if (inside(a)) {
        out.push_back(a);
        if (!inside(b)) out.push_back(intersect(a, b));
      } else if (inside(b)) {
        out.push_back(intersect(a, b));
      }
    }
    poly = out;
  };
  const auto atX = [](double x) {
    return [x](Point a, Point b) { return Point{x, a.y + (x - a.x) * (b.y - a.y) / (b.x - a.x)}; };
  };
  const auto atY = [](double y) {
    return [y](Point a, Point b) { return Point{a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y), y}; };
  };
  clip([&](Point p) { return p.x >= px; }, atX(px));
  clip([&](Point p) { return p.x <= px + 1; }, atX(px + 1));
  clip([&](Point p) { return p.y >= py; }, atY(py));
  clip([&](Point p) { return p.y <= py + 1; }, atY(py + 1));
  double twice = 0;
  for (std::size_t i = 0; i < poly.size(); ++i) {
    const Point a = poly[i], b = poly[(i + 1) % poly.size()];
    twice += a.x * b.y - b.x * a.y;
  }
  return std::abs(twice) / 2;
}

TEST(RasterCoverage, PixelAlignedSquareFillsExactly) {
  for (FillRule rule : {FillRule::Winding, FillRule::EvenOdd}) {
    SCOPED_TRACE(rule == FillRule::Winding ? "non-zero" : "even-odd");
    const CoverageGrid grid = rasterize(polygon({{10, 12}, {20, 12}, {20, 30}, {10, 30}}), rule);
    EXPECT_EQ(grid.duplicates, 0);
    for (int y = 0; y < grid.height; ++y) {
      for (int x = 0; x < grid.width; ++x) {
        const bool inside = x >= 10 && x < 20 && y >= 12 && y < 30;
        ASSERT_EQ(grid.at(x, y), inside ? 255 : 0) << x << "," << y;
      }
    }
  }
}

TEST(RasterCoverage, PartlyCoveredPixelsGetTheirArea) {
  {
    SCOPED_TRACE("left half of a column");
    const CoverageGrid grid =
        rasterize(polygon({{10.5, 0}, {20, 0}, {20, 4}, {10.5, 4}}), FillRule::Winding);
    EXPECT_EQ(grid.at(10, 2), 128);  // 127.5 rounded to nearest
    EXPECT_EQ(grid.at(11, 2), 255);
    EXPECT_EQ(grid.at(9, 2), 0);
  }
  {
    SCOPED_TRACE("top quarter of a row");
    const CoverageGrid grid =
        rasterize(polygon({{0, 5.75}, {8, 5.75}, {8, 9}, {0, 9}}), FillRule::Winding);
    EXPECT_EQ(grid.at(3, 5), 64);  // 63.75
    EXPECT_EQ(grid.at(3, 6), 255);
  }
  {
    SCOPED_TRACE("a diagonal halves the pixels it crosses");
    const CoverageGrid grid = rasterize(polygon({{0, 0}, {16, 0}, {0, 16}}), FillRule::Winding);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(grid.at(i, 15 - i), 128) << i;
    EXPECT_EQ(grid.at(3, 3), 255);
    EXPECT_EQ(grid.at(15, 15), 0);
  }
}

TEST(RasterCoverage, RandomTrianglesMatchTheExactAreaOfEveryPixel) {
  std::mt19937 random(7);
  const auto coordinate = [&] { return (random() % 40000) / 1000.0 - 4; };  // -4 ... 36
  for (int n = 0; n < 200; ++n) {
    const std::vector<Point> triangle = {
        {coordinate(), coordinate()}, {coordinate(), coordinate()}, {coordinate(), coordinate()}};
    SCOPED_TRACE(::testing::Message() << "triangle " << n);
    const FillRule rule = n % 2 ? FillRule::EvenOdd : FillRule::Winding;
    const CoverageGrid grid =
        rasterize(polygon({triangle[0], triangle[1], triangle[2]}), rule, 32, 32);
    for (int y = 0; y < 32; ++y) {
      for (int x = 0; x < 32; ++x) {
        // Vertices and crossings round to 1/256 px, which moves each edge by at most 1/512 px
        // in x and y; two edges in one pixel and the final rounding stay within 2 levels.
        const double expected = exactPixelArea(triangle, x, y) * 255;
        ASSERT_NEAR(grid.at(x, y), expected, 2.0) << x << "," << y;
      }
    }
  }
}

TEST(RasterCoverage, FillRulesDifferOnASelfOverlappingStar) {
  // A pentagram drawn in one stroke: its centre pentagon winds twice.
  FlatPath star;
  for (int i = 0; i < 5; ++i) {
    const double angle = -std::numbers::pi / 2 + i * 4 * std::numbers::pi / 5;
    const Point p{32 + 30 * std::cos(angle), 32 + 30 * std::sin(angle)};
    if (i == 0)
      star.moveTo(p);
    else
      star.lineTo(p);
  }
  star.close();
  const CoverageGrid nonZero = rasterize(star, FillRule::Winding);
  const CoverageGrid evenOdd = rasterize(star, FillRule::EvenOdd);
  EXPECT_EQ(nonZero.at(32, 32), 255);
  EXPECT_EQ(evenOdd.at(32, 32), 0);
  // A point: covered once, by both rules.
  EXPECT_EQ(nonZero.at(32, 6), 255);
  EXPECT_EQ(evenOdd.at(32, 6), 255);
  // Both rules agree everywhere outside the centre pentagon, whose corners lie 11.5 px out.
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 64; ++x) {
      if (std::hypot(x + 0.5 - 32, y + 0.5 - 32) > 12.5) {
        ASSERT_EQ(nonZero.at(x, y), evenOdd.at(x, y)) << x << "," << y;
      }
    }
  }
  EXPECT_GT(nonZero.area() - evenOdd.area(), 200);
}

TEST(RasterCoverage, CircleCoverageSumsToItsArea) {
  for (double radius : {3.3, 20.0, 100.0}) {
    SCOPED_TRACE(radius);
    Path path = makeOvalPath({128 - radius, 128 - radius, 2 * radius, 2 * radius});
    FlatPath flat;
    ASSERT_TRUE(flattenPath(path, flat));
    const CoverageGrid grid = rasterize(flat, FillRule::Winding, 256, 256);
    // The polygon lies within the flattening tolerance of the curve (whose four cubics are
    // themselves within 0.03% of the radius of a true circle), and each pixel rounds to 1/510.
    const double perimeter = 2 * std::numbers::pi * radius;
    const double bound = perimeter * (kFlatteningTolerance + 0.0003 * radius) + perimeter * 2 / 510;
    EXPECT_NEAR(grid.area(), std::numbers::pi * radius * radius, bound);
  }
}

TEST(RasterCoverage, HugeAndFarAwayGeometryIsClippedNotOverflowed) {
  {
    SCOPED_TRACE("a square far larger than the canvas covers all of it");
    const CoverageGrid grid =
        rasterize(polygon({{-1e9, -1e9}, {1e9, -1e9}, {1e9, 1e9}, {-1e9, 1e9}}), FillRule::Winding);
    EXPECT_EQ(grid.area(), 64 * 64);
  }
  {
    SCOPED_TRACE("an edge far to the left still covers the pixels right of it");
    const CoverageGrid grid =
        rasterize(polygon({{-1e7, 10}, {20.5, 10}, {20.5, 20}, {-1e7, 20}}), FillRule::Winding);
    EXPECT_EQ(grid.at(0, 15), 255);
    EXPECT_EQ(grid.at(20, 15), 128);
    EXPECT_EQ(grid.at(21, 15), 0);
    EXPECT_EQ(grid.at(5, 9), 0);
  }
  {
    SCOPED_TRACE("a thin sliver crossing the canvas from far away");
    // Its edges run from x = -1e8 to 1e8 while rising one pixel: inside the canvas it is a
    // horizontal band 1 px high.
    const CoverageGrid grid =
        rasterize(polygon({{-1e8, 30}, {1e8, 30}, {1e8, 31}, {-1e8, 31}}), FillRule::Winding);
    EXPECT_EQ(grid.area(), 64);
    EXPECT_EQ(grid.at(40, 30), 255);
  }
  {
    SCOPED_TRACE("shapes wholly outside draw nothing");
    const CoverageGrid grid =
        rasterize(polygon({{-50, 10}, {-10, 10}, {-10, 20}}), FillRule::Winding);
    EXPECT_EQ(grid.area(), 0);
    const CoverageGrid right =
        rasterize(polygon({{70, 10}, {90, 10}, {90, 20}}), FillRule::Winding);
    EXPECT_EQ(right.area(), 0);
  }
}

TEST(RasterCoverage, BoxLimitsWorkWithoutChangingCoverageInside) {
  FlatPath shape = polygon({{3.3, 2.7}, {60.1, 10.4}, {30.2, 61.9}, {-5, 40}});
  const CoverageGrid full = rasterize(shape, FillRule::Winding);
  CoverageRasterizer rasterizer(64, 64);
  const PixelBox box{10, 20, 40, 50};
  rasterizer.begin(box);
  rasterizer.addPath(shape);
  EXPECT_EQ(rasterizer.bounds(), box);  // the shape crosses the whole box
  CoverageGrid part(64, 64);
  rasterizer.sweep(FillRule::Winding, part);
  for (int y = 0; y < 64; ++y) {
    for (int x = 0; x < 64; ++x) {
      const bool inBox = x >= box.x0 && x < box.x1 && y >= box.y0 && y < box.y1;
      // An edge split where it leaves the box gets a new end point, rounded to 1/256 px, which
      // can move the pixels it crosses by one level.
      if (inBox) {
        ASSERT_NEAR(part.at(x, y), full.at(x, y), 1) << x << "," << y;
      } else {
        ASSERT_EQ(part.at(x, y), 0) << x << "," << y;
      }
    }
  }
  // The sweep left the rasterizer empty: a new shape sees none of the old one.
  rasterizer.begin({0, 0, 64, 64});
  rasterizer.addPath(polygon({{1, 1}, {2, 1}, {2, 2}, {1, 2}}));
  CoverageGrid again(64, 64);
  rasterizer.sweep(FillRule::Winding, again);
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

}  // namespace
}  // namespace tessaline
