#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessaline {

// One bit per group of eight pixels of a canvas, set where painting may have left a translucent
// pixel. Opaque and untouched pixels are final as painted, so handing over the canvas converts
// only the marked groups: the edges of the shapes, for a typical icon.
class TranslucentMarks {
 public:
  static constexpr int kGroup = 8;

  TranslucentMarks(int width, int height)
      : width_(std::max(width, 0)),
        words_(((width_ + kGroup - 1) / kGroup + 63) / 64),
        bits_(static_cast<std::size_t>(words_) * static_cast<std::size_t>(std::max(height, 0)), 0) {
  }

  // Marks pixels x ... x + length - 1 of row y (length > 0, all within the canvas).
  void mark(int y, int x, int length) {
    std::uint64_t* row = bits_.data() + static_cast<std::size_t>(y) * words_;
    const int first = x / kGroup, last = (x + length - 1) / kGroup;
    if ((first >> 6) == (last >> 6)) {  // the usual case: one word
      row[first >> 6] |=
          (~std::uint64_t{0} << (first & 63)) & (~std::uint64_t{0} >> (63 - (last & 63)));
      return;
    }
    row[first >> 6] |= ~std::uint64_t{0} << (first & 63);
    for (int word = (first >> 6) + 1; word < (last >> 6); ++word) row[word] = ~std::uint64_t{0};
    row[last >> 6] |= ~std::uint64_t{0} >> (63 - (last & 63));
  }

  // Calls `convert(x, count)` for every marked run of pixels of row y, clipped to the canvas.
  template <typename Convert>
  void forEachRun(int y, Convert&& convert) const {
    const std::uint64_t* row = bits_.data() + static_cast<std::size_t>(y) * words_;
    for (int w = 0; w < words_; ++w) {
      std::uint64_t word = row[w];
      while (word != 0) {
        const int start = std::countr_zero(word);
        const std::uint64_t shifted = word >> start;
        const int length = std::countr_one(shifted);
        const int x = (w * 64 + start) * kGroup;
        convert(x, std::min(length * kGroup, width_ - x));
        word = length + start >= 64 ? 0 : word & (~std::uint64_t{0} << (start + length));
      }
    }
  }

 private:
  int width_;
  int words_;
  std::vector<std::uint64_t> bits_;
};

}  // namespace tessaline
