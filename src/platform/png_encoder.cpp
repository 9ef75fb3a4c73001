// PNG output of an Image, written here chunk by chunk and compressed with ISA-L, so that writing an
// icon costs little next to drawing it. Most of the cost is deflate going over the pixel bytes,
// so the first saving is fewer bytes: an icon is one or a few colours and their anti-aliased
// edges, rarely more than 256 distinct RGBA values, and is then written as an indexed image (one
// byte per pixel, alpha in the palette's transparency table) that decodes to exactly the same
// straight-alpha pixels. Images with more colours are written as 8-bit RGBA. Rows are not
// filtered: flat runs already repeat as they are.
//
// An icon of one colour takes its alpha as palette index, which the index rows get without any
// lookup: 7-9 us less per icon (30 instead of 37-39 us over all bootstrap, tabler and fontawesome
// icons, each encoded right after it was drawn). Its palette then holds every alpha up to the
// highest instead of only those used, about 400 bytes more per icon (4.9 instead of 4.4-4.6 KB).
//
// ISA-L's deflate is several times faster than zlib's on this data; libdeflate's low levels were
// slower than zlib here. Deflating the index rows of the 2078 bootstrap icons, in cache, one core,
// each icon's rows deflated repeatedly (a first pass over rows not seen before takes longer, level
// 0 about 19 us, as the branch predictors have not learnt them):
//   zlib level 1, run-length strategy   88 us, 2593 B per icon (the former libpng path)
//   ISA-L level 1 (dynamic Huffman)     24 us, 2970 B
//   ISA-L level 0 (fixed tables)        15 us, 3760 B (largest icon 11.8 KB)
// Level 0 keeps an icon at a few kilobytes for two thirds of level 1's time and needs no level
// buffer, so that is the level used. Huffman tables built per image from its own histogram bring
// level 0 down to about 3 KB, but building them costs more than level 1 does. ISA-L writes raw
// deflate data: the stream's Adler-32 is summed while the index rows are built, which saves
// ISA-L's own pass over them (a sixth of the encoding time).
#include <isa-l/crc.h>
#include <isa-l/igzip_lib.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "platform/png_index_rows.h"
#include "tessaline/image.h"

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
#include <immintrin.h>
#define TESSALINE_CLEAR_UPPER_VECTORS 1
#endif

namespace tessaline {
namespace {

using detail::ColourTable;
using detail::indexRows;
using detail::inkIndexRows;
using detail::Palette;

constexpr int kDeflateLevel = 0;
constexpr std::size_t kLevelBufferSize = ISAL_DEF_LVL0_DEFAULT;  // none at level 0
// A chunk's length field holds at most 2^31 - 1.
constexpr std::size_t kMaxChunkLength = 0x7FFFFFFF;
constexpr std::size_t kChunkOverhead = 12;  // length, type and CRC around a chunk's data
constexpr std::uint8_t kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

bool encodable(const Image& image) {
  return image.width() > 0 && image.height() > 0 &&
         image.bytes().size() ==
             static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()) * 4;
}

// The image's rows, each after its filter-type byte (0, none): palette indices when the palette can
// hold every colour, RGBA otherwise.
struct FilteredRows {
  std::unique_ptr<std::uint8_t[]> bytes;
  std::size_t size = 0;
  bool indexed = false;
  Palette palette;          // when indexed
  std::uint32_t adler = 1;  // Adler-32 of the bytes
};

// Icons of one colour, nearly all of them, take the fast one-ink path; an image that turns out to
// be anything else is gone over again by the general index building, and the time spent on the
// first attempt is lost (at most what the one-ink path costs, a fraction of the encoding).
bool indexedRows(const Image& image, FilteredRows& rows) {
  if (inkIndexRows(image, rows.palette, rows.bytes.get(), rows.adler)) return true;
  ColourTable table;
  if (!indexRows(image, table, rows.bytes.get(), rows.adler)) return false;
  rows.palette = table.palette();
  return true;
}

FilteredRows filteredRows(const Image& image) {
  const auto width = static_cast<std::size_t>(image.width());
  const auto height = static_cast<std::size_t>(image.height());
  const std::uint8_t* rgba = image.bytes().data();
  FilteredRows rows;
  rows.size = height * (width + 1);
  rows.bytes = std::make_unique_for_overwrite<std::uint8_t[]>(rows.size);
  rows.indexed = indexedRows(image, rows);
  if (rows.indexed) return rows;
  rows.size = height * (4 * width + 1);
  rows.bytes = std::make_unique_for_overwrite<std::uint8_t[]>(rows.size);
  for (std::size_t y = 0; y < height; ++y) {
    std::uint8_t* row = rows.bytes.get() + y * (4 * width + 1);
    row[0] = 0;
    std::memcpy(row + 1, rgba + y * width * 4, width * 4);
  }
  rows.adler = isal_adler32(1, rows.bytes.get(), rows.size);
  return rows;
}

// The longest a zlib stream of `size` bytes can get: stored blocks of at most 65535 bytes, five
// bytes of header each, the two-byte zlib header and its four-byte checksum. When the compressed
// data would be longer, ISA-L writes stored blocks instead, so this much room always suffices.
std::size_t zlibBound(std::size_t size) {
  return size + 5 * (size / 65535 + 1) + 2 + 4;
}

void putBigEndian(std::uint8_t* at, std::uint32_t value) {
  at[0] = static_cast<std::uint8_t>(value >> 24);
  at[1] = static_cast<std::uint8_t>(value >> 16);
  at[2] = static_cast<std::uint8_t>(value >> 8);
  at[3] = static_cast<std::uint8_t>(value);
}

// Writes a chunk at `at`: its length, its type, the `length` data bytes that `fill` puts in place
// after them, and the CRC of type and data. Returns where the next chunk begins.
template <class Fill>
std::uint8_t* putChunk(std::uint8_t* at, const char (&type)[5], std::size_t length, Fill fill) {
  putBigEndian(at, static_cast<std::uint32_t>(length));
  std::memcpy(at + 4, type, 4);
  fill(at + 8);
  putBigEndian(at + 8 + length, crc32_gzip_refl(0, at + 4, 4 + length));
  return at + kChunkOverhead + length;
}

// Deflates `rows` into a zlib stream at `out`, which has room for `capacity` bytes. Returns the
// length written, or nothing when it does not fit. ISA-L writes the raw deflate data; the zlib
// header and the checksum summed with the rows are put around it here.
std::optional<std::size_t> compress(const FilteredRows& rows, std::uint8_t* out,
                                    std::size_t capacity, isal_zstream& stream,
                                    std::uint8_t* levelBuffer) {
  constexpr std::size_t kHeader = 2, kTrailer = 4;
  if (capacity < kHeader + kTrailer) return std::nullopt;
  // Deflate with a 32 KiB window, no preset dictionary, the fastest level (FCHECK makes the pair
  // a multiple of 31).
  out[0] = 0x78;
  out[1] = 0x01;
  isal_deflate_stateless_init(&stream);
  stream.level = kDeflateLevel;
  stream.level_buf = levelBuffer;
  stream.level_buf_size = static_cast<std::uint32_t>(kLevelBufferSize);
  stream.gzip_flag = IGZIP_DEFLATE;
  stream.hist_bits = 0;  // the full window; the stateless init leaves this field unset
  stream.end_of_stream = 1;
  stream.flush = NO_FLUSH;
  // ISA-L's input pointer is not const, but it only reads through it.
  stream.next_in = const_cast<std::uint8_t*>(rows.bytes.get());
  stream.avail_in = static_cast<std::uint32_t>(rows.size);
  stream.next_out = out + kHeader;
  stream.avail_out = static_cast<std::uint32_t>(capacity - kHeader - kTrailer);
  if (isal_deflate_stateless(&stream) != COMP_OK) return std::nullopt;
  putBigEndian(out + kHeader + stream.total_out, rows.adler);
  return kHeader + stream.total_out + kTrailer;
}

std::optional<std::vector<std::uint8_t>> encode(const Image& image) {
  const FilteredRows rows = filteredRows(image);
  // One IDAT chunk holds the whole stream, and ISA-L counts its input in 32 bits.
  if (zlibBound(rows.size) > kMaxChunkLength) return std::nullopt;

  const Palette& palette = rows.palette;
  const auto colours = static_cast<std::size_t>(rows.indexed ? palette.count : 0);
  const std::size_t before = sizeof kSignature + kChunkOverhead + 13 +
                             (rows.indexed ? 2 * kChunkOverhead + 4 * colours : 0) + 8;
  const std::size_t after = 4 + kChunkOverhead;  // the IDAT CRC and IEND

  // Icons compress to a few kilobytes (under 12 KB for every bootstrap icon): a quarter of the
  // row bytes is room enough for them, and anything that does not fit is deflated again with
  // room for the worst case.
  std::size_t capacity = rows.size / 4 + 1024;
  std::unique_ptr<std::uint8_t[]> png;
  const auto stream = std::make_unique_for_overwrite<isal_zstream>();
  std::unique_ptr<std::uint8_t[]> levelBuffer;
  if constexpr (kLevelBufferSize > 0) {
    levelBuffer = std::make_unique_for_overwrite<std::uint8_t[]>(kLevelBufferSize);
  }
  std::optional<std::size_t> compressed;
  for (int attempt = 0; attempt < 2 && !compressed; ++attempt) {
    if (attempt == 1) capacity = zlibBound(rows.size);
    png = std::make_unique_for_overwrite<std::uint8_t[]>(before + capacity + after);
    compressed = compress(rows, png.get() + before, capacity, *stream, levelBuffer.get());
  }
  if (!compressed) return std::nullopt;

  std::uint8_t* at = png.get();
  std::memcpy(at, kSignature, sizeof kSignature);
  at = putChunk(at + sizeof kSignature, "IHDR", 13, [&](std::uint8_t* data) {
    putBigEndian(data, static_cast<std::uint32_t>(image.width()));
    putBigEndian(data + 4, static_cast<std::uint32_t>(image.height()));
    data[8] = 8;                         // bits per sample or index
    data[9] = rows.indexed ? 3 : 6;      // palette, or RGB with alpha
    data[10] = data[11] = data[12] = 0;  // deflate, adaptive filtering, not interlaced
  });
  if (rows.indexed) {
    at = putChunk(at, "PLTE", 3 * colours, [&](std::uint8_t* data) {
      for (int i = 0; i < palette.count; ++i, data += 3) {
        std::memcpy(data, palette.colour(i).data(), 3);
      }
    });
    at = putChunk(at, "tRNS", colours, [&](std::uint8_t* data) {
      for (int i = 0; i < palette.count; ++i) *data++ = palette.colour(i)[3];
    });
  }
  at = putChunk(at, "IDAT", *compressed, [](std::uint8_t*) {});  // deflated in place already
  at = putChunk(at, "IEND", 0, [](std::uint8_t*) {});
  return std::vector<std::uint8_t>(png.get(), at);
}

#if defined(TESSALINE_CLEAR_UPPER_VECTORS)
__attribute__((target("avx"))) void clearUpperVectorHalves() {
  _mm256_zeroupper();
}
#endif

// ISA-L's AVX code returns with the upper halves of the vector registers still in use. Until they
// are cleared, SSE code that is not AVX-encoded runs at about half speed: the index building
// above took 24 us instead of 11 us per icon, and zlib called after it 158 us instead of 88 us.
// The caller's code would pay the same, so they are cleared once, after the last ISA-L call.
struct UpperVectorHalvesCleared {
  UpperVectorHalvesCleared() = default;
  UpperVectorHalvesCleared(const UpperVectorHalvesCleared&) = delete;
  UpperVectorHalvesCleared& operator=(const UpperVectorHalvesCleared&) = delete;
  ~UpperVectorHalvesCleared() {
#if defined(TESSALINE_CLEAR_UPPER_VECTORS)
    if (__builtin_cpu_supports("avx")) clearUpperVectorHalves();
#endif
  }
};

}  // namespace

std::optional<std::vector<std::uint8_t>> Image::encodePng() const {
  if (!encodable(*this)) return std::nullopt;
  const UpperVectorHalvesCleared onReturn;
  try {
    return encode(*this);
  } catch (const std::bad_alloc&) {
    return std::nullopt;  // reported as any other failure to encode
  }
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
