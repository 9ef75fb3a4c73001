#pragma once

#include <array>
#include <cstdint>
#include <cstring>

#include "tessaline/image.h"

namespace tessaline::detail {

inline constexpr int kPaletteSize = 256;

// A pixel's four bytes as one value, in memory order (R in the low byte on little-endian).
inline std::uint32_t loadPixel(const std::uint8_t* rgba) {
  std::uint32_t value;
  std::memcpy(&value, rgba, sizeof value);
  return value;
}

// The colours of an indexed image in index order, each as its pixel's bytes lie in memory.
struct Palette {
  std::array<std::uint32_t, kPaletteSize> colours{};
  int count = 0;

  // The R G B A bytes of an entry.
  std::array<std::uint8_t, 4> colour(int index) const {
    std::array<std::uint8_t, 4> bytes;
    std::memcpy(bytes.data(), &colours[static_cast<std::size_t>(index)], bytes.size());
    return bytes;
  }
};

// The distinct RGBA values of an image in order of first appearance. An open-addressed table four
// times the palette's size keeps probing short.
class ColourTable {
 public:
  // The palette index of `value`, which is added when new; -1 once it would be colour 257.
  int indexOf(std::uint32_t value) {
    for (std::uint32_t slot = (value * 2654435761u) >> 22;; slot = (slot + 1) % kSlots) {
      if (entries_[slot] == 0) {
        if (palette_.count == kPaletteSize) return -1;
        keys_[slot] = value;
        palette_.colours[static_cast<std::size_t>(palette_.count)] = value;
        entries_[slot] = static_cast<std::uint16_t>(++palette_.count);
        return palette_.count - 1;
      }
      if (keys_[slot] == value) return entries_[slot] - 1;
    }
  }
  const Palette& palette() const { return palette_; }

 private:
  static constexpr std::uint32_t kSlots = 4 * kPaletteSize;  // the hash keeps the top 10 bits
  std::array<std::uint32_t, kSlots> keys_{};
  std::array<std::uint16_t, kSlots> entries_{};  // palette index + 1; 0 for an empty slot
  Palette palette_;
};

// Writes the palette index of every pixel of `image` into rows at `out` (height rows of width + 1
// bytes), each after its filter-type byte 0, and the Adler-32 of those bytes to `checksum`; false
// once the image turns out to hold more than kPaletteSize colours (then `out` and `checksum` are
// unspecified). Uses AVX2 where the processor has it.
bool indexRows(const Image& image, ColourTable& table, std::uint8_t* out, std::uint32_t& checksum);

// indexRows without AVX2 whatever the processor has, so that tests can hold both to the same
// results.
bool indexRowsWithoutAvx2(const Image& image, ColourTable& table, std::uint8_t* out,
                          std::uint32_t& checksum);

// The index rows of a one-ink image, laid out as indexRows lays them out: every pixel is either
// transparent black (0, 0, 0, 0) or one RGB value, the ink, at a non-zero alpha, as the
// anti-aliased icons of one colour are. A pixel's index is then its alpha, taken without any
// lookup, and `palette` holds the ink at every alpha up to the highest one used (entry 0
// transparent black). False for any other image (then `out`, `checksum` and `palette` are
// unspecified). Uses AVX2 where the processor has it.
bool inkIndexRows(const Image& image, Palette& palette, std::uint8_t* out, std::uint32_t& checksum);

// inkIndexRows without AVX2 whatever the processor has.
bool inkIndexRowsWithoutAvx2(const Image& image, Palette& palette, std::uint8_t* out,
                             std::uint32_t& checksum);

}  // namespace tessaline::detail
