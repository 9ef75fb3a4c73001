// The index rows of a one-ink image: an icon drawn in one colour is that colour at many alphas on a
// transparent ground, so a pixel's alpha can serve as its palette index. The rows then come from a
// fixed byte shuffle and a check that every pixel is of that kind, with no branch on the data and
// no palette lookup: the general index building (png_index_rows.cpp) spends most of its time on
// mispredicted branches where the pixel value changes, which at anti-aliased edges is every pixel.
#include <bit>
#include <cstddef>

#include "platform/png_adler32.h"
#include "platform/png_index_rows.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define TESSALINE_AVX2_INK_ROWS 1
#endif

namespace tessaline::detail {
namespace {

constexpr std::uint32_t kRgbMask = 0x00FFFFFF;
// No 24-bit RGB value equals this, so until the ink is known only transparent black fits.
constexpr std::uint32_t kNoInk = 0xFFFFFFFF;

// Whether a pixel is transparent black or the ink at a non-zero alpha.
bool fitsInk(std::uint32_t pixel, std::uint32_t ink) {
  return pixel == 0 || ((pixel & kRgbMask) == ink && pixel >> 24 != 0);
}

// The pixels of the row after the last whole block, one at a time.
struct Tail {
  bool fits = true;
  std::uint8_t highest = 0;

  void build(const std::uint8_t* rgba, std::size_t count, std::uint32_t ink, std::uint8_t* indices,
             Adler32& adler) {
    for (std::size_t x = 0; x < count; ++x) {
      const std::uint32_t pixel = loadPixel(rgba + 4 * x);
      fits = fits && fitsInk(pixel, ink);
      const auto alpha = static_cast<std::uint8_t>(pixel >> 24);
      indices[x] = alpha;
      adler.add(alpha);
      highest = alpha > highest ? alpha : highest;
    }
  }
};

#if defined(__SSE2__)
// The largest of the sixteen bytes of `bytes`.
inline std::uint8_t largestByte(__m128i bytes) {
  bytes = _mm_max_epu8(bytes, _mm_srli_si128(bytes, 8));
  bytes = _mm_max_epu8(bytes, _mm_srli_si128(bytes, 4));
  bytes = _mm_max_epu8(bytes, _mm_srli_si128(bytes, 2));
  bytes = _mm_max_epu8(bytes, _mm_srli_si128(bytes, 1));
  return static_cast<std::uint8_t>(_mm_cvtsi128_si32(bytes));
}

// 32 pixels at a time in 128-bit registers. A pixel fits when its RGB equals the ink where its
// alpha is non-zero and 0 where it is zero; misfits are gathered in a register and looked at once
// per row.
class InkBlock {
 public:
  static constexpr std::size_t kPixels = 32;

  // The ink the row's pixels are held to; clears the verdict of the row before.
  void startRow(std::uint32_t ink) {
    ink_ = _mm_set1_epi32(static_cast<int>(ink));
    misfit_ = _mm_setzero_si128();
  }

  void build(const std::uint8_t* rgba, std::uint8_t* indices, Adler32& adler) {
    const __m128i zero = _mm_setzero_si128();
    const __m128i rgbMask = _mm_set1_epi32(static_cast<int>(kRgbMask));
    __m128i alpha[8];
    for (int q = 0; q < 8; ++q) {
      const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(rgba + 16 * q));
      alpha[q] = _mm_srli_epi32(pixels, 24);
      const __m128i expected = _mm_andnot_si128(_mm_cmpeq_epi32(alpha[q], zero), ink_);
      misfit_ = _mm_or_si128(misfit_, _mm_xor_si128(_mm_and_si128(pixels, rgbMask), expected));
    }
    // Alphas are at most 255, so the signed 32-to-16-bit pack cannot saturate.
    const __m128i low =
        _mm_packus_epi16(_mm_packs_epi32(alpha[0], alpha[1]), _mm_packs_epi32(alpha[2], alpha[3]));
    const __m128i high =
        _mm_packus_epi16(_mm_packs_epi32(alpha[4], alpha[5]), _mm_packs_epi32(alpha[6], alpha[7]));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(indices), low);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(indices + 16), high);
    highest_ = _mm_max_epu8(highest_, _mm_max_epu8(low, high));
    adler.addBlock(low, high);
  }

  bool fits() const {
    return _mm_movemask_epi8(_mm_cmpeq_epi8(misfit_, _mm_setzero_si128())) == 0xFFFF;
  }

  std::uint8_t highest() const { return largestByte(highest_); }

 private:
  __m128i ink_ = _mm_setzero_si128();
  __m128i misfit_ = _mm_setzero_si128();
  __m128i highest_ = _mm_setzero_si128();
};
#endif

#if defined(TESSALINE_AVX2_INK_ROWS)
#define TESSALINE_AVX2 __attribute__((target("avx2")))
// InkBlock in 256-bit registers. Used only by inkIndexRowsAvx2, which runs where the processor has
// AVX2.
class InkBlockAvx2 {
 public:
  static constexpr std::size_t kPixels = 32;

  TESSALINE_AVX2 InkBlockAvx2()
      : ink_(_mm256_setzero_si256()),
        misfit_(_mm256_setzero_si256()),
        highest_(_mm256_setzero_si256()) {}

  TESSALINE_AVX2 inline void startRow(std::uint32_t ink) {
    ink_ = _mm256_set1_epi32(static_cast<int>(ink));
    misfit_ = _mm256_setzero_si256();
  }

  TESSALINE_AVX2 inline void build(const std::uint8_t* rgba, std::uint8_t* indices,
                                   Adler32& adler) {
    const __m256i zero = _mm256_setzero_si256();
    const __m256i rgbMask = _mm256_set1_epi32(static_cast<int>(kRgbMask));
    __m256i alpha[4];
    for (int e = 0; e < 4; ++e) {
      const __m256i pixels = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rgba + 32 * e));
      alpha[e] = _mm256_srli_epi32(pixels, 24);
      const __m256i expected = _mm256_andnot_si256(_mm256_cmpeq_epi32(alpha[e], zero), ink_);
      misfit_ =
          _mm256_or_si256(misfit_, _mm256_xor_si256(_mm256_and_si256(pixels, rgbMask), expected));
    }
    // The packs work within 128-bit lanes, which leaves the four-pixel groups interleaved; the
    // permutation puts them back in order.
    const __m256i packed = _mm256_packus_epi16(_mm256_packs_epi32(alpha[0], alpha[1]),
                                               _mm256_packs_epi32(alpha[2], alpha[3]));
    const __m256i bytes =
        _mm256_permutevar8x32_epi32(packed, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(indices), bytes);
    highest_ = _mm256_max_epu8(highest_, bytes);
    adler.addBlock(_mm256_castsi256_si128(bytes), _mm256_extracti128_si256(bytes, 1));
  }

  TESSALINE_AVX2 inline bool fits() const { return _mm256_testz_si256(misfit_, misfit_) != 0; }

  TESSALINE_AVX2 inline std::uint8_t highest() const {
    return largestByte(
        _mm_max_epu8(_mm256_castsi256_si128(highest_), _mm256_extracti128_si256(highest_, 1)));
  }

 private:
  __m256i ink_;
  __m256i misfit_;
  __m256i highest_;
};
#endif

#if !defined(__SSE2__)
// No blocks at all: every pixel goes through the tail.
struct NoInkBlock {
  static constexpr std::size_t kPixels = 0;
  void startRow(std::uint32_t) {}
  void build(const std::uint8_t*, std::uint8_t*, Adler32&) {}
  bool fits() const { return true; }
  std::uint8_t highest() const { return 0; }
};
#endif

// One row's indices after its filter-type byte; whether every pixel of it fits the ink.
template <class Block>
bool inkRow(Block& block, const std::uint8_t* rgba, std::size_t width, std::uint32_t ink,
            std::uint8_t* out, Adler32& adler, Tail& tail) {
  out[0] = 0;
  adler.add(0);
  std::uint8_t* indices = out + 1;
  block.startRow(ink);
  std::size_t x = 0;
  if constexpr (Block::kPixels > 0) {
    for (; x + Block::kPixels <= width; x += Block::kPixels) {
      block.build(rgba + 4 * x, indices + x, adler);
    }
  }
  tail.fits = true;
  tail.build(rgba + 4 * x, width - x, ink, indices + x, adler);
  return block.fits() && tail.fits;
}

template <class Block>
bool inkIndexRowsWith(const Image& image, Palette& palette, std::uint8_t* out,
                      std::uint32_t& checksum) {
  if constexpr (std::endian::native != std::endian::little) return false;  // alpha is the top byte
  const auto width = static_cast<std::size_t>(image.width());
  const auto height = static_cast<std::size_t>(image.height());
  const std::uint8_t* rgba = image.bytes().data();
  std::uint32_t ink = kNoInk;
  Block block;
  Tail tail;
  Adler32 adler;
  for (std::size_t y = 0; y < height; ++y, rgba += 4 * width, out += width + 1) {
    const Adler32 beforeRow = adler;
    bool fits = inkRow(block, rgba, width, ink, out, adler, tail);
    if (!fits && ink == kNoInk) {
      // The row holds the first pixel that is not transparent black: it sets the ink, and the row
      // is built again with it.
      std::size_t x = 0;
      while (loadPixel(rgba + 4 * x) == 0) ++x;
      ink = loadPixel(rgba + 4 * x) & kRgbMask;
      adler = beforeRow;
      fits = inkRow(block, rgba, width, ink, out, adler, tail);
    }
    if (!fits) return false;
    adler.reduce();
  }
  checksum = adler.value();
  const std::uint8_t highest = block.highest() > tail.highest ? block.highest() : tail.highest;
  palette.count = highest + 1;
  palette.colours[0] = 0;
  for (std::uint32_t alpha = 1; alpha <= highest; ++alpha) {
    palette.colours[alpha] = ink | alpha << 24;
  }
  return true;
}

#if defined(TESSALINE_AVX2_INK_ROWS)
// Flattened: the row loop and the block's steps are compiled into this function, for AVX2.
__attribute__((target("avx2"), flatten)) bool inkIndexRowsAvx2(const Image& image, Palette& palette,
                                                               std::uint8_t* out,
                                                               std::uint32_t& checksum) {
  return inkIndexRowsWith<InkBlockAvx2>(image, palette, out, checksum);
}
#endif

}  // namespace

bool inkIndexRows(const Image& image, Palette& palette, std::uint8_t* out,
                  std::uint32_t& checksum) {
#if defined(TESSALINE_AVX2_INK_ROWS)
  if (__builtin_cpu_supports("avx2")) return inkIndexRowsAvx2(image, palette, out, checksum);
#endif
  return inkIndexRowsWithoutAvx2(image, palette, out, checksum);
}

bool inkIndexRowsWithoutAvx2(const Image& image, Palette& palette, std::uint8_t* out,
                             std::uint32_t& checksum) {
#if defined(__SSE2__)
  return inkIndexRowsWith<InkBlock>(image, palette, out, checksum);
#else
  return inkIndexRowsWith<NoInkBlock>(image, palette, out, checksum);
#endif
}

}  // namespace tessaline::detail
