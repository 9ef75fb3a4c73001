#include "platform/raster/pixel_ops.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

namespace tessaline {

static_assert(std::endian::native == std::endian::little,
              "the native canvas packs R G B A bytes into little-endian words");

namespace {

std::uint32_t quantize(double value) {
  if (!(value > 0)) return 0;  // also NaN
  if (value >= 1) return 255;
  // The reference goes through 16 bits with a truncating conversion.
  return static_cast<std::uint32_t>(value * (65536.0 - 1e-5)) >> 8;
}

double unit(double value) {
  return value > 0 ? (value < 1 ? value : 1) : 0;
}

// ceil(2^24 / a): for n < 2^16, (n · m) >> 24 equals n / a rounded down, since the error of the
// reciprocal, below n / 2^24 < 1/256, never reaches the gap 1/a between n/a and the next integer.
constexpr std::array<std::uint32_t, 256> makeReciprocals() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t a = 1; a < 256; ++a) table[a] = ((1u << 24) + a - 1) / a;
  return table;
}

constexpr std::array<std::uint32_t, 256> kReciprocals = makeReciprocals();

std::uint8_t divideByAlpha(std::uint32_t channel, std::uint32_t alpha) {
  const std::uint64_t n = channel * 255 + alpha / 2;
  const std::uint32_t value = static_cast<std::uint32_t>((n * kReciprocals[alpha]) >> 24);
  return static_cast<std::uint8_t>(value > 255 ? 255 : value);
}

}  // namespace

PremultipliedPixel premultiply(const Color& color) {
  const double alpha = unit(color.alpha);
  return quantize(alpha) << 24 | quantize(unit(color.red) * alpha) << 16 |
         quantize(unit(color.green) * alpha) << 8 | quantize(unit(color.blue) * alpha);
}

void unpremultiply(PremultipliedPixel p, std::uint8_t* rgba) {
  const std::uint32_t a = alphaOf(p);
  if (a == 255) {
    rgba[0] = static_cast<std::uint8_t>(p >> 16);
    rgba[1] = static_cast<std::uint8_t>(p >> 8);
    rgba[2] = static_cast<std::uint8_t>(p);
  } else if (a == 0) {
    rgba[0] = rgba[1] = rgba[2] = 0;
  } else {
    rgba[0] = divideByAlpha((p >> 16) & 0xff, a);
    rgba[1] = divideByAlpha((p >> 8) & 0xff, a);
    rgba[2] = divideByAlpha(p & 0xff, a);
  }
  rgba[3] = static_cast<std::uint8_t>(a);
}

void unpremultiplyImageOrder(std::uint8_t* pixels, int count) {
  // Runs of one translucent value (a translucent fill) are divided once. Scalar on purpose: on
  // the machines measured, wide floating-point division here slowed the whole render down by far
  // more than it saved.
  std::uint32_t lastWord = 0;
  std::uint8_t lastStraight[4] = {0, 0, 0, 0};
  for (int i = 0; i < count; ++i) {
    std::uint8_t* at = pixels + 4 * static_cast<std::size_t>(i);
    std::uint32_t word;
    std::memcpy(&word, at, sizeof word);
    // (a + 1) & 0xfe is 0 exactly for a = 0 and a = 255: those pixels are final already.
    if ((((word >> 24) + 1) & 0xfe) == 0) continue;
    if (word != lastWord) {
      // Back to the packed order unpremultiply reads (the exchange is its own inverse).
      unpremultiply(toImageOrder(word), lastStraight);
      lastWord = word;
    }
    std::memcpy(at, lastStraight, sizeof lastStraight);
  }
}

void unpremultiplyInPlace(std::uint8_t* canvas, int stride, int x0, int y0, int x1, int y1) {
  if (x0 >= x1) return;
  for (int y = y0; y < y1; ++y) {
    std::uint8_t* row = canvas + (static_cast<std::size_t>(y) * static_cast<std::size_t>(stride) +
                                  static_cast<std::size_t>(x0)) *
                                     4;
    for (int x = 0; x < x1 - x0; ++x) {
      std::uint32_t word;
      std::memcpy(&word, row + 4 * x, sizeof word);
      word = toImageOrder(word);
      std::memcpy(row + 4 * x, &word, sizeof word);
    }
    unpremultiplyImageOrder(row, x1 - x0);
  }
}

}  // namespace tessaline
