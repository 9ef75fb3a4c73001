#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "platform/raster/pixel_ops.h"

namespace tessaline {
namespace {

// The in-place conversion takes shortcuts for blocks of pixels whose alpha is 0 or 255; every
// pixel must still come out exactly as unpremultiply gives it, whatever mix a block holds and
// wherever the box starts and ends, and pixels outside the box must stay untouched.
TEST(RasterPixelOps, InPlaceConversionMatchesPixelByPixel) {
  constexpr int kWidth = 150, kHeight = 9;  // whole blocks of 64 and of 4, and single pixels
  std::mt19937 engine(7);
  std::vector<PremultipliedPixel> pixels(kWidth * kHeight);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    // Rows alternate between runs of opaque and transparent pixels and a mix with translucent
    // ones, so blocks of every kind and runs of one value occur.
    const int row = static_cast<int>(i) / kWidth;
    std::uint32_t alpha;
    if (row % 3 == 0) {
      alpha = (i / 5) % 2 ? 255 : 0;
    } else if (row % 3 == 1) {
      alpha = engine() % 256;
    } else {
      alpha = (i / 3) % 4 == 0 ? engine() % 256 : 255;
    }
    const auto channel = [&] { return alpha == 0 ? 0 : engine() % (alpha + 1); };
    pixels[i] = alpha << 24 | channel() << 16 | channel() << 8 | channel();
  }
  for (const auto& [x0, y0, x1, y1] :
       {std::array{0, 0, kWidth, kHeight}, std::array{3, 1, 140, 8}, std::array{5, 2, 6, 3}}) {
    SCOPED_TRACE(testing::Message() << x0 << "," << y0 << " to " << x1 << "," << y1);
    std::vector<std::uint8_t> canvas(pixels.size() * 4);
    std::memcpy(canvas.data(), pixels.data(), canvas.size());
    unpremultiplyInPlace(canvas.data(), kWidth, x0, y0, x1, y1);
    for (int y = 0; y < kHeight; ++y) {
      for (int x = 0; x < kWidth; ++x) {
        const std::size_t i = static_cast<std::size_t>(y) * kWidth + x;
        std::uint8_t expected[4];
        if (x >= x0 && x < x1 && y >= y0 && y < y1) {
          unpremultiply(pixels[i], expected);
        } else {
          std::memcpy(expected, &pixels[i], 4);
        }
        ASSERT_EQ(std::memcmp(canvas.data() + 4 * i, expected, 4), 0)
            << "pixel " << x << "," << y << " was " << std::hex << pixels[i];
      }
    }
  }
}

// Every alpha with every channel value, valid premultiplied or not (then clamped), through the
// block paths: the shortcuts must divide exactly as unpremultiply does. Only alpha 0 keeps to
// what a canvas holds, all channels 0.
TEST(RasterPixelOps, InPlaceConversionIsExactForEveryAlphaAndChannel) {
  constexpr int kSide = 256;  // x: channel value, y: alpha
  std::vector<std::uint8_t> canvas(kSide * kSide * 4);
  std::vector<PremultipliedPixel> pixels(kSide * kSide);
  for (std::uint32_t a = 0; a < kSide; ++a) {
    for (std::uint32_t c = 0; c < kSide; ++c) {
      const PremultipliedPixel p = a == 0 ? 0 : a << 24 | c << 16 | (255 - c) << 8 | (c * 7 % 256);
      pixels[a * kSide + c] = p;
      std::memcpy(canvas.data() + 4 * (a * kSide + c), &p, 4);
    }
  }
  unpremultiplyInPlace(canvas.data(), kSide, 0, 0, kSide, kSide);
  for (std::size_t i = 0; i < pixels.size(); ++i) {
    std::uint8_t expected[4];
    unpremultiply(pixels[i], expected);
    ASSERT_EQ(std::memcmp(canvas.data() + 4 * i, expected, 4), 0)
        << "premultiplied " << std::hex << pixels[i];
  }
}

}  // namespace
}  // namespace tessaline
