#include "platform/raster/pixel_ops.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define TESSALINE_AVX2_CONVERSION 1
#endif

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

#if defined(TESSALINE_AVX2_CONVERSION)
namespace {

// floor((channel · 255 + alpha / 2) / alpha), at most 255, in eight lanes (see below for why
// single precision is exact here).
__attribute__((target("avx2"))) inline __m256i divideChannel(__m256i half, __m256 divisor,
                                                             __m256i channel) {
  const __m256i n =
      _mm256_add_epi32(_mm256_sub_epi32(_mm256_slli_epi32(channel, 8), channel), half);
  const __m256i q = _mm256_cvttps_epi32(_mm256_div_ps(_mm256_cvtepi32_ps(n), divisor));
  return _mm256_min_epu32(q, _mm256_set1_epi32(0xff));
}

// Converts `count` image-order pixels in place, whole groups of eight at a time; returns how many
// it did. Groups whose pixels all have alpha 0 or 255, or no colour, are final and left alone; a
// group holding others is divided by its alphas in single precision, which gives exactly
// unpremultiply's result: for n = channel · 255 + alpha / 2 < 2^16 and 0 < alpha < 255, the
// rounding error of n / alpha is below 2^-24 of it, under 0.004 / alpha, so it never reaches the
// next integer, at least 1 / alpha away, and truncating it floors the exact quotient. Built for
// AVX2 alone and called only where the processor has it.
__attribute__((target("avx2"))) int convertEightsAvx2(std::uint8_t* start, int count) {
  const __m256i alphaOne = _mm256_set1_epi32(0x01000000);
  const __m256i lowByte = _mm256_set1_epi32(0xff);
  const __m256i colorBits = _mm256_set1_epi32(0x00ffffff);
  const __m256i one = _mm256_set1_epi32(1);
  int done = 0;
  for (; done + 8 <= count; done += 8) {
    auto* at = reinterpret_cast<__m256i*>(start + 4 * done);
    const __m256i v = _mm256_loadu_si256(at);
    // Alpha + 1 (mod 256) is 0 or 1 exactly for alpha 255 and 0. A pixel without colour (black,
    // the usual colour of icons) is final at any alpha too: 0 divided by alpha stays 0.
    const __m256i zero = _mm256_setzero_si256();
    const __m256i settled = _mm256_or_si256(
        _mm256_cmpeq_epi32(_mm256_srli_epi32(_mm256_add_epi32(v, alphaOne), 25), zero),
        _mm256_cmpeq_epi32(_mm256_and_si256(v, colorBits), zero));
    if (_mm256_movemask_epi8(settled) == -1) continue;
    const __m256i alpha = _mm256_srli_epi32(v, 24);
    const __m256 divisor = _mm256_cvtepi32_ps(_mm256_max_epi32(alpha, one));
    const __m256i half = _mm256_srli_epi32(alpha, 1);
    const __m256i red = divideChannel(half, divisor, _mm256_and_si256(v, lowByte));
    const __m256i green =
        divideChannel(half, divisor, _mm256_and_si256(_mm256_srli_epi32(v, 8), lowByte));
    const __m256i blue =
        divideChannel(half, divisor, _mm256_and_si256(_mm256_srli_epi32(v, 16), lowByte));
    const __m256i straight =
        _mm256_or_si256(_mm256_or_si256(red, _mm256_slli_epi32(green, 8)),
                        _mm256_or_si256(_mm256_slli_epi32(blue, 16), _mm256_slli_epi32(alpha, 24)));
    _mm256_storeu_si256(at, _mm256_blendv_epi8(straight, v, settled));
  }
  return done;
}

}  // namespace
#endif

void unpremultiplyImageOrder(std::uint8_t* pixels, int count) {
  int done = 0;
#if defined(TESSALINE_AVX2_CONVERSION)
  if (__builtin_cpu_supports("avx2")) done = convertEightsAvx2(pixels, count);
#endif
  for (; done < count; ++done) {
    std::uint8_t* at = pixels + 4 * static_cast<std::size_t>(done);
    std::uint32_t word;
    std::memcpy(&word, at, sizeof word);
    // (a + 1) & 0xfe is 0 exactly for a = 0 and a = 255: those pixels are final already.
    if ((((word >> 24) + 1) & 0xfe) == 0) continue;
    // Back to the packed order unpremultiply reads (the exchange is its own inverse).
    unpremultiply(toImageOrder(word), at);
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
