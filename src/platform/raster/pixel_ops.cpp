#include "platform/raster/pixel_ops.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define TESSALINE_AVX2_CONVERSION 1
#endif

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

// unpremultiply for a pixel with 0 < alpha < 255, as R G B A bytes in one little-endian word,
// without a branch that depends on the pixel.
inline std::uint32_t straightWordOfTranslucent(PremultipliedPixel p) {
  const std::uint32_t a = alphaOf(p);
  return divideByAlpha((p >> 16) & 0xff, a) |
         std::uint32_t{divideByAlpha((p >> 8) & 0xff, a)} << 8 |
         std::uint32_t{divideByAlpha(p & 0xff, a)} << 16 | a << 24;
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

// Converts the 64 pixels at `start` in place, eight at a time. Pixels whose alpha is 0 or 255 only
// swap red and blue; where a group of eight holds others, all eight are also divided by their
// alpha in single precision, which gives exactly unpremultiply's result: for n = channel · 255 +
// alpha / 2 < 2^16 and 0 < alpha < 255, the rounding error of n / alpha is below 2^-24 of it,
// under 0.004 / alpha, so it never reaches the next integer, at least 1 / alpha away, and
// truncating it floors the exact quotient. Built for AVX2 alone and called only where the
// processor has it.
__attribute__((target("avx2"))) void convertSixtyFourAvx2(std::uint8_t* start) {
  const __m256i swapRedBlue =
      _mm256_setr_epi8(2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15, 2, 1, 0, 3, 6, 5, 4, 7,
                       10, 9, 8, 11, 14, 13, 12, 15);
  const __m256i alphaOne = _mm256_set1_epi32(0x01000000);
  const __m256i lowByte = _mm256_set1_epi32(0xff);
  const __m256i one = _mm256_set1_epi32(1);
  for (int k = 0; k < 8; ++k) {
    auto* at = reinterpret_cast<__m256i*>(start + 32 * k);
    const __m256i v = _mm256_loadu_si256(at);
    // Alpha + 1 (mod 256) is 0 or 1 exactly for alpha 255 and 0.
    const __m256i settled = _mm256_cmpeq_epi32(_mm256_srli_epi32(_mm256_add_epi32(v, alphaOne), 25),
                                               _mm256_setzero_si256());
    const __m256i swapped = _mm256_shuffle_epi8(v, swapRedBlue);
    if (_mm256_movemask_epi8(settled) == -1) {
      _mm256_storeu_si256(at, swapped);
      continue;
    }
    const __m256i alpha = _mm256_srli_epi32(v, 24);
    const __m256 divisor = _mm256_cvtepi32_ps(_mm256_max_epi32(alpha, one));
    const __m256i half = _mm256_srli_epi32(alpha, 1);
    const __m256i red =
        divideChannel(half, divisor, _mm256_and_si256(_mm256_srli_epi32(v, 16), lowByte));
    const __m256i green =
        divideChannel(half, divisor, _mm256_and_si256(_mm256_srli_epi32(v, 8), lowByte));
    const __m256i blue = divideChannel(half, divisor, _mm256_and_si256(v, lowByte));
    const __m256i straight =
        _mm256_or_si256(_mm256_or_si256(red, _mm256_slli_epi32(green, 8)),
                        _mm256_or_si256(_mm256_slli_epi32(blue, 16), _mm256_slli_epi32(alpha, 24)));
    _mm256_storeu_si256(at, _mm256_blendv_epi8(straight, swapped, settled));
  }
}

}  // namespace
#endif

void unpremultiplyInPlace(std::uint8_t* canvas, int stride, int x0, int y0, int x1, int y1) {
  // Icons are mostly empty space and flat opaque colour, and for a pixel whose alpha is 0 (all
  // channels are then 0) or 255 the conversion only swaps red and blue. Every pixel is swapped,
  // without a branch that depends on the picture; the others are then finished one by one, and
  // of those a run of one value is divided once.
  PremultipliedPixel last = 0;
  std::uint8_t converted[4] = {0, 0, 0, 0};
  auto convert = [&](std::uint8_t* at, PremultipliedPixel p) {
    if (p == 0) return;
    if (p != last) {
      unpremultiply(p, converted);
      last = p;
    }
    std::memcpy(at, converted, sizeof converted);
  };
#if defined(TESSALINE_AVX2_CONVERSION)
  const bool avx2 = __builtin_cpu_supports("avx2");
#endif
  for (int y = y0; y < y1; ++y) {
    std::uint8_t* row = canvas + static_cast<std::size_t>(y) * static_cast<std::size_t>(stride) * 4;
    int x = x0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i full = _mm_set1_epi32(255);
    const __m128i lowByte = _mm_set1_epi32(0xff);
    const __m128i alphaGreen = _mm_set1_epi32(static_cast<int>(0xff00ff00u));
    // Swaps red and blue of four pixels in place (its own inverse) and returns a bit per pixel
    // whose alpha is neither 0 nor 255, for which that swap is not the whole conversion.
    const auto swapBlock = [&](std::uint8_t* at) {
      const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
      const __m128i alpha = _mm_srli_epi32(v, 24);
      const __m128i settled =
          _mm_or_si128(_mm_cmpeq_epi32(alpha, zero), _mm_cmpeq_epi32(alpha, full));
      const __m128i red = _mm_and_si128(_mm_srli_epi32(v, 16), lowByte);
      const __m128i blue = _mm_slli_epi32(_mm_and_si128(v, lowByte), 16);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(at),
                       _mm_or_si128(_mm_and_si128(v, alphaGreen), _mm_or_si128(red, blue)));
      return static_cast<std::uint64_t>(~_mm_movemask_ps(_mm_castsi128_ps(settled)) & 0xf);
    };
    // The pixels a swap left unfinished, swapped back and converted one by one (their alpha is
    // neither 0 nor 255; x86 stores words little-endian).
    const auto finish = [&](std::uint8_t* start, std::uint64_t pending) {
      while (pending != 0) {
        std::uint8_t* at = start + 4 * std::countr_zero(pending);
        pending &= pending - 1;
        PremultipliedPixel swapped;
        std::memcpy(&swapped, at, sizeof swapped);
        const PremultipliedPixel p =
            (swapped & 0xff00ff00u) | ((swapped >> 16) & 0xffu) | ((swapped & 0xffu) << 16);
        const std::uint32_t straight = straightWordOfTranslucent(p);
        std::memcpy(at, &straight, sizeof straight);
      }
    };
    // Sixty-four pixels at a time, so the swaps run without branching on the picture and the
    // translucent pixels (edges, mostly) are then found from a mask.
    for (; x + 64 <= x1; x += 64) {
      std::uint8_t* start = row + static_cast<std::size_t>(x) * 4;
      std::uint64_t pending = 0;
#if defined(TESSALINE_AVX2_CONVERSION)
      if (avx2) {
        convertSixtyFourAvx2(start);
        continue;
      }
#endif
      for (int k = 0; k < 16; ++k) pending |= swapBlock(start + 16 * k) << (4 * k);
      finish(start, pending);
    }
    for (; x + 4 <= x1; x += 4) {
      std::uint8_t* start = row + static_cast<std::size_t>(x) * 4;
      finish(start, swapBlock(start));
    }
#else
    if constexpr (std::endian::native == std::endian::little) {
      constexpr std::uint64_t kLowBytes = 0x000000ff000000ffu;
      for (; x + 2 <= x1; x += 2) {
        std::uint8_t* at = row + static_cast<std::size_t>(x) * 4;
        std::uint64_t pair;
        std::memcpy(&pair, at, sizeof pair);
        // (a + 1) & 0xfe is 0 exactly for a = 0 and a = 255.
        const std::uint32_t alphas = (static_cast<std::uint32_t>((pair >> 24) & 0xff) + 1) |
                                     (static_cast<std::uint32_t>(pair >> 56) + 1);
        if ((alphas & 0xfe) == 0) {
          pair = (pair & ~(kLowBytes | kLowBytes << 16)) | ((pair >> 16) & kLowBytes) |
                 ((pair & kLowBytes) << 16);
          std::memcpy(at, &pair, sizeof pair);
          continue;
        }
        convert(at, static_cast<PremultipliedPixel>(pair));
        convert(at + 4, static_cast<PremultipliedPixel>(pair >> 32));
      }
    }
#endif
    for (; x < x1; ++x) {
      std::uint8_t* at = row + static_cast<std::size_t>(x) * 4;
      PremultipliedPixel p;
      std::memcpy(&p, at, sizeof p);
      convert(at, p);
    }
  }
}

}  // namespace tessaline
