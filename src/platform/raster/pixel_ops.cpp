#include "platform/raster/pixel_ops.h"

#include <array>

namespace tessaline {
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

}  // namespace tessaline
