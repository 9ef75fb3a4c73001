// The native backend's pixels. The sweep, the painter and the conversion to straight alpha take
// shortcuts (vector registers, whole blocks, marked pixels only); each must give exactly what the
// plain pixel-by-pixel arithmetic gives, for any values, not just typical ones. Then what the
// native context promises beyond what the differential test compares (which also covers the
// clip stack and its fill rule on both backends).
#include "platform/raster/native_raster_context.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "platform/raster/coverage_rasterizer.h"
#include "platform/raster/pixel_ops.h"
#include "platform/raster/solid_painter.h"
#include "platform/raster/translucent_marks.h"

namespace tessaline {
namespace {

constexpr int kSize = 64;
constexpr Color kRed{1, 0, 0, 1};
constexpr Color kBlue{0, 0, 1, 1};
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

Path rectPath(double x, double y, double w, double h) {
  return makeRoundedRectPath({x, y, w, h}, 0);
}

// `bytes`, straight RGBA, must be `pixels` as unpremultiply gives them inside `box` (x0, y0, x1,
// y1) and unchanged outside it.
void expectConverted(const std::uint8_t* bytes, const std::vector<PremultipliedPixel>& pixels,
                     int width, std::array<int, 4> box) {
  const auto [x0, y0, x1, y1] = box;
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const int x = static_cast<int>(i) % width, y = static_cast<int>(i) / width;
    std::uint8_t expected[4];
    std::memcpy(expected, &pixels[i], 4);
    if (x >= x0 && x < x1 && y >= y0 && y < y1) unpremultiply(pixels[i], expected);
    ASSERT_EQ(std::memcmp(bytes + 4 * i, expected, 4), 0)
        << "pixel " << x << "," << y << " was " << std::hex << pixels[i];
  }
}

TEST(RasterPixelOps, RoundingIsExact) {
  for (std::uint32_t a = 0; a < 256; ++a) {
    for (std::uint32_t b = 0; b < 256; ++b) {
      ASSERT_EQ(multiply255(a, b), static_cast<std::uint32_t>(std::lround(a * b / 255.0)));
      const PremultipliedPixel p = a << 24 | b << 16 | (255 - b) << 8 | (a ^ b), q = ~p;
      const PremultipliedPixel scaled = scalePixel(p, b);
      ASSERT_EQ(scaled, multiply255(a, b) << 24 | multiply255(b, b) << 16 |
                            multiply255(255 - b, b) << 8 | multiply255(a ^ b, b));
      ASSERT_EQ(scalePixelPair(std::uint64_t{q} << 32 | p, b),
                std::uint64_t{scalePixel(q, b)} << 32 | scaled);
    }
  }
  // Un-premultiplying divides by alpha rounding to nearest, for every channel and alpha.
  for (std::uint32_t alpha = 1; alpha < 256; ++alpha) {
    for (std::uint32_t c = 0; c <= alpha; ++c) {
      std::uint8_t rgba[4];
      unpremultiply(alpha << 24 | c << 16 | c << 8 | c, rgba);
      ASSERT_EQ(rgba[0], (c * 255 + alpha / 2) / alpha) << c << "/" << alpha;
      ASSERT_EQ(rgba[3], alpha);
    }
  }
  EXPECT_EQ(premultiply({1, 1, 1, 0.5}), 0x7f7f7f7fu);  // 0.5 quantises to 127, as the reference
  EXPECT_EQ(premultiply({2, -1, 0.5, 1}), 0xffff007fu);
  EXPECT_EQ(premultiply({1, 1, 1, kNan}), 0u);
}

// The in-place conversion takes shortcuts for blocks of pixels whose alpha is 0 or 255; every
// pixel in the box must still come out exactly as unpremultiply gives it, whatever mix a block
// holds and wherever the box starts and ends, and every pixel outside stay untouched.
TEST(RasterPixelOps, InPlaceConversionMatchesPixelByPixel) {
  const auto convertInPlace = [](const std::vector<PremultipliedPixel>& pixels, int width,
                                 std::array<int, 4> box) {
    std::vector<std::uint8_t> canvas(pixels.size() * 4);
    std::memcpy(canvas.data(), pixels.data(), canvas.size());
    unpremultiplyInPlace(canvas.data(), width, box[0], box[1], box[2], box[3]);
    expectConverted(canvas.data(), pixels, width, box);
  };
  constexpr int kWidth = 150, kHeight = 9;  // whole blocks of 64 and of 4, and single pixels
  std::mt19937 engine(7);
  std::vector<PremultipliedPixel> pixels(kWidth * kHeight);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    // Rows alternate between runs of opaque and transparent pixels and a mix with translucent
    // ones, so blocks of every kind and runs of one value occur.
    const int row = static_cast<int>(i) / kWidth;
    const std::uint32_t alpha = row % 3 == 0       ? ((i / 5) % 2 ? 255 : 0)
                                : row % 3 == 1     ? engine() % 256
                                : (i / 3) % 4 == 0 ? engine() % 256
                                                   : 255;
    const auto channel = [&] { return alpha == 0 ? 0 : engine() % (alpha + 1); };
    pixels[i] = alpha << 24 | channel() << 16 | channel() << 8 | channel();
  }
  for (const auto& box : {std::array{0, 0, kWidth, kHeight}, {3, 1, 140, 8}, {5, 2, 6, 3}}) {
    convertInPlace(pixels, kWidth, box);
  }
  // Every alpha with every channel value, valid premultiplied or not (then clamped), through the
  // block paths. Only alpha 0 keeps to what a canvas holds, all channels 0.
  pixels.assign(256 * 256, 0);
  for (std::uint32_t a = 1; a < 256; ++a) {
    for (std::uint32_t c = 0; c < 256; ++c) {
      pixels[a * 256 + c] = a << 24 | c << 16 | (255 - c) << 8 | (c * 7 % 256);
    }
  }
  convertInPlace(pixels, 256, {0, 0, 256, 256});
}

// Cell values as the rasterizer produces them, plus the extremes a huge winding number or
// wrap-around could leave (anything at all, 0x80000000 and beyond): the mapping clamps and folds
// these, and must do so lane by lane, under both rules.
TEST(RasterVectorPaths, GroupSumsMatchCellByCellUnderBothRules) {
  using Sum = std::uint32_t (*)(std::uint32_t*, std::uint32_t, std::uint8_t*);
  // The vector sum and the cell-by-cell one, under the non-zero rule and then the even-odd one.
  constexpr Sum sums[2][2] = {
      {CoverageRasterizer::sumGroup<false>, CoverageRasterizer::sumGroupByCell<false>},
      {CoverageRasterizer::sumGroup<true>, CoverageRasterizer::sumGroupByCell<true>}};
  using Cells = std::array<std::uint32_t, CoverageRasterizer::kGroup>;
  constexpr std::uint32_t full = CoverageRasterizer::kFullArea;
  std::mt19937 random(11);
  const auto cell = [&] {
    const std::uint32_t pick = std::min<std::uint32_t>(random() % 6, 4);
    const auto any = static_cast<std::uint32_t>(random());
    const std::uint32_t choices[] = {0, full, 0u - full, any, any % (2 * full + 1) - full};
    return choices[pick];
  };
  for (int trial = 0; trial < 400000; ++trial) {
    const auto [sum, byCell] = sums[trial % 2];
    Cells cells;
    for (std::uint32_t& c : cells) c = cell();
    Cells reference = cells;
    const std::uint32_t area = cell();
    std::array<std::uint8_t, CoverageRasterizer::kGroup> coverage{}, expected{};
    ASSERT_EQ(sum(cells.data(), area, coverage.data()),
              byCell(reference.data(), area, expected.data()));
    ASSERT_EQ(coverage, expected) << "trial " << trial;
    ASSERT_EQ(cells, Cells{}) << "cells are cleared for reuse";
  }
}

// Varying runs must paint as pixel-by-pixel source-over does. The sweep also hands the untouched
// pixels of a marked group to `varying` at the coverage a solid run would have given them, so
// solid and varying runs of one coverage must paint any pixel identically. Alpha and coverage 0
// and 255 come often; a pixel is valid premultiplied, no channel above its alpha.
template <bool Masked>
void expectRunsMatchSourceOver() {
  constexpr int kWidth = 24;
  std::mt19937 random(Masked ? 21 : 22);
  const auto byte = [&]() -> std::uint8_t {
    const std::uint32_t pick = random() % 4;
    return pick == 0 ? 0 : pick == 1 ? 255 : random() % 256;
  };
  const auto pixel = [&] {
    const std::uint32_t alpha = byte();
    std::uint32_t value = alpha << 24;
    for (int shift = 0; shift < 24; shift += 8) value |= (random() % (alpha + 1)) << shift;
    return value;
  };
  for (int trial = 0; trial < 20000; ++trial) {
    const PremultipliedPixel color = pixel();
    std::vector<PremultipliedPixel> canvas(kWidth);
    std::vector<std::uint8_t> mask(kWidth), coverage(kWidth);
    for (int i = 0; i < kWidth; ++i) canvas[i] = pixel(), mask[i] = byte(), coverage[i] = byte();
    const int x = static_cast<int>(random() % kWidth);
    const int length = 1 + static_cast<int>(random() % (kWidth - x));
    SCOPED_TRACE(::testing::Message() << "trial " << trial << " x " << x << " length " << length);

    std::vector<PremultipliedPixel> expected = canvas, solid = canvas, varying = canvas;
    for (int i = x; i < x + length; ++i) {
      const std::uint32_t c = Masked ? multiply255(coverage[i], mask[i]) : coverage[i];
      if (c != 0) expected[i] = sourceOver(scalePixel(color, c), expected[i]);
    }
    TranslucentMarks marks(kWidth, 1);
    const auto painter = [&](std::vector<PremultipliedPixel>& row) {
      return SolidPainter<Masked>(row.data(), kWidth, color, Masked ? mask.data() : nullptr,
                                  &marks);
    };
    painter(canvas).varying(0, x, length, coverage.data() + x);
    ASSERT_EQ(canvas, expected);

    const std::vector<std::uint8_t> constant(kWidth, coverage[x]);
    painter(solid).solid(0, 0, kWidth, coverage[x]);
    painter(varying).varying(0, 0, kWidth, constant.data());
    ASSERT_EQ(solid, varying) << "coverage " << int{coverage[x]};
  }
}

TEST(RasterVectorPaths, SolidAndVaryingRunsMatchPixelByPixelSourceOver) {
  expectRunsMatchSourceOver<false>();
  expectRunsMatchSourceOver<true>();
}

// The native canvas converts to straight alpha only where a painter marked that a pixel may be
// translucent and coloured; black paints mark nothing. Whatever order black and coloured paints,
// opaque and translucent, overlap in, every pixel must still come out exactly converted. Handing
// the canvas over converts it where it lies: the same pixels as image(), and once taken the
// context hands out and draws nothing more.
TEST(RasterTranslucency, BlackAndColouredPaintsInAnyOrderComeOutStraight) {
  constexpr int kSide = 24;
  const Color inks[] = {
      {0, 0, 0, 0.5}, {0, 0, 0, 1}, {1, 0, 0, 1}, {0.2, 0.4, 1, 0.4}, {0, 0.6, 0, 0.7}};
  // Sides on whole or half pixels (x0, y0, x1, y1), whose coverage the rasterizer rounds to 255,
  // 128 for a half pixel or 64 for a quarter.
  const double boxes[3][4] = {{2, 2, 12.5, 12.5}, {7.5, 7.5, 18, 18}, {4, 10.5, 21.5, 14}};
  for (int order = 0; order < 125; ++order) {
    SCOPED_TRACE(::testing::Message() << "inks " << order / 25 << order / 5 % 5 << order % 5);
    NativeRasterContext context(kSide, kSide);
    std::vector<PremultipliedPixel> model(kSide * kSide, 0);
    for (int i = 0; i < 3; ++i) {
      const auto& [x0, y0, x1, y1] = boxes[i];
      const Color ink = inks[i == 0 ? order / 25 : i == 1 ? order / 5 % 5 : order % 5];
      context.fill(rectPath(x0, y0, x1 - x0, y1 - y0), FillRule::Winding, ink);
      for (int at = 0; at < kSide * kSide; ++at) {
        const double x = at % kSide, y = at / kSide;
        const double area = std::max(0.0, std::min(x1, x + 1) - std::max(x0, x)) *
                            std::max(0.0, std::min(y1, y + 1) - std::max(y0, y));
        const std::uint32_t c = area == 1 ? 255 : area == 0.5 ? 128 : area == 0.25 ? 64 : 0;
        if (c != 0) model[at] = sourceOver(scalePixel(premultiply(ink), c), model[at]);
      }
    }
    const Image copy = context.image();
    ASSERT_EQ(context.image(), copy) << "image() must leave the canvas as it was";
    const Image taken = context.takeImage();
    EXPECT_EQ(taken, copy);
    expectConverted(taken.bytes().data(), model, kSide, {0, 0, kSide, kSide});
    context.fill(rectPath(0, 0, kSide, kSide), FillRule::Winding, kRed);
    EXPECT_EQ(context.takeImage(), Image(kSide, kSide));
  }
}

// Clips' coverages multiply: on the circle's left edge, where pixel 8 is also half covered by
// the rectangle.
TEST(NativeRasterContext, AntialiasedClipsMultiply) {
  const Path circle = makeOvalPath({8, 8, 48, 48});
  NativeRasterContext alone(kSize, kSize), clipped(kSize, kSize);
  alone.fill(circle, FillRule::Winding, kBlue);
  clipped.clip(rectPath(8.5, 0, 23.5, 64));
  clipped.clip(circle);
  clipped.fill(rectPath(0, 0, 64, 64), FillRule::Winding, kBlue);
  const int circleEdge = alone.image().pixel(8, 31).a;
  ASSERT_GT(circleEdge, 100);
  ASSERT_LT(circleEdge, 250);
  EXPECT_NEAR(clipped.image().pixel(8, 31).a, multiply255(circleEdge, 128), 1);
  EXPECT_EQ(clipped.image().pixel(20, 32), (Rgba{0, 0, 255, 255}));
  EXPECT_EQ(clipped.image().pixel(40, 32).a, 0);
  EXPECT_EQ(clipped.image().pixel(7, 32).a, 0);
}

// Nothing is drawn for geometry that is not finite, strokes of no or endless width, nearly
// invisible ink, or under a clip that is not finite or empty, until that is restored. Geometry
// and widths far beyond any canvas must neither crash nor overflow; what reaches the canvas is
// drawn.
TEST(NativeRasterContext, DegenerateAndAbsurdDrawing) {
  NativeRasterContext context(kSize, kSize);
  context.fill(rectPath(0, 0, kNan, 10), FillRule::Winding, kRed);
  for (const StrokeStyle& style : {StrokeStyle{kInf, 4, LineCap::Butt, LineJoin::Miter},
                                   StrokeStyle{2, kNan, LineCap::Butt, LineJoin::Miter},
                                   StrokeStyle{0, 4, LineCap::Round, LineJoin::Round},
                                   StrokeStyle{-3, 4, LineCap::Round, LineJoin::Round}}) {
    context.stroke(rectPath(4, 4, 20, 20), style, kRed);
  }
  context.fill(rectPath(0, 0, 64, 64), FillRule::Winding, kRed.withAlpha(0.001));
  for (const Path& clip : {rectPath(0, 0, kInf, 10), Path()}) {
    context.save();
    context.clip(clip);
    context.fill(rectPath(0, 0, 64, 64), FillRule::Winding, kRed);
    context.restore();
  }
  EXPECT_EQ(context.image(), Image(kSize, kSize));

  const double huge = 1e300;
  Path far;
  far.moveTo({-huge, -huge});
  far.cubicTo({huge, -huge}, {huge, huge}, {-huge, huge});
  far.close();
  context.fill(far, FillRule::EvenOdd, kRed);
  Path zigzag = rectPath(10, 10, 40, 4);
  zigzag.quadTo({huge, 0}, {30, 60});
  for (const double width : {1e-9, 1e9, huge}) {
    for (const LineJoin join : {LineJoin::Miter, LineJoin::Round, LineJoin::Bevel}) {
      context.stroke(zigzag, {width, huge, LineCap::Round, join}, kBlue.withAlpha(0.1));
      context.stroke(zigzag, {width, -huge, LineCap::Square, join}, kBlue.withAlpha(0.1));
    }
  }
  context.clip(far);
  context.fill(rectPath(-huge, -huge, 2 * huge, 2 * huge), FillRule::Winding, kBlue.withAlpha(0.5));
  EXPECT_GT(context.image().pixel(32, 32).a, 0);
}

}  // namespace
}  // namespace tessaline
