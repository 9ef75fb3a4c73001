#include "tessaline/image.h"

#include <cstddef>

namespace tessaline {

Image::Image(int width, int height)
    : width_(width > 0 ? width : 0),
      height_(height > 0 ? height : 0),
      bytes_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_) * 4, 0) {}

Rgba Image::pixel(int x, int y) const {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return {};
  const std::size_t i = (static_cast<std::size_t>(y) * width_ + x) * 4;
  return {bytes_[i], bytes_[i + 1], bytes_[i + 2], bytes_[i + 3]};
}

void Image::setPixel(int x, int y, Rgba value) {
  if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
  const std::size_t i = (static_cast<std::size_t>(y) * width_ + x) * 4;
  bytes_[i] = value.r;
  bytes_[i + 1] = value.g;
  bytes_[i + 2] = value.b;
  bytes_[i + 3] = value.a;
}

}  // namespace tessaline
