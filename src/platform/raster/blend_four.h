#pragma once

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tessaline::detail {

#if defined(__SSE2__)

// Source-over of one colour at four coverages onto four pixels, in 16-bit lanes with the exact
// rounding of multiply255, so every pixel comes out as the scalar blend makes it: the colour
// scaled by the coverage, plus the destination scaled by what the scaled colour's alpha leaves.
// Works on either byte order of the pixel word as long as alpha is the top byte.

// a·b/255 rounded to nearest, in each 16-bit lane (a, b <= 255).
inline __m128i multiply255Lanes(__m128i a, __m128i b) {
  const __m128i t = _mm_add_epi16(_mm_mullo_epi16(a, b), _mm_set1_epi16(128));
  return _mm_srli_epi16(_mm_add_epi16(t, _mm_srli_epi16(t, 8)), 8);
}

// `color` holds one pixel's channels in 16-bit lanes, twice; `coverages` the scale of each of
// two pixels repeated over their four lanes.
inline __m128i blendTwo(__m128i destination, __m128i color, __m128i coverages) {
  const __m128i source = multiply255Lanes(color, coverages);
  const __m128i alpha = _mm_shufflehi_epi16(_mm_shufflelo_epi16(source, 0xff), 0xff);
  const __m128i keep = _mm_sub_epi16(_mm_set1_epi16(255), alpha);
  return _mm_add_epi16(source, multiply255Lanes(destination, keep));
}

// The colour's channels widened to 16-bit lanes, two pixels' worth.
inline __m128i colorLanes(std::uint32_t color) {
  const __m128i packed = _mm_set1_epi32(static_cast<int>(color));
  return _mm_unpacklo_epi8(packed, _mm_setzero_si128());
}

// Four coverages in the low four 16-bit lanes of `words`, each widened over its pixel's four
// 16-bit lanes.
inline void spreadCoverageWords(__m128i words, __m128i& firstTwo, __m128i& lastTwo) {
  const __m128i lanes = _mm_unpacklo_epi16(words, words);
  firstTwo = _mm_unpacklo_epi32(lanes, lanes);
  lastTwo = _mm_unpackhi_epi32(lanes, lanes);
}

// The same from four 8-bit coverages at `coverage`.
inline void spreadCoverages(const std::uint8_t* coverage, __m128i& firstTwo, __m128i& lastTwo) {
  std::int32_t four;
  std::memcpy(&four, coverage, sizeof four);
  spreadCoverageWords(_mm_unpacklo_epi8(_mm_cvtsi32_si128(four), _mm_setzero_si128()), firstTwo,
                      lastTwo);
}

// The same from four coverages (at most 255) in 32-bit lanes, as the rasterizer sums them.
inline void spreadCoverageLanes(__m128i coverages, __m128i& firstTwo, __m128i& lastTwo) {
  spreadCoverageWords(_mm_packs_epi32(coverages, coverages), firstTwo, lastTwo);
}

// Whether all four pixels of `destination` are transparent (all zeros).
inline bool allTransparent(__m128i destination) {
  return _mm_movemask_epi8(_mm_cmpeq_epi32(destination, _mm_setzero_si128())) == 0xffff;
}

// Source-over of `color` (in 16-bit lanes, colorLanes) at four coverages, spread as
// spreadCoverages gives them, onto the four pixels `destination`; the result is stored to
// `pixels`, where `destination` was loaded from.
inline void blendFourOnto(std::uint32_t* pixels, __m128i destination, __m128i color,
                          __m128i firstTwo, __m128i lastTwo) {
  __m128i low, high;
  if (allTransparent(destination)) {
    // Over transparent pixels (the edges of the first shape to reach them) the scaled colour is
    // the result, as source-over would compute it.
    low = multiply255Lanes(color, firstTwo);
    high = multiply255Lanes(color, lastTwo);
  } else {
    const __m128i zero = _mm_setzero_si128();
    low = blendTwo(_mm_unpacklo_epi8(destination, zero), color, firstTwo);
    high = blendTwo(_mm_unpackhi_epi8(destination, zero), color, lastTwo);
  }
  _mm_storeu_si128(reinterpret_cast<__m128i*>(pixels), _mm_packus_epi16(low, high));
}

// The same, loading the four pixels at `pixels` first.
inline void blendFour(std::uint32_t* pixels, __m128i color, __m128i firstTwo, __m128i lastTwo) {
  blendFourOnto(pixels, _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels)), color, firstTwo,
                lastTwo);
}

// Blends `color` (in 16-bit lanes, colorLanes) onto the four pixels at `pixels` with the
// coverages at `coverage`.
inline void blendFour(std::uint32_t* pixels, __m128i color, const std::uint8_t* coverage) {
  __m128i firstTwo, lastTwo;
  spreadCoverages(coverage, firstTwo, lastTwo);
  blendFour(pixels, color, firstTwo, lastTwo);
}

// Four coverages times four mask values, each rounded as multiply255, into `out`.
inline void maskCoverages(const std::uint8_t* coverage, const std::uint8_t* mask,
                          std::uint8_t* out) {
  std::int32_t c, m;
  std::memcpy(&c, coverage, sizeof c);
  std::memcpy(&m, mask, sizeof m);
  const __m128i zero = _mm_setzero_si128();
  const __m128i product = multiply255Lanes(_mm_unpacklo_epi8(_mm_cvtsi32_si128(c), zero),
                                           _mm_unpacklo_epi8(_mm_cvtsi32_si128(m), zero));
  const std::int32_t four = _mm_cvtsi128_si32(_mm_packus_epi16(product, product));
  std::memcpy(out, &four, sizeof four);
}

#endif

}  // namespace tessaline::detail
