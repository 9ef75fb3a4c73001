#pragma once

#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tessaline::detail {

// The coverage rasterizer's row sweep visits the cells of a row in aligned groups of four; this
// is the vector form of its per-cell work for one group: a running sum of the cells' deltas
// starting from `area`, each sum mapped to 8-bit coverage, the cells cleared for the next shape.
// The mapping is the rasterizer's own (full pixel = 2^17, rounded to the nearest 1/255), in the
// same integer steps, so the results are identical to summing cell by cell.
#if defined(__SSE2__)

// Unsigned min(v, 2^17) of four lanes: SSE2 compares only signed, so test the high bits instead.
inline __m128i clampToFullArea(__m128i v) {
  const __m128i full = _mm_set1_epi32(1 << 17);
  const __m128i small = _mm_cmpeq_epi32(_mm_srli_epi32(v, 17), _mm_setzero_si128());
  return _mm_or_si128(_mm_and_si128(small, v), _mm_andnot_si128(small, full));
}

template <bool EvenOdd>
inline __m128i coverageOfAreas(__m128i area) {
  __m128i covered;
  if constexpr (EvenOdd) {
    // Fold modulo two full pixels: beyond one full pixel, count back down.
    const __m128i folded = _mm_and_si128(area, _mm_set1_epi32((2 << 17) - 1));
    const __m128i over = _mm_cmpgt_epi32(folded, _mm_set1_epi32(1 << 17));
    const __m128i back = _mm_sub_epi32(_mm_set1_epi32(2 << 17), folded);
    covered = _mm_or_si128(_mm_and_si128(over, back), _mm_andnot_si128(over, folded));
  } else {
    const __m128i sign = _mm_srai_epi32(area, 31);
    covered = clampToFullArea(_mm_sub_epi32(_mm_xor_si128(area, sign), sign));
  }
  // covered * 255 without a 32-bit multiply (SSE2 has none), then round and scale to 8 bits.
  const __m128i times255 = _mm_sub_epi32(_mm_slli_epi32(covered, 8), covered);
  return _mm_srli_epi32(_mm_add_epi32(times255, _mm_set1_epi32(1 << 16)), 17);
}

// Running sum of the four lanes of `deltas`, plus `carry` (all lanes alike).
inline __m128i runningSum(__m128i deltas, __m128i carry) {
  deltas = _mm_add_epi32(deltas, _mm_slli_si128(deltas, 4));
  deltas = _mm_add_epi32(deltas, _mm_slli_si128(deltas, 8));
  return _mm_add_epi32(deltas, carry);
}

// The sweep's state from one group of a row to the next: the summed area so far, in every lane.
// Kept in a register, it is read out as a number only where the sweep needs it (a solid run).
class GroupSweep {
 public:
  explicit GroupSweep(std::uint32_t area = 0) : carry_(_mm_set1_epi32(static_cast<int>(area))) {}

  std::uint32_t area() const { return static_cast<std::uint32_t>(_mm_cvtsi128_si32(carry_)); }

  // Sums the four cells at `cells` onto the area so far, clears them and returns their
  // coverages under the fill rule, one per 32-bit lane.
  template <bool EvenOdd>
  __m128i next(std::uint32_t* cells) {
    __m128i* const at = reinterpret_cast<__m128i*>(cells);
    const __m128i sums = runningSum(_mm_loadu_si128(at), carry_);
    _mm_storeu_si128(at, _mm_setzero_si128());
    carry_ = _mm_shuffle_epi32(sums, 0xff);
    return coverageOfAreas<EvenOdd>(sums);
  }

 private:
  __m128i carry_;
};

// Writes four coverages (32-bit lanes, each at most 255) as bytes to coverage[0...3].
inline void storeCoverages(__m128i coverages, std::uint8_t* coverage) {
  // Coverage is at most 255, so the saturating packs keep every value.
  const __m128i words = _mm_packs_epi32(coverages, _mm_setzero_si128());
  const std::int32_t four = _mm_cvtsi128_si32(_mm_packus_epi16(words, words));
  std::memcpy(coverage, &four, sizeof four);
}

#endif

}  // namespace tessaline::detail
