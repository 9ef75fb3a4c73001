#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <random>
#include <vector>

#include "platform/raster/coverage_rasterizer.h"
#include "platform/raster/pixel_ops.h"
#include "platform/raster/solid_painter.h"
#include "platform/raster/translucent_marks.h"

// The sweep and the painter take vector shortcuts; each must give exactly what the plain
// cell-by-cell and pixel-by-pixel arithmetic gives, for any values, not just typical ones.

namespace tessaline {
namespace {

// Cell values as the rasterizer produces them, plus the extremes a huge winding number or
// wrap-around could leave: the mapping clamps and folds these, and must do so lane by lane.
std::uint32_t randomCell(std::mt19937& random) {
  constexpr std::uint32_t full = CoverageRasterizer::kFullArea;
  switch (random() % 6) {
    case 0:
      return 0;
    case 1:
      return full;
    case 2:
      return 0u - full;
    case 3:
      return random();  // anything at all, including 0x80000000 and beyond
    default:
      return static_cast<std::uint32_t>(static_cast<int>(random() % (2 * full + 1)) -
                                        static_cast<int>(full));
  }
}

template <bool EvenOdd>
void expectGroupSumsMatchCellByCell() {
  constexpr int kGroup = CoverageRasterizer::kGroup;
  std::mt19937 random(EvenOdd ? 11 : 12);
  for (int trial = 0; trial < 200000; ++trial) {
    std::array<std::uint32_t, kGroup> cells{}, reference{};
    for (std::uint32_t& cell : cells) cell = randomCell(random);
    reference = cells;
    const std::uint32_t area = randomCell(random);
    std::array<std::uint8_t, kGroup> coverage{}, expected{};
    const std::uint32_t sum =
        CoverageRasterizer::sumGroup<EvenOdd>(cells.data(), area, coverage.data());
    const std::uint32_t expectedSum =
        CoverageRasterizer::sumGroupByCell<EvenOdd>(reference.data(), area, expected.data());
    ASSERT_EQ(sum, expectedSum);
    ASSERT_EQ(coverage, expected) << "trial " << trial;
    ASSERT_EQ(cells, (std::array<std::uint32_t, kGroup>{})) << "cells are cleared for reuse";
  }
}

TEST(RasterVectorPaths, GroupSumsMatchCellByCellUnderBothRules) {
  expectGroupSumsMatchCellByCell<false>();
  expectGroupSumsMatchCellByCell<true>();
}

// A valid premultiplied pixel: no channel above its alpha. Alpha 0 and 255 come often.
PremultipliedPixel randomPixel(std::mt19937& random) {
  const std::uint32_t pick = random() % 4;
  const std::uint32_t alpha = pick == 0 ? 0 : pick == 1 ? 255 : random() % 256;
  std::uint32_t pixel = alpha << 24;
  for (int shift = 0; shift < 24; shift += 8) pixel |= (random() % (alpha + 1)) << shift;
  return pixel;
}

std::uint8_t randomCoverage(std::mt19937& random) {
  const std::uint32_t pick = random() % 4;
  return static_cast<std::uint8_t>(pick == 0 ? 0 : pick == 1 ? 255 : random() % 256);
}

constexpr int kWidth = 24;

template <bool Masked>
void expectVaryingRunsMatchSourceOver() {
  std::mt19937 random(Masked ? 21 : 22);
  for (int trial = 0; trial < 20000; ++trial) {
    const PremultipliedPixel color = randomPixel(random);
    std::vector<PremultipliedPixel> canvas(kWidth);
    for (PremultipliedPixel& pixel : canvas) pixel = randomPixel(random);
    std::vector<std::uint8_t> mask(kWidth), coverage(kWidth);
    for (std::uint8_t& value : mask) value = randomCoverage(random);
    for (std::uint8_t& value : coverage) value = randomCoverage(random);
    const int x = static_cast<int>(random() % kWidth);
    const int length = 1 + static_cast<int>(random() % (kWidth - x));

    std::vector<PremultipliedPixel> expected = canvas;
    for (int i = x; i < x + length; ++i) {
      const std::uint32_t c = Masked ? multiply255(coverage[i], mask[i]) : coverage[i];
      if (c != 0) expected[i] = sourceOver(scalePixel(color, c), expected[i]);
    }

    TranslucentMarks marks(kWidth, 1);
    SolidPainter<Masked> painter(canvas.data(), kWidth, color, Masked ? mask.data() : nullptr,
                                 &marks);
    painter.varying(0, x, length, coverage.data() + x);
    ASSERT_EQ(canvas, expected) << "trial " << trial << " x " << x << " length " << length;
  }
}

TEST(RasterVectorPaths, VaryingRunsMatchPixelByPixelSourceOver) {
  expectVaryingRunsMatchSourceOver<false>();
  expectVaryingRunsMatchSourceOver<true>();
}

// The sweep hands the untouched pixels of a marked group to `varying` at the coverage a solid
// run would have given them, so both must paint any pixel identically.
TEST(RasterVectorPaths, SolidRunsPaintAsVaryingRunsOfOneCoverage) {
  std::mt19937 random(31);
  for (int trial = 0; trial < 20000; ++trial) {
    const PremultipliedPixel color = randomPixel(random);
    const std::uint8_t c = randomCoverage(random);
    std::vector<PremultipliedPixel> solid(kWidth);
    for (PremultipliedPixel& pixel : solid) pixel = randomPixel(random);
    std::vector<PremultipliedPixel> varying = solid;
    std::vector<std::uint8_t> mask(kWidth);
    for (std::uint8_t& value : mask) value = randomCoverage(random);
    const std::vector<std::uint8_t> coverage(kWidth, c);
    TranslucentMarks marks(kWidth, 1);
    if (trial % 2 == 0) {
      SolidPainter<false>(solid.data(), kWidth, color, nullptr, &marks).solid(0, 0, kWidth, c);
      SolidPainter<false>(varying.data(), kWidth, color, nullptr, &marks)
          .varying(0, 0, kWidth, coverage.data());
    } else {
      SolidPainter<true>(solid.data(), kWidth, color, mask.data(), &marks).solid(0, 0, kWidth, c);
      SolidPainter<true>(varying.data(), kWidth, color, mask.data(), &marks)
          .varying(0, 0, kWidth, coverage.data());
    }
    ASSERT_EQ(solid, varying) << "trial " << trial << " coverage " << int{c};
  }
}

}  // namespace
}  // namespace tessaline
