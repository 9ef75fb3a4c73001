// Building the palette-index rows of an indexed PNG, the part of the encoding that reads every
// pixel. Icons are long runs of one value (mostly the transparent ground) and short stretches of
// edge pixels, so pixels are compared 32 at a time and the palette is consulted only where the
// value changes.
#include "platform/png_index_rows.h"

#include "platform/png_adler32.h"

#include <cstddef>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define TESSALINE_AVX2_INDEXING 1
#endif

namespace tessaline::detail {
namespace {

#if defined(__SSE2__)
// Palette indices for the 32 pixels from `rgba` on, the block the index building handles at once.
// Which pixels differ from the one before them (the first from `previous`) is found for all 32 in
// a few vector instructions; each such change then looks its value up and blends its index into
// the block from there on. Branches on the data are few: one test of the whole block, which in
// icons mostly holds one value, and the loop over its changes.
class IndexBlock {
 public:
  static constexpr std::size_t kPixels = 32;

  // False once the image turns out to hold more than kPaletteSize colours.
  template <class Change>
  bool build(const std::uint8_t* rgba, std::uint32_t& previous, std::uint8_t& previousIndex,
             Change change) {
    const __m128i before = _mm_set1_epi32(static_cast<int>(previous));
    constexpr std::size_t kQuads = kPixels / 4;
    __m128i quads[kQuads];
    __m128i same = _mm_set1_epi32(-1);
    for (std::size_t q = 0; q < kQuads; ++q) {
      quads[q] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rgba + 16 * q));
      same = _mm_and_si128(same, _mm_cmpeq_epi32(quads[q], before));
    }
    low_ = high_ = _mm_set1_epi8(static_cast<char>(previousIndex));
    uniform_ = _mm_movemask_epi8(same) == 0xFFFF;
    if (uniform_) return true;

    std::uint32_t unchanged = 0;
    __m128i carried = _mm_srli_si128(before, 12);  // the pixel before, in the lowest lane
    for (std::size_t q = 0; q < kQuads; ++q) {
      const __m128i shifted = _mm_or_si128(_mm_slli_si128(quads[q], 4), carried);
      const int equal = _mm_movemask_ps(_mm_castsi128_ps(_mm_cmpeq_epi32(quads[q], shifted)));
      unchanged |= static_cast<std::uint32_t>(equal) << (4 * q);
      carried = _mm_srli_si128(quads[q], 12);
    }
    const __m128i lowOffsets = _mm_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    const __m128i highOffsets =
        _mm_setr_epi8(16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31);
    for (std::uint32_t changes = ~unchanged; changes != 0; changes &= changes - 1) {
      const int at = __builtin_ctz(changes);
      if (!change(loadPixel(rgba + 4 * at))) return false;
      const __m128i from = _mm_set1_epi8(static_cast<char>(at - 1));
      const __m128i index = _mm_set1_epi8(static_cast<char>(previousIndex));
      const __m128i lowMask = _mm_cmpgt_epi8(lowOffsets, from);
      const __m128i highMask = _mm_cmpgt_epi8(highOffsets, from);
      low_ = _mm_or_si128(_mm_andnot_si128(lowMask, low_), _mm_and_si128(lowMask, index));
      high_ = _mm_or_si128(_mm_andnot_si128(highMask, high_), _mm_and_si128(highMask, index));
    }
    return true;
  }

  void store(std::uint8_t* indices) const {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(indices), low_);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(indices + 16), high_);
  }

  void addTo(Adler32& adler) const {
    if (uniform_) {
      adler.addRun(static_cast<std::uint8_t>(_mm_cvtsi128_si32(low_)), kPixels);
    } else {
      adler.addBlock(low_, high_);
    }
  }

 private:
  __m128i low_;
  __m128i high_;
  bool uniform_ = false;
};
#endif

#if defined(TESSALINE_AVX2_INDEXING)
#define TESSALINE_AVX2 __attribute__((target("avx2")))
// IndexBlock in 256-bit registers: the same steps in half the instructions. Used only by
// indexRowsAvx2, which runs where the processor has AVX2.
class IndexBlockAvx2 {
 public:
  static constexpr std::size_t kPixels = 32;

  template <class Change>
  TESSALINE_AVX2 inline bool build(const std::uint8_t* rgba, std::uint32_t& previous,
                                   std::uint8_t& previousIndex, Change change) {
    const __m256i before = _mm256_set1_epi32(static_cast<int>(previous));
    constexpr std::size_t kEights = kPixels / 8;
    __m256i eights[kEights];
    __m256i same = _mm256_set1_epi32(-1);
    for (std::size_t e = 0; e < kEights; ++e) {
      eights[e] = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rgba + 32 * e));
      same = _mm256_and_si256(same, _mm256_cmpeq_epi32(eights[e], before));
    }
    indices_ = _mm256_set1_epi8(static_cast<char>(previousIndex));
    uniform_ = _mm256_movemask_epi8(same) == -1;
    if (uniform_) return true;

    // Each pixel beside the one before it: lanes rotated up by one, the lowest lane taking the
    // last pixel of the previous eight (or `previous`).
    const __m256i rotate = _mm256_setr_epi32(7, 0, 1, 2, 3, 4, 5, 6);
    std::uint32_t unchanged = 0;
    __m256i carried = before;
    for (std::size_t e = 0; e < kEights; ++e) {
      const __m256i rotated = _mm256_permutevar8x32_epi32(eights[e], rotate);
      const __m256i last = _mm256_permutevar8x32_epi32(carried, _mm256_set1_epi32(7));
      const __m256i shifted = _mm256_blend_epi32(rotated, last, 0x01);
      const int equal =
          _mm256_movemask_ps(_mm256_castsi256_ps(_mm256_cmpeq_epi32(eights[e], shifted)));
      unchanged |= static_cast<std::uint32_t>(equal) << (8 * e);
      carried = eights[e];
    }
    const __m256i offsets =
        _mm256_setr_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20,
                         21, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31);
    for (std::uint32_t changes = ~unchanged; changes != 0; changes &= changes - 1) {
      const int at = __builtin_ctz(changes);
      if (!change(loadPixel(rgba + 4 * at))) return false;
      const __m256i from = _mm256_cmpgt_epi8(offsets, _mm256_set1_epi8(static_cast<char>(at - 1)));
      indices_ =
          _mm256_blendv_epi8(indices_, _mm256_set1_epi8(static_cast<char>(previousIndex)), from);
    }
    return true;
  }

  TESSALINE_AVX2 inline void store(std::uint8_t* indices) const {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(indices), indices_);
  }

  TESSALINE_AVX2 inline void addTo(Adler32& adler) const {
    const __m128i low = _mm256_castsi256_si128(indices_);
    if (uniform_) {
      adler.addRun(static_cast<std::uint8_t>(_mm_cvtsi128_si32(low)), kPixels);
    } else {
      adler.addBlock(low, _mm256_extracti128_si256(indices_, 1));
    }
  }

 private:
  __m256i indices_;
  bool uniform_ = false;
};
#endif

#if !defined(__SSE2__)
// No blocks at all: every pixel goes through the scalar loop.
struct NoBlock {
  static constexpr std::size_t kPixels = 0;
};
#endif

// The row loop, for blocks of `Block` and the pixels after the last whole block. The running
// value and its index live in locals: kept in members they would be reloaded after every byte
// written, as the index bytes may alias anything.
template <class Block>
bool indexRowsWith(const Image& image, ColourTable& table, std::uint8_t* out,
                   std::uint32_t& checksum) {
  const auto width = static_cast<std::size_t>(image.width());
  const auto height = static_cast<std::size_t>(image.height());
  const std::uint8_t* rgba = image.bytes().data();
  std::uint32_t previous = loadPixel(rgba);
  auto previousIndex = static_cast<std::uint8_t>(table.indexOf(previous));  // 0: table was empty
  Adler32 adler;  // a local for the same reason
  const auto change = [&](std::uint32_t value) {
    const int index = table.indexOf(value);
    previous = value;
    previousIndex = static_cast<std::uint8_t>(index);
    return index >= 0;
  };
  for (std::size_t y = 0; y < height; ++y, rgba += 4 * width, out += width + 1) {
    out[0] = 0;
    adler.add(0);
    std::uint8_t* indices = out + 1;
    std::size_t x = 0;
    if constexpr (Block::kPixels > 0) {
      for (Block block; x + Block::kPixels <= width; x += Block::kPixels) {
        if (!block.build(rgba + 4 * x, previous, previousIndex, change)) return false;
        block.store(indices + x);
        block.addTo(adler);
        previous = loadPixel(rgba + 4 * (x + Block::kPixels - 1));
      }
    }
    for (; x < width; ++x) {
      const std::uint32_t value = loadPixel(rgba + 4 * x);
      if (value != previous && !change(value)) return false;
      indices[x] = previousIndex;
      adler.add(previousIndex);
    }
    adler.reduce();
  }
  checksum = adler.value();
  return true;
}

#if defined(TESSALINE_AVX2_INDEXING)
// Flattened: the row loop and the block's steps are compiled into this function, for AVX2.
__attribute__((target("avx2"), flatten)) bool indexRowsAvx2(const Image& image, ColourTable& table,
                                                            std::uint8_t* out,
                                                            std::uint32_t& checksum) {
  return indexRowsWith<IndexBlockAvx2>(image, table, out, checksum);
}
#endif

}  // namespace

bool indexRows(const Image& image, ColourTable& table, std::uint8_t* out, std::uint32_t& checksum) {
#if defined(TESSALINE_AVX2_INDEXING)
  if (__builtin_cpu_supports("avx2")) return indexRowsAvx2(image, table, out, checksum);
#endif
  return indexRowsWithoutAvx2(image, table, out, checksum);
}

bool indexRowsWithoutAvx2(const Image& image, ColourTable& table, std::uint8_t* out,
                          std::uint32_t& checksum) {
#if defined(__SSE2__)
  return indexRowsWith<IndexBlock>(image, table, out, checksum);
#else
  return indexRowsWith<NoBlock>(image, table, out, checksum);
#endif
}

}  // namespace tessaline::detail
