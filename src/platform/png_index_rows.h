#pragma once

#include <array>
#include <cstdint>
#include <cstring>

#include "tessaline/image.h"

namespace tessaline::detail {

inline constexpr int kPaletteSize = 256;

// The distinct RGBA values of an image in order of first appearance. An open-addressed table four
// times the palette's size keeps probing short.
class ColourTable {
 public:
  // The palette index of `value`, which is added when new; -1 once it would be colour 257.
  int indexOf(std::uint32_t value) {
    for (std::uint32_t slot = (value * 2654435761u) >> 22;; slot = (slot + 1) % kSlots) {
      if (entries_[slot] == 0) {
        if (count_ == kPaletteSize) return -1;
        keys_[slot] = value;
        colours_[static_cast<std::size_t>(count_)] = value;
        entries_[slot] = static_cast<std::uint16_t>(++count_);
        return count_ - 1;
      }
      if (keys_[slot] == value) return entries_[slot] - 1;
    }
  }
  int count() const { return count_; }
  // The R G B A bytes of a palette entry.
  std::array<std::uint8_t, 4> colour(int index) const {
    std::array<std::uint8_t, 4> bytes;
    std::memcpy(bytes.data(), &colours_[static_cast<std::size_t>(index)], bytes.size());
    return bytes;
  }

 private:
  static constexpr std::uint32_t kSlots = 4 * kPaletteSize;  // the hash keeps the top 10 bits
  std::array<std::uint32_t, kSlots> keys_{};
  std::array<std::uint16_t, kSlots> entries_{};        // palette index + 1; 0 for an empty slot
  std::array<std::uint32_t, kPaletteSize> colours_{};  // the pixels' bytes as they lie in memory
  int count_ = 0;
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

}  // namespace tessaline::detail
