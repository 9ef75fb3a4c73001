#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

#include "platform/raster/native_raster_context.h"
#include "platform/raster/pixel_ops.h"

// The native canvas converts to straight alpha only where a painter marked that a pixel may be
// translucent and coloured; black paints mark nothing. Whatever order black and coloured paints,
// opaque and translucent, overlap in, every pixel must still come out exactly converted.

namespace tessaline {
namespace {

constexpr int kSize = 24;

struct Box {
  double x0, y0, x1, y1;
};

Path boxPath(const Box& b) {
  Path p;
  p.moveTo({b.x0, b.y0});
  p.lineTo({b.x1, b.y0});
  p.lineTo({b.x1, b.y1});
  p.lineTo({b.x0, b.y1});
  p.close();
  return p;
}

// Coverage of pixel (x, y) by an axis-aligned box whose sides lie on whole or half pixels, as
// the rasterizer rounds it: a half pixel is 128, a quarter 64.
std::uint32_t coverageOf(const Box& b, int x, int y) {
  const auto overlap = [](double lo, double hi, int at) {
    const double from = lo > at ? lo : at, to = hi < at + 1 ? hi : at + 1;
    return to > from ? to - from : 0.0;
  };
  const double area = overlap(b.x0, b.x1, x) * overlap(b.y0, b.y1, y);
  return area == 1 ? 255 : area == 0.5 ? 128 : area == 0.25 ? 64 : 0;
}

TEST(RasterTranslucency, BlackAndColouredPaintsInAnyOrderComeOutStraight) {
  const std::array<Color, 5> inks = {Color{0, 0, 0, 0.5}, Color{0, 0, 0, 1}, Color{1, 0, 0, 1},
                                     Color{0.2, 0.4, 1, 0.4}, Color{0, 0.6, 0, 0.7}};
  const std::array<Box, 3> boxes = {Box{2, 2, 12.5, 12.5}, Box{7.5, 7.5, 18, 18},
                                    Box{4, 10.5, 21.5, 14}};
  for (const Color& first : inks) {
    for (const Color& second : inks) {
      for (const Color& third : inks) {
        const std::array<Color, 3> order = {first, second, third};
        NativeRasterContext context(kSize, kSize);
        std::vector<PremultipliedPixel> model(kSize * kSize, 0);
        for (int i = 0; i < 3; ++i) {
          context.fill(boxPath(boxes[i]), FillRule::Winding, order[i]);
          const PremultipliedPixel source = premultiply(order[i]);
          for (int y = 0; y < kSize; ++y) {
            for (int x = 0; x < kSize; ++x) {
              const std::uint32_t c = coverageOf(boxes[i], x, y);
              if (c != 0)
                model[y * kSize + x] = sourceOver(scalePixel(source, c), model[y * kSize + x]);
            }
          }
        }
        const Image image = context.takeImage();
        for (int at = 0; at < kSize * kSize; ++at) {
          std::uint8_t expected[4];
          unpremultiply(model[at], expected);
          const std::uint8_t* actual = image.bytes().data() + 4 * at;
          ASSERT_EQ(std::vector<int>(actual, actual + 4), std::vector<int>(expected, expected + 4))
              << "pixel (" << at % kSize << ", " << at / kSize << ") of inks " << first.red << "/"
              << first.alpha << ", " << second.red << "/" << second.alpha << ", " << third.red
              << "/" << third.alpha;
        }
      }
    }
  }
}

}  // namespace
}  // namespace tessaline
