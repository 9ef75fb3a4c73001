#pragma once

#include <algorithm>

namespace tessaline {

// A rectangle of whole pixels: columns [x0, x1) and rows [y0, y1).
struct PixelBox {
  int x0 = 0;
  int y0 = 0;
  int x1 = 0;
  int y1 = 0;

  bool empty() const { return x0 >= x1 || y0 >= y1; }
  int width() const { return x1 - x0; }
  int height() const { return y1 - y0; }

  PixelBox intersected(const PixelBox& other) const {
    return {std::max(x0, other.x0), std::max(y0, other.y0), std::min(x1, other.x1),
            std::min(y1, other.y1)};
  }

  friend bool operator==(const PixelBox&, const PixelBox&) = default;
};

}  // namespace tessaline
