#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "platform/raster/pixel_ops.h"

namespace tessaline {

// The span sink that paints a solid colour with source-over: each pixel receives the colour
// scaled by its coverage, times the clip mask's value when there is a mask. Both the coverage
// and the mask are 8-bit; they combine as the reference backend combines a mask with a clip.
class SolidPainter {
 public:
  // `pixels` and `mask` (null when unclipped) are canvases of `stride` pixels per row.
  SolidPainter(PremultipliedPixel* pixels, int stride, PremultipliedPixel color,
               const std::uint8_t* mask)
      : pixels_(pixels),
        mask_(mask),
        stride_(stride),
        color_(color),
        opaque_(alphaOf(color) == 255) {}

  void solid(int y, int x, int length, std::uint8_t coverage) {
    PremultipliedPixel* out = row(y) + x;
    if (mask_ != nullptr) {
      const std::uint8_t* mask = maskRow(y) + x;
      for (int i = 0; i < length; ++i) blend(out[i], multiply255(coverage, mask[i]));
      return;
    }
    if (coverage == 255 && opaque_) {
      fill(out, length);
      return;
    }
    const PremultipliedPixel source = coverage == 255 ? color_ : scalePixel(color_, coverage);
    const std::uint32_t keep = 255 - alphaOf(source);
    for (int i = 0; i < length; ++i) out[i] = source + scalePixel(out[i], keep);
  }

  void varying(int y, int x, int length, const std::uint8_t* coverage) {
    PremultipliedPixel* out = row(y) + x;
    if (mask_ != nullptr) {
      const std::uint8_t* mask = maskRow(y) + x;
      for (int i = 0; i < length; ++i) blend(out[i], multiply255(coverage[i], mask[i]));
      return;
    }
    for (int i = 0; i < length; ++i) blend(out[i], coverage[i]);
  }

 private:
  PremultipliedPixel* row(int y) const {
    return pixels_ + static_cast<std::ptrdiff_t>(y) * stride_;
  }
  const std::uint8_t* maskRow(int y) const {
    return mask_ + static_cast<std::ptrdiff_t>(y) * stride_;
  }

  // Stores the colour `length` times, four pixels per 16-byte copy, which compilers turn into one
  // vector store even where they do not vectorise loops.
  void fill(PremultipliedPixel* out, int length) const {
    const PremultipliedPixel four[4] = {color_, color_, color_, color_};
    int i = 0;
    for (; i + 4 <= length; i += 4) std::memcpy(out + i, four, sizeof four);
    for (; i < length; ++i) out[i] = color_;
  }

  void blend(PremultipliedPixel& pixel, std::uint32_t coverage) const {
    if (coverage == 0) return;
    if (coverage == 255 && opaque_) {
      pixel = color_;
      return;
    }
    pixel = sourceOver(coverage == 255 ? color_ : scalePixel(color_, coverage), pixel);
  }

  PremultipliedPixel* pixels_;
  const std::uint8_t* mask_;
  int stride_;
  PremultipliedPixel color_;
  bool opaque_;
};

}  // namespace tessaline
