// PNG output of an Image through libpng, tuned so that writing an icon costs about as little as
// drawing it. Most of the cost is zlib going over the pixel bytes, so the first saving is fewer
// bytes: an icon is one or a few colours and their anti-aliased edges, rarely more than 256
// distinct RGBA values, and is then written as an indexed image (one byte per pixel, alpha in
// the palette's transparency table) that decodes to exactly the same straight-alpha pixels.
// Images with more colours are written as 8-bit RGBA. Rows are not filtered (flat runs already
// repeat as they are) and zlib works at level 1; indexed rows, whose runs are runs of one byte,
// go through its run-length strategy, which is faster still and compresses them better.
#include <png.h>
#include <zlib.h>

#include <array>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "tessaline/image.h"

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define TESSALINE_AVX2_RUNS 1
#endif

namespace tessaline {
namespace {

constexpr int kCompressionLevel = 1;
constexpr int kPaletteSize = 256;

bool encodable(const Image& image) {
  return image.width() > 0 && image.height() > 0 &&
         image.bytes().size() ==
             static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()) * 4;
}

#if defined(TESSALINE_AVX2_RUNS)
// How many whole groups of eight pixels from `rgba` on, up to `limit` pixels, all hold `value`,
// counted in pixels. Built for AVX2 alone and called only where the processor has it.
__attribute__((target("avx2"))) std::size_t runOfEightsAvx2(const std::uint8_t* rgba,
                                                            std::size_t limit,
                                                            std::uint32_t value) {
  const __m256i wanted = _mm256_set1_epi32(static_cast<int>(value));
  std::size_t n = 0;
  for (; n + 8 <= limit; n += 8) {
    const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rgba + 4 * n));
    if (_mm256_movemask_epi8(_mm256_cmpeq_epi32(v, wanted)) != -1) break;
  }
  return n;
}
#endif

// How many pixels from `rgba` on, up to `limit`, hold `value`.
std::size_t runLength(const std::uint8_t* rgba, std::size_t limit, std::uint32_t value, bool avx2) {
  std::size_t n = 0;
#if defined(TESSALINE_AVX2_RUNS)
  if (avx2) n = runOfEightsAvx2(rgba, limit, value);
#else
  (void)avx2;
#endif
  for (; n < limit; ++n) {
    std::uint32_t next;
    std::memcpy(&next, rgba + 4 * n, sizeof next);
    if (next != value) break;
  }
  return n;
}

// The distinct RGBA values of an image in order of first appearance, and each pixel's index.
struct Palette {
  std::array<std::uint32_t, kPaletteSize> colors{};  // R G B A bytes as they lie in memory
  int count = 0;
  std::unique_ptr<std::uint8_t[]> indices;  // every entry is written, so never cleared first
};

// False when the image has more than kPaletteSize colours. An open-addressed table four times
// the palette's size keeps probing short; runs of one value, the common case, skip it entirely.
bool buildPalette(const Image& image, Palette& palette) {
  constexpr std::uint32_t kSlots = 4 * kPaletteSize;
  std::array<std::uint32_t, kSlots> keys{};
  std::array<std::uint8_t, kSlots> slotIndex{};
  std::array<bool, kSlots> used{};
  const std::size_t pixels =
      static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height());
  palette.indices = std::make_unique_for_overwrite<std::uint8_t[]>(pixels);
  const std::uint8_t* rgba = image.bytes().data();
#if defined(TESSALINE_AVX2_RUNS)
  const bool avx2 = __builtin_cpu_supports("avx2");
#else
  const bool avx2 = false;
#endif
  // Icons are runs of one value, so each value is looked up once per run.
  for (std::size_t i = 0; i < pixels;) {
    std::uint32_t value;
    std::memcpy(&value, rgba + 4 * i, sizeof value);
    std::uint32_t slot = (value * 2654435761u) >> 22;  // top 10 bits: kSlots = 1024
    while (used[slot] && keys[slot] != value) slot = (slot + 1) % kSlots;
    if (!used[slot]) {
      if (palette.count == kPaletteSize) return false;
      used[slot] = true;
      keys[slot] = value;
      slotIndex[slot] = static_cast<std::uint8_t>(palette.count);
      palette.colors[static_cast<std::size_t>(palette.count++)] = value;
    }
    const std::size_t run = 1 + runLength(rgba + 4 * (i + 1), pixels - i - 1, value, avx2);
    std::memset(palette.indices.get() + i, slotIndex[slot], run);
    i += run;
  }
  return true;
}

void appendBytes(png_structp png, png_bytep data, png_size_t length) {
  auto* out = static_cast<std::vector<std::uint8_t>*>(png_get_io_ptr(png));
  try {
    out->insert(out->end(), data, data + length);
  } catch (const std::bad_alloc&) {
    png_error(png, "out of memory");
  }
}

void flushNothing(png_structp) {}

// Everything libpng may jump out of lives in this function, which holds no object with a
// destructor: a longjmp past one would skip it. `palette` is null for an RGBA image.
bool writeRows(png_structp png, png_infop info, const Image& image, const Palette* palette,
               std::vector<std::uint8_t>* out) {
  if (setjmp(png_jmpbuf(png))) return false;
  png_set_write_fn(png, out, appendBytes, flushNothing);
  const auto width = static_cast<png_uint_32>(image.width());
  const auto height = static_cast<png_uint_32>(image.height());
  png_set_IHDR(png, info, width, height, 8,
               palette != nullptr ? PNG_COLOR_TYPE_PALETTE : PNG_COLOR_TYPE_RGB_ALPHA,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (palette != nullptr) {
    png_color colors[kPaletteSize];
    png_byte alphas[kPaletteSize];
    for (int i = 0; i < palette->count; ++i) {
      std::uint8_t bytes[4];
      std::memcpy(bytes, &palette->colors[static_cast<std::size_t>(i)], sizeof bytes);
      colors[i] = {bytes[0], bytes[1], bytes[2]};
      alphas[i] = bytes[3];
    }
    png_set_PLTE(png, info, colors, palette->count);
    png_set_tRNS(png, info, alphas, palette->count, nullptr);
    png_set_compression_strategy(png, Z_RLE);
    // Every index comes from the palette just built; libpng's scan of each row for indices past
    // its end would only cost time.
    png_set_check_for_invalid_index(png, 0);
  }
  png_set_compression_level(png, kCompressionLevel);
  png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_NONE);
  png_write_info(png, info);
  const std::uint8_t* row = palette != nullptr ? palette->indices.get() : image.bytes().data();
  const std::size_t stride = static_cast<std::size_t>(width) * (palette != nullptr ? 1 : 4);
  for (png_uint_32 y = 0; y < height; ++y, row += stride) {
    // libpng reads the row and never writes through this pointer.
    png_write_row(png, const_cast<png_bytep>(row));
  }
  png_write_end(png, info);
  return true;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> Image::encodePng() const {
  if (!encodable(*this)) return std::nullopt;
  Palette palette;
  const bool indexed = buildPalette(*this, palette);
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  if (png == nullptr) return std::nullopt;
  png_infop info = png_create_info_struct(png);
  std::vector<std::uint8_t> out;
  // Icons compress to a few kilobytes; start there so most files take one allocation.
  out.reserve(8192);
  const bool written =
      info != nullptr && writeRows(png, info, *this, indexed ? &palette : nullptr, &out);
  png_destroy_write_struct(&png, &info);
  if (!written) return std::nullopt;
  return out;
}

bool Image::writePng(const std::string& filePath) const {
  const std::optional<std::vector<std::uint8_t>> png = encodePng();
  if (!png) return false;
  std::FILE* file = std::fopen(filePath.c_str(), "wb");
  if (file == nullptr) return false;
  const bool written = std::fwrite(png->data(), 1, png->size(), file) == png->size();
  return std::fclose(file) == 0 && written;
}

}  // namespace tessaline
