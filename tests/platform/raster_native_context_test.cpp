#include "platform/raster/native_raster_context.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "platform/raster/pixel_ops.h"

namespace tessaline {
namespace {

constexpr int kSize = 64;
constexpr Color kRed{1, 0, 0, 1};
constexpr Color kBlue{0, 0, 1, 1};

Path rectPath(double x, double y, double w, double h) {
  Path p;
  p.moveTo({x, y});
  p.lineTo({x + w, y});
  p.lineTo({x + w, y + h});
  p.lineTo({x, y + h});
  p.close();
  return p;
}

// Every channel within `tolerance` of the expected value.
void expectPixel(const Image& image, int x, int y, Rgba expected, int tolerance = 0) {
  SCOPED_TRACE(::testing::Message() << "pixel (" << x << ", " << y << ")");
  const Rgba actual = image.pixel(x, y);
  EXPECT_NEAR(actual.r, expected.r, tolerance);
  EXPECT_NEAR(actual.g, expected.g, tolerance);
  EXPECT_NEAR(actual.b, expected.b, tolerance);
  EXPECT_NEAR(actual.a, expected.a, tolerance);
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
  EXPECT_EQ(premultiply(kRed), 0xffff0000u);
  EXPECT_EQ(premultiply({1, 1, 1, 0.5}), 0x7f7f7f7fu);  // 0.5 quantises to 127, as the reference
  EXPECT_EQ(premultiply({2, -1, 0.5, 1}), 0xffff007fu);
  EXPECT_EQ(premultiply({1, 1, 1, std::numeric_limits<double>::quiet_NaN()}), 0u);
}

TEST(NativeRasterContext, CompositesSourceOverAndReturnsStraightAlpha) {
  NativeRasterContext context(kSize, kSize);
  EXPECT_EQ(context.image(), Image(kSize, kSize));
  context.fill(rectPath(0, 0, 32, 64), FillRule::Winding, kRed.withAlpha(0.5));
  context.fill(rectPath(16, 0, 48, 64), FillRule::Winding, kBlue.withAlpha(0.5));
  context.fill(rectPath(0, 48, 8, 8), FillRule::Winding, kBlue);
  const Image image = context.image();
  expectPixel(image, 4, 4, {255, 0, 0, 127});
  expectPixel(image, 40, 4, {0, 0, 255, 127});
  // 50% blue over 50% red: alpha 0.75, colour one third red and two thirds blue.
  expectPixel(image, 20, 4, {85, 0, 170, 191}, 1);
  expectPixel(image, 4, 50, {0, 0, 255, 255});  // opaque replaces
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

TEST(NativeRasterContext, PartialCoverageScalesTheColour) {
  NativeRasterContext context(kSize, kSize);
  context.fill(rectPath(10.5, 10, 10, 10), FillRule::Winding, kRed);
  context.fill(rectPath(10.5, 30, 10, 10), FillRule::Winding, kBlue.withAlpha(0.5));
  const Image image = context.image();
  expectPixel(image, 10, 15, {255, 0, 0, 128});
  expectPixel(image, 20, 15, {255, 0, 0, 128});
  expectPixel(image, 15, 15, {255, 0, 0, 255});
  expectPixel(image, 10, 35, {0, 0, 255, 64});
}

TEST(NativeRasterContext, ClipStackRestoresWhatWasSaved) {
  NativeRasterContext context(kSize, kSize);
  context.save();
  context.clip(rectPath(0, 0, 32, 64));  // left half
  context.save();
  context.clip(rectPath(16, 16, 48, 8));  // and a band: only their intersection shows
  context.fill(rectPath(0, 0, 64, 64), FillRule::Winding, kRed);
  context.restore();
  context.fill(rectPath(0, 32, 64, 32), FillRule::Winding, kBlue);  // left half only again
  context.restore();
  context.restore();                                                // unbalanced: ignored
  context.fill(rectPath(48, 48, 16, 16), FillRule::Winding, kRed);  // unclipped again
  const Image image = context.image();
  expectPixel(image, 20, 20, {255, 0, 0, 255});
  expectPixel(image, 40, 20, {0, 0, 0, 0});
  expectPixel(image, 10, 20, {0, 0, 0, 0});
  expectPixel(image, 10, 40, {0, 0, 255, 255});
  expectPixel(image, 40, 40, {0, 0, 0, 0});
  expectPixel(image, 56, 56, {255, 0, 0, 255});
}

TEST(NativeRasterContext, AntialiasedClipsMultiply) {
  NativeRasterContext context(kSize, kSize);
  context.save();
  Path circle = makeOvalPath({8, 8, 48, 48});
  context.clip(circle);
  context.clip(
      rectPath(0.5, 0, 31.5, 64));  // the left half of the circle, its edge half a pixel in
  context.fill(rectPath(0, 0, 64, 64), FillRule::Winding, kBlue);
  context.restore();
  const Image clipped = context.image();
  expectPixel(clipped, 20, 32, {0, 0, 255, 255});
  expectPixel(clipped, 40, 32, {0, 0, 0, 0});
  expectPixel(clipped, 0, 32, {0, 0, 0, 0});
  // On the circle's left edge the two clips' coverages multiply.
  NativeRasterContext reference(kSize, kSize);
  reference.fill(circle, FillRule::Winding, kBlue);
  const int circleEdge = reference.image().pixel(8, 31).a;
  ASSERT_GT(circleEdge, 100);
  ASSERT_LT(circleEdge, 250);
  // Above the circle, pixel 31 is half covered by the rectangle and partly by the circle.
  const Image lone = [&] {
    NativeRasterContext c(kSize, kSize);
    c.clip(rectPath(8.5, 0, 31.5, 64));
    c.clip(circle);
    c.fill(rectPath(0, 0, 64, 64), FillRule::Winding, kBlue);
    return c.image();
  }();
  EXPECT_NEAR(lone.pixel(8, 31).a, multiply255(circleEdge, 128), 1);
}

TEST(NativeRasterContext, DrawingThatCannotShowDrawsNothing) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  NativeRasterContext context(kSize, kSize);
  context.fill(rectPath(0, 0, nan, 10), FillRule::Winding, kRed);
  context.stroke(rectPath(4, 4, 20, 20), {inf, 4, LineCap::Butt, LineJoin::Miter}, kRed);
  context.stroke(rectPath(4, 4, 20, 20), {2, nan, LineCap::Butt, LineJoin::Miter}, kRed);
  context.stroke(rectPath(4, 4, 20, 20), {0, 4, LineCap::Round, LineJoin::Round}, kRed);
  context.stroke(rectPath(4, 4, 20, 20), {-3, 4, LineCap::Round, LineJoin::Round}, kRed);
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
  expectPixel(context.image(), 5, 5, {255, 0, 0, 255});
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
  const Image image = context.image();
  EXPECT_GT(image.pixel(32, 32).a, 0);
}

}  // namespace
}  // namespace tessaline
