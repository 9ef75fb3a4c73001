#pragma once

#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tessaline::detail {

// The Adler-32 checksum that ends the zlib stream, summed while the rows are built rather than
// in a second pass over them (which took a sixth of the encoding time). Sums are reduced once
// per row; between reductions they stay far below 2^64 for any row width an Image can have.
class Adler32 {
 public:
  static constexpr std::uint64_t kModulus = 65521;

  void add(std::uint8_t byte) {
    a_ += byte;
    b_ += a_;
  }
  // `count` bytes of one value, in closed form: the kind of stretch an icon's rows are made of.
  void addRun(std::uint8_t byte, std::uint64_t count) {
    b_ += count * a_ + byte * (count * (count + 1) / 2);
    a_ += count * byte;
  }
#if defined(__SSE2__)
  // The 32 bytes of `low` then `high`.
  void addBlock(__m128i low, __m128i high) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i sums = _mm_add_epi64(_mm_sad_epu8(low, zero), _mm_sad_epu8(high, zero));
    // Byte i of the block counts 32 - i times towards b.
    const __m128i weighted = _mm_add_epi32(
        _mm_add_epi32(_mm_madd_epi16(_mm_unpacklo_epi8(low, zero),
                                     _mm_setr_epi16(32, 31, 30, 29, 28, 27, 26, 25)),
                      _mm_madd_epi16(_mm_unpackhi_epi8(low, zero),
                                     _mm_setr_epi16(24, 23, 22, 21, 20, 19, 18, 17))),
        _mm_add_epi32(
            _mm_madd_epi16(_mm_unpacklo_epi8(high, zero),
                           _mm_setr_epi16(16, 15, 14, 13, 12, 11, 10, 9)),
            _mm_madd_epi16(_mm_unpackhi_epi8(high, zero), _mm_setr_epi16(8, 7, 6, 5, 4, 3, 2, 1))));
    const __m128i pairs = _mm_add_epi32(weighted, _mm_shuffle_epi32(weighted, 0x4e));
    const __m128i total = _mm_add_epi32(pairs, _mm_shuffle_epi32(pairs, 0xb1));
    b_ += 32 * a_ + static_cast<std::uint32_t>(_mm_cvtsi128_si32(total));
    a_ += static_cast<std::uint64_t>(_mm_cvtsi128_si64(sums)) +
          static_cast<std::uint64_t>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(sums, sums)));
  }
#endif
  void reduce() {
    a_ %= kModulus;
    b_ %= kModulus;
  }
  std::uint32_t value() {
    reduce();
    return static_cast<std::uint32_t>(b_ << 16 | a_);
  }

 private:
  std::uint64_t a_ = 1;
  std::uint64_t b_ = 0;
};

}  // namespace tessaline::detail
