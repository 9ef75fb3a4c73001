// The native backend's pixels. The sweep, the painter and the conversion to straight alpha take
// shortcuts (vector registers, whole blocks, marked pixels only); each must give exactly what the
// plain pixel-by-pixel arithmetic gives, for any values, not just typical ones. Then the
// contexts: the clip stack on both backends, and what the native one promises beyond what the
// differential test compares.
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
constexpr Rgba kClear{0, 0, 0, 0};
constexpr Rgba kOpaqueRed{255, 0, 0, 255};
constexpr Rgba kOpaqueBlue{0, 0, 255, 255};

Path rectPath(double x, double y, double w, double h) {
  return makeRoundedRectPath({x, y, w, h}, 0);
}

struct Expected {
  int x, y;
  Rgba rgba;
};

// Every channel of every listed pixel within `tolerance` of the expected value.
void expectPixels(const Image& image, const std::vector<Expected>& pixels, int tolerance = 0) {
  for (const auto& [x, y, expected] : pixels) {
    SCOPED_TRACE(::testing::Message() << "pixel (" << x << ", " << y << ")");
    const Rgba actual = image.pixel(x, y);
    EXPECT_NEAR(actual.r, expected.r, tolerance);
    EXPECT_NEAR(actual.g, expected.g, tolerance);
    EXPECT_NEAR(actual.b, expected.b, tolerance);
    EXPECT_NEAR(actual.a, expected.a, tolerance);
  }
}

TEST(RasterPixelOps, RoundingIsExact) {
  for (std::uint32_t a = 0; a < 256; ++a) {
    for (std::uint32_t b = 0; b < 256; ++b) {
      const auto rounded = static_cast<std::uint32_t>(std::lround(a * b / 255.0));
      ASSERT_EQ(multiply255(a, b), rounded) << a << " " << b;
      const PremultipliedPixel p = a << 24 | b << 16 | (255 - b) << 8 | (a ^ b);
      const PremultipliedPixel scaled = scalePixel(p, b);
      ASSERT_EQ(scaled >> 24, multiply255(a, b));
      ASSERT_EQ((scaled >> 16) & 0xff, multiply255(b, b));
      ASSERT_EQ((scaled >> 8) & 0xff, multiply255(255 - b, b));
      ASSERT_EQ(scaled & 0xff, multiply255(a ^ b, b));
      const PremultipliedPixel q = ~p;
      const std::uint64_t pair = scalePixelPair(std::uint64_t{q} << 32 | p, b);
      ASSERT_EQ(static_cast<PremultipliedPixel>(pair), scaled);
      ASSERT_EQ(static_cast<PremultipliedPixel>(pair >> 32), scalePixel(q, b));
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
}

TEST(RasterPixelOps, ColoursArePremultipliedAndClamped) {
  EXPECT_EQ(premultiply({1, 0, 0, 1}), 0xffff0000u);
  EXPECT_EQ(premultiply({1, 1, 1, 0.5}), 0x7f7f7f7fu);  // 0.5 quantises to 127, as the reference
  EXPECT_EQ(premultiply({2, -1, 0.5, 1}), 0xffff007fu);
  EXPECT_EQ(premultiply({1, 1, 1, std::numeric_limits<double>::quiet_NaN()}), 0u);
}

// Converts a copy of `pixels`, `width` wide, in place within the box and expects every pixel
// in the box exactly as unpremultiply gives it and every pixel outside untouched.
void expectConvertedInPlace(const std::vector<PremultipliedPixel>& pixels, int width,
                            std::array<int, 4> box) {
  const auto [x0, y0, x1, y1] = box;
  SCOPED_TRACE(::testing::Message() << x0 << "," << y0 << " to " << x1 << "," << y1);
  std::vector<std::uint8_t> canvas(pixels.size() * 4);
  std::memcpy(canvas.data(), pixels.data(), canvas.size());
  unpremultiplyInPlace(canvas.data(), width, x0, y0, x1, y1);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    const int x = static_cast<int>(i) % width, y = static_cast<int>(i) / width;
    std::uint8_t expected[4];
    std::memcpy(expected, &pixels[i], 4);
    if (x >= x0 && x < x1 && y >= y0 && y < y1) unpremultiply(pixels[i], expected);
    ASSERT_EQ(std::memcmp(canvas.data() + 4 * i, expected, 4), 0)
        << "pixel " << x << "," << y << " was " << std::hex << pixels[i];
  }
}

// The in-place conversion takes shortcuts for blocks of pixels whose alpha is 0 or 255; every
// pixel must still come out exactly, whatever mix a block holds and wherever the box starts and
// ends.
TEST(RasterPixelOps, InPlaceConversionMatchesPixelByPixel) {
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
  for (const auto& box :
       {std::array{0, 0, kWidth, kHeight}, std::array{3, 1, 140, 8}, std::array{5, 2, 6, 3}}) {
    expectConvertedInPlace(pixels, kWidth, box);
  }
  // Every alpha with every channel value, valid premultiplied or not (then clamped), through the
  // block paths. Only alpha 0 keeps to what a canvas holds, all channels 0.
  pixels.assign(256 * 256, 0);
  for (std::uint32_t a = 1; a < 256; ++a) {
    for (std::uint32_t c = 0; c < 256; ++c) {
      pixels[a * 256 + c] = a << 24 | c << 16 | (255 - c) << 8 | (c * 7 % 256);
    }
  }
  expectConvertedInPlace(pixels, 256, {0, 0, 256, 256});
}

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
  }
  return static_cast<std::uint32_t>(static_cast<int>(random() % (2 * full + 1)) -
                                    static_cast<int>(full));
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
    ASSERT_EQ(CoverageRasterizer::sumGroup<EvenOdd>(cells.data(), area, coverage.data()),
              CoverageRasterizer::sumGroupByCell<EvenOdd>(reference.data(), area, expected.data()));
    ASSERT_EQ(coverage, expected) << "trial " << trial;
    ASSERT_EQ(cells, (std::array<std::uint32_t, kGroup>{})) << "cells are cleared for reuse";
  }
}

TEST(RasterVectorPaths, GroupSumsMatchCellByCellUnderBothRules) {
  expectGroupSumsMatchCellByCell<false>();
  expectGroupSumsMatchCellByCell<true>();
}

// Alpha and coverage 0 and 255 come often; a pixel is valid premultiplied, no channel above its
// alpha.
std::uint32_t randomByte(std::mt19937& random) {
  const std::uint32_t pick = random() % 4;
  return pick == 0 ? 0 : pick == 1 ? 255 : random() % 256;
}

PremultipliedPixel randomPixel(std::mt19937& random) {
  const std::uint32_t alpha = randomByte(random);
  std::uint32_t pixel = alpha << 24;
  for (int shift = 0; shift < 24; shift += 8) pixel |= (random() % (alpha + 1)) << shift;
  return pixel;
}

// Varying runs must paint as pixel-by-pixel source-over does. The sweep also hands the untouched
// pixels of a marked group to `varying` at the coverage a solid run would have given them, so
// solid and varying runs of one coverage must paint any pixel identically.
template <bool Masked>
void expectRunsMatchSourceOver() {
  constexpr int kWidth = 24;
  std::mt19937 random(Masked ? 21 : 22);
  for (int trial = 0; trial < 20000; ++trial) {
    const PremultipliedPixel color = randomPixel(random);
    std::vector<PremultipliedPixel> canvas(kWidth);
    for (PremultipliedPixel& pixel : canvas) pixel = randomPixel(random);
    std::vector<std::uint8_t> mask(kWidth), coverage(kWidth);
    for (std::uint8_t& value : mask) value = static_cast<std::uint8_t>(randomByte(random));
    for (std::uint8_t& value : coverage) value = static_cast<std::uint8_t>(randomByte(random));
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
// opaque and translucent, overlap in, every pixel must still come out exactly converted.
TEST(RasterTranslucency, BlackAndColouredPaintsInAnyOrderComeOutStraight) {
  constexpr int kSide = 24;
  const std::array<Color, 5> inks = {Color{0, 0, 0, 0.5}, Color{0, 0, 0, 1}, Color{1, 0, 0, 1},
                                     Color{0.2, 0.4, 1, 0.4}, Color{0, 0.6, 0, 0.7}};
  // Sides on whole or half pixels (x0, y0, x1, y1), whose coverage the rasterizer rounds to 255,
  // 128 for a half pixel or 64 for a quarter.
  const std::array<std::array<double, 4>, 3> boxes = {
      {{2, 2, 12.5, 12.5}, {7.5, 7.5, 18, 18}, {4, 10.5, 21.5, 14}}};
  const auto coverageOf = [](const std::array<double, 4>& b, int x, int y) -> std::uint32_t {
    const double area = std::max(0.0, std::min(b[2], x + 1.0) - std::max(b[0], 1.0 * x)) *
                        std::max(0.0, std::min(b[3], y + 1.0) - std::max(b[1], 1.0 * y));
    return area == 1 ? 255 : area == 0.5 ? 128 : area == 0.25 ? 64 : 0;
  };
  for (int order = 0; order < 125; ++order) {
    const Color painted[3] = {inks[order / 25], inks[order / 5 % 5], inks[order % 5]};
    SCOPED_TRACE(::testing::Message() << "inks " << order / 25 << order / 5 % 5 << order % 5);
    NativeRasterContext context(kSide, kSide);
    std::vector<PremultipliedPixel> model(kSide * kSide, 0);
    for (int i = 0; i < 3; ++i) {
      const auto& [x0, y0, x1, y1] = boxes[i];
      context.fill(rectPath(x0, y0, x1 - x0, y1 - y0), FillRule::Winding, painted[i]);
      for (int at = 0; at < kSide * kSide; ++at) {
        const std::uint32_t c = coverageOf(boxes[i], at % kSide, at / kSide);
        if (c != 0) model[at] = sourceOver(scalePixel(premultiply(painted[i]), c), model[at]);
      }
    }
    const Image image = context.takeImage();
    for (int at = 0; at < kSide * kSide; ++at) {
      std::uint8_t expected[4];
      unpremultiply(model[at], expected);
      const std::uint8_t* actual = image.bytes().data() + 4 * at;
      ASSERT_EQ(std::vector<int>(actual, actual + 4), std::vector<int>(expected, expected + 4))
          << "pixel (" << at % kSide << ", " << at / kSide << ")";
    }
  }
}

// The clip is part of the saved state, on both backends alike (cairo within one step of
// rounding): restore brings back the clip that was saved, and a restore without its save is
// ignored. A clip is filled under the non-zero rule.
TEST(RasterContext, ClipStackRestoresWhatWasSaved) {
  for (const RasterBackend backend : {RasterBackend::Native, RasterBackend::Cairo}) {
    SCOPED_TRACE(backend == RasterBackend::Native ? "native" : "cairo");
    const int tolerance = backend == RasterBackend::Native ? 0 : 1;
    const auto c = makeRasterContext(backend, kSize, kSize);
    c->restore();
    c->save();
    c->clip(rectPath(0, 0, 32, 64));  // left half
    c->save();
    c->clip(rectPath(16, 16, 48, 8));  // and a band: only their intersection shows
    c->fill(rectPath(0, 0, 64, 64), FillRule::Winding, kRed);
    c->restore();
    c->fill(rectPath(0, 32, 64, 32), FillRule::Winding, kBlue);  // left half only again
    c->restore();
    c->restore();
    c->fill(rectPath(48, 48, 16, 16), FillRule::Winding, kRed);  // unclipped again
    expectPixels(c->image(),
                 {{20, 20, kOpaqueRed},
                  {40, 20, kClear},
                  {10, 20, kClear},
                  {10, 40, kOpaqueBlue},
                  {40, 40, kClear},
                  {56, 56, kOpaqueRed}},
                 tolerance);

    // Two nested squares wound the same way: non-zero keeps the inner one.
    const auto nested = makeRasterContext(backend, kSize, kSize);
    Path clip = rectPath(0, 0, 32, 64);
    clip.moveTo({8, 8});
    clip.lineTo({24, 8});
    clip.lineTo({24, 24});
    clip.lineTo({8, 24});
    clip.close();
    nested->clip(clip);
    nested->fill(rectPath(0, 0, kSize, kSize), FillRule::Winding, kRed);
    expectPixels(nested->image(), {{16, 16, kOpaqueRed}, {16, 40, kOpaqueRed}, {48, 16, kClear}},
                 tolerance);
  }
}

// Handing the canvas over converts it where it lies: the same pixels as image(), and once taken
// the context hands out and draws nothing more.
TEST(NativeRasterContext, TakenImageIsTheImageAndEndsDrawing) {
  NativeRasterContext context(kSize, kSize);
  context.fill(rectPath(3.5, 3.25, 40, 30), FillRule::Winding, kRed.withAlpha(0.6));
  context.fill(rectPath(20, 10.5, 30, 40), FillRule::Winding, kBlue);
  const Image copy = context.image();
  EXPECT_EQ(context.image(), copy) << "image() must leave the canvas as it was";
  EXPECT_EQ(context.takeImage(), copy);
  context.fill(rectPath(0, 0, kSize, kSize), FillRule::Winding, kRed);
  EXPECT_EQ(context.takeImage(), Image(kSize, kSize));
}

TEST(NativeRasterContext, AntialiasedClipsMultiply) {
  const Path circle = makeOvalPath({8, 8, 48, 48});
  const auto clipped = [&](const std::vector<Path>& clips) {
    NativeRasterContext context(kSize, kSize);
    context.save();
    for (const Path& clip : clips) context.clip(clip);
    context.fill(rectPath(0, 0, 64, 64), FillRule::Winding, kBlue);
    context.restore();
    return context.image();
  };
  // The left half of the circle, its edge half a pixel in.
  expectPixels(clipped({circle, rectPath(0.5, 0, 31.5, 64)}),
               {{20, 32, kOpaqueBlue}, {40, 32, kClear}, {0, 32, kClear}});
  // On the circle's left edge, where pixel 8 is also half covered by the rectangle, the two
  // clips' coverages multiply.
  NativeRasterContext reference(kSize, kSize);
  reference.fill(circle, FillRule::Winding, kBlue);
  const int circleEdge = reference.image().pixel(8, 31).a;
  ASSERT_GT(circleEdge, 100);
  ASSERT_LT(circleEdge, 250);
  EXPECT_NEAR(clipped({rectPath(8.5, 0, 31.5, 64), circle}).pixel(8, 31).a,
              multiply255(circleEdge, 128), 1);
}

TEST(NativeRasterContext, DrawingThatCannotShowDrawsNothing) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  NativeRasterContext context(kSize, kSize);
  context.fill(rectPath(0, 0, nan, 10), FillRule::Winding, kRed);
  for (const StrokeStyle& style : {StrokeStyle{inf, 4, LineCap::Butt, LineJoin::Miter},
                                   StrokeStyle{2, nan, LineCap::Butt, LineJoin::Miter},
                                   StrokeStyle{0, 4, LineCap::Round, LineJoin::Round},
                                   StrokeStyle{-3, 4, LineCap::Round, LineJoin::Round}}) {
    context.stroke(rectPath(4, 4, 20, 20), style, kRed);
  }
  context.fill(rectPath(0, 0, 64, 64), FillRule::Winding, kRed.withAlpha(0.001));
  EXPECT_EQ(context.image(), Image(kSize, kSize));

  // A clip that is not finite, or empty, leaves nothing visible until restored.
  context.save();
  context.clip(rectPath(0, 0, inf, 10));
  context.fill(rectPath(0, 0, 64, 64), FillRule::Winding, kRed);
  context.restore();
  context.save();
  context.clip(Path());
  context.stroke(rectPath(4, 4, 20, 20), {4, 4, LineCap::Butt, LineJoin::Miter}, kRed);
  context.restore();
  EXPECT_EQ(context.image(), Image(kSize, kSize));
  context.fill(rectPath(0, 0, 64, 64), FillRule::Winding, kRed);
  expectPixels(context.image(), {{5, 5, kOpaqueRed}});
}

TEST(NativeRasterContext, AbsurdGeometryStaysDefined) {
  // Coordinates and widths far beyond any canvas must neither crash nor overflow; what little
  // reaches the canvas is drawn.
  const double huge = 1e300;
  NativeRasterContext context(kSize, kSize);
  Path far;
  far.moveTo({-huge, -huge});
  far.cubicTo({huge, -huge}, {huge, huge}, {-huge, huge});
  far.close();
  context.fill(far, FillRule::EvenOdd, kRed);
  Path zigzag;
  zigzag.moveTo({10, 10});
  zigzag.lineTo({50, 12});
  zigzag.lineTo({12, 14});
  zigzag.quadTo({huge, 0}, {30, 60});
  for (const double width : {1e-9, 1e9, huge}) {
    for (const LineJoin join : {LineJoin::Miter, LineJoin::Round, LineJoin::Bevel}) {
      context.stroke(zigzag, {width, huge, LineCap::Round, join}, kBlue.withAlpha(0.1));
      context.stroke(zigzag, {width, -huge, LineCap::Square, join}, kBlue.withAlpha(0.1));
    }
  }
  context.save();
  context.clip(far);
  context.fill(rectPath(-huge, -huge, 2 * huge, 2 * huge), FillRule::Winding, kBlue.withAlpha(0.5));
  context.restore();
  EXPECT_GT(context.image().pixel(32, 32).a, 0);
}

}  // namespace
}  // namespace tessaline
