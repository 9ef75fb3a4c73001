#include "platform/cairo_raster_context.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tessaline {
namespace {

constexpr int kSize = 64;
constexpr Color kRed{1, 0, 0, 1};
constexpr Color kBlue{0, 0, 1, 1};
// One step of 8-bit rounding when premultiplied values are turned back into straight alpha.
constexpr int kChannelTolerance = 1;

Path rectPath(double x, double y, double w, double h) {
  Path p;
  p.moveTo({x, y});
  p.lineTo({x + w, y});
  p.lineTo({x + w, y + h});
  p.lineTo({x, y + h});
  p.close();
  return p;
}

void expectPixel(const Image& image, int x, int y, Rgba expected) {
  SCOPED_TRACE(::testing::Message() << "pixel (" << x << ", " << y << ")");
  const Rgba actual = image.pixel(x, y);
  EXPECT_LE(std::abs(actual.r - expected.r), kChannelTolerance) << int(actual.r);
  EXPECT_LE(std::abs(actual.g - expected.g), kChannelTolerance) << int(actual.g);
  EXPECT_LE(std::abs(actual.b - expected.b), kChannelTolerance) << int(actual.b);
  EXPECT_LE(std::abs(actual.a - expected.a), kChannelTolerance) << int(actual.a);
}

constexpr Rgba kTransparent{0, 0, 0, 0};
constexpr Rgba kOpaqueRed{255, 0, 0, 255};
constexpr Rgba kOpaqueBlue{0, 0, 255, 255};

TEST(CairoRasterContext, StartsTransparentAndFillsWithStraightAlpha) {
  auto context = makeCairoRasterContext(kSize, kSize);
  Image blank = context->image();
  ASSERT_EQ(blank.width(), kSize);
  ASSERT_EQ(blank.height(), kSize);
  EXPECT_EQ(blank, Image(kSize, kSize));

  context->fill(rectPath(10, 10, 20, 20), FillRule::Winding, kRed);
  context->fill(rectPath(40, 10, 20, 20), FillRule::Winding, kBlue.withAlpha(0.5));
  const Image image = context->image();
  expectPixel(image, 20, 20, kOpaqueRed);
  // Half-transparent blue comes back as full-intensity blue with half alpha, not premultiplied.
  expectPixel(image, 50, 20, {0, 0, 255, 128});
  expectPixel(image, 5, 5, kTransparent);
  expectPixel(image, 20, 50, kTransparent);
}

TEST(CairoRasterContext, FillRules) {
  // Two nested squares wound the same way: the inner one is a hole only under even-odd.
  Path nested = rectPath(8, 8, 48, 48);
  Path inner = rectPath(24, 24, 16, 16);
  inner.forEach([&](const PathElement& e) {
    if (e.verb == PathVerb::Move) nested.moveTo(e.points[0]);
    if (e.verb == PathVerb::Line) nested.lineTo(e.points[0]);
    if (e.verb == PathVerb::Close) nested.close();
  });
  for (FillRule rule : {FillRule::Winding, FillRule::EvenOdd}) {
    SCOPED_TRACE(rule == FillRule::Winding ? "winding" : "even-odd");
    auto context = makeCairoRasterContext(kSize, kSize);
    context->fill(nested, rule, kRed);
    const Image image = context->image();
    expectPixel(image, 12, 12, kOpaqueRed);
    expectPixel(image, 32, 32, rule == FillRule::Winding ? kOpaqueRed : kTransparent);
  }
}

TEST(CairoRasterContext, ClipIsPartOfTheSavedStateAndUsesNonZeroWinding) {
  auto context = makeCairoRasterContext(kSize, kSize);
  context->save();
  // The same nested squares as a clip: non-zero winding keeps the inner square.
  Path clip = rectPath(0, 0, 32, 64);
  clip.moveTo({8, 8});
  clip.lineTo({24, 8});
  clip.lineTo({24, 24});
  clip.lineTo({8, 24});
  clip.close();
  context->clip(clip);
  context->fill(rectPath(0, 0, kSize, kSize), FillRule::Winding, kRed);
  Image image = context->image();
  expectPixel(image, 16, 16, kOpaqueRed);
  expectPixel(image, 16, 40, kOpaqueRed);
  expectPixel(image, 48, 16, kTransparent);

  context->restore();
  context->fill(rectPath(40, 0, 24, kSize), FillRule::Winding, kBlue);
  image = context->image();
  expectPixel(image, 48, 16, kOpaqueBlue);
}

TEST(CairoRasterContext, UnbalancedRestoreIsIgnored) {
  auto context = makeCairoRasterContext(kSize, kSize);
  context->restore();
  context->fill(rectPath(0, 0, kSize, kSize), FillRule::Winding, kRed);
  expectPixel(context->image(), 32, 32, kOpaqueRed);
}

TEST(CairoRasterContext, StrokeWidthCapsAndJoins) {
  // An L-shaped polyline: (10, 50) -> (50, 50) -> (50, 10), 10 pixels wide.
  Path corner;
  corner.moveTo({10, 50});
  corner.lineTo({50, 50});
  corner.lineTo({50, 10});
  struct Variant {
    const char* name;
    StrokeStyle style;
    bool capCoversBeyondStart;   // (7, 50): 3 px before the start
    bool joinCoversOuterCorner;  // (54, 54): the miter tip region
  };
  const Variant variants[] = {
      {"butt miter", {10, 4, LineCap::Butt, LineJoin::Miter}, false, true},
      {"square miter", {10, 4, LineCap::Square, LineJoin::Miter}, true, true},
      {"round round", {10, 4, LineCap::Round, LineJoin::Round}, true, false},
      {"butt bevel", {10, 4, LineCap::Butt, LineJoin::Bevel}, false, false},
      // A right angle needs a miter limit of at least sqrt(2); below it the join is bevelled.
      {"butt miter limit 1", {10, 1, LineCap::Butt, LineJoin::Miter}, false, false},
  };
  for (const Variant& v : variants) {
    SCOPED_TRACE(v.name);
    auto context = makeCairoRasterContext(kSize, kSize);
    context->stroke(corner, v.style, kRed);
    const Image image = context->image();
    expectPixel(image, 30, 50, kOpaqueRed);
    expectPixel(image, 30, 43, kTransparent);  // beyond half the width
    expectPixel(image, 7, 50, v.capCoversBeyondStart ? kOpaqueRed : kTransparent);
    expectPixel(image, 54, 54, v.joinCoversOuterCorner ? kOpaqueRed : kTransparent);
  }
}

TEST(CairoRasterContext, QuadraticSegmentsKeepTheirShape) {
  // Quadratic from (0, 0) over (32, 64) to (64, 0): its apex is at (32, 32). A wrong conversion
  // to a cubic (for instance using the control point twice) bulges to y = 48.
  Path p;
  p.moveTo({0, 0});
  p.quadTo({32, 64}, {64, 0});
  p.close();
  auto context = makeCairoRasterContext(kSize, kSize);
  context->fill(p, FillRule::Winding, kRed);
  const Image image = context->image();
  expectPixel(image, 32, 28, kOpaqueRed);
  expectPixel(image, 32, 36, kTransparent);
}

TEST(CairoRasterContext, EdgesAreAntiAliased) {
  auto context = makeCairoRasterContext(kSize, kSize);
  context->fill(rectPath(10.5, 10, 20, 20), FillRule::Winding, kRed);
  const Rgba edge = context->image().pixel(10, 20);
  EXPECT_GT(edge.a, 64);
  EXPECT_LT(edge.a, 192);
}

}  // namespace
}  // namespace tessaline
