#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessaline {

// One bit per pixel of a canvas, set where painting may have left the pixel translucent. Opaque
// and untouched pixels are final as painted, so handing over the canvas converts only the marked
// pixels: the anti-aliased edges of the shapes, for a typical icon.
class TranslucentMarks {
 public:
  TranslucentMarks(int width, int height)
      : width_(std::max(width, 0)),
        words_((width_ + 63) / 64),
        bits_(static_cast<std::size_t>(words_) * static_cast<std::size_t>(std::max(height, 0)), 0) {
  }

  // Marks pixels x ... x + length - 1 of row y (length > 0, all within the canvas).
  void mark(int y, int x, int length) {
    std::uint64_t* row = bits_.data() + static_cast<std::size_t>(y) * words_;
    const int last = x + length - 1;
    const std::uint64_t fromFirst = ~std::uint64_t{0} << (x & 63);
    const std::uint64_t toLast = ~std::uint64_t{0} >> (63 - (last & 63));
    if ((x >> 6) == (last >> 6)) {  // the usual case: one word
      row[x >> 6] |= fromFirst & toLast;
      return;
    }
    row[x >> 6] |= fromFirst;
    for (int word = (x >> 6) + 1; word < (last >> 6); ++word) row[word] = ~std::uint64_t{0};
    row[last >> 6] |= toLast;
  }

  // Calls `convert(x, count)` for every run of marked pixels of row y.
  template <typename Convert>
  void forEachRun(int y, Convert&& convert) const {
    const std::uint64_t* row = bits_.data() + static_cast<std::size_t>(y) * words_;
    for (int w = 0; w < words_; ++w) {
      std::uint64_t word = row[w];
      while (word != 0) {
        const int start = std::countr_zero(word);
        const int length = std::countr_one(word >> start);
        convert(w * 64 + start, std::min(length, width_ - (w * 64 + start)));
        word = start + length >= 64 ? 0 : word & (~std::uint64_t{0} << (start + length));
      }
    }
  }

 private:
  int width_;
  int words_;
  std::vector<std::uint64_t> bits_;
};

}  // namespace tessaline
