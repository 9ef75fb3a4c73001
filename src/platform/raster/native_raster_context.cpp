#include "platform/raster/native_raster_context.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/raster/curve_flattener.h"
#include "platform/raster/solid_painter.h"

namespace tessaline {
namespace {

Rect toRect(const PixelBox& box) {
  return {static_cast<double>(box.x0), static_cast<double>(box.y0),
          static_cast<double>(box.width()), static_cast<double>(box.height())};
}

}  // namespace

NativeRasterContext::NativeRasterContext(int width, int height)
    : width_(std::max(width, 0)),
      height_(std::max(height, 0)),
      pixels_(std::make_unique_for_overwrite<PremultipliedPixel[]>(
          static_cast<std::size_t>(width_) * height_)),
      rowReady_(static_cast<std::size_t>(height_), 0),
      clips_(width_, height_),
      rasterizer_(width_, height_) {}

void NativeRasterContext::save() {
  clips_.save();
}

void NativeRasterContext::restore() {
  clips_.restore();
}

void NativeRasterContext::clip(const Path& path) {
  const PixelBox& box = clips_.box();
  if (box.empty()) return;
  flattenPath(path, flat_, toRect(box));  // a path that is not finite leaves flat_ empty
  rasterizer_.begin(box);
  rasterizer_.addPath(flat_);
  clips_.intersect(rasterizer_);
}

void NativeRasterContext::fill(const Path& path, FillRule rule, const Color& color) {
  if (clips_.box().empty()) return;
  if (!flattenPath(path, flat_, toRect(clips_.box()))) return;
  paint(rule, flat_, color);
}

void NativeRasterContext::stroke(const Path& path, const StrokeStyle& style, const Color& color) {
  if (!std::isfinite(style.width) || !std::isfinite(style.miterLimit) || !(style.width > 0)) {
    return;
  }
  if (clips_.box().empty()) return;
  if (!flattenPath(path, flat_)) return;
  stroker_.stroke(flat_, style, outline_);
  paint(FillRule::Winding, outline_, color);
}

void NativeRasterContext::paint(FillRule rule, const FlatPath& shape, const Color& color) {
  const PremultipliedPixel source = premultiply(color);
  if (alphaOf(source) == 0) return;  // premultiplied, so every channel is 0: nothing changes
  rasterizer_.begin(clips_.box());
  rasterizer_.addPath(shape);
  const PixelBox bounds = rasterizer_.bounds();
  if (bounds.empty()) return;
  for (int y = bounds.y0; y < bounds.y1; ++y) {
    if (rowReady_[y]) continue;
    std::memset(pixels_.get() + static_cast<std::size_t>(y) * width_, 0,
                static_cast<std::size_t>(width_) * sizeof(PremultipliedPixel));
    rowReady_[y] = 1;
  }
  painted_ = painted_.empty()
                 ? bounds
                 : PixelBox{std::min(painted_.x0, bounds.x0), std::min(painted_.y0, bounds.y0),
                            std::max(painted_.x1, bounds.x1), std::max(painted_.y1, bounds.y1)};
  if (clips_.mask() != nullptr) {
    SolidPainter<true> painter(pixels_.get(), width_, source, clips_.mask());
    rasterizer_.sweep(rule, painter);
  } else {
    SolidPainter<false> painter(pixels_.get(), width_, source, nullptr);
    rasterizer_.sweep(rule, painter);
  }
}

Image NativeRasterContext::image() const {
  Image out(width_, height_);
  const int x0 = painted_.x0, x1 = painted_.x1;
  // Icons are mostly flat colour: runs of one pixel value convert once. The bounds live in
  // locals because every byte stored into the image might otherwise alias them.
  PremultipliedPixel last = 0;
  std::uint8_t converted[4] = {0, 0, 0, 0};
  for (int y = painted_.y0; y < painted_.y1; ++y) {
    if (!rowReady_[y]) continue;
    const std::size_t offset = static_cast<std::size_t>(y) * width_;
    const PremultipliedPixel* row = pixels_.get() + offset;
    std::uint8_t* rgba = out.bytes().data() + offset * 4;
    for (int x = x0; x < x1;) {
      const PremultipliedPixel p = row[x];
      int end = x + 1;
      while (end < x1 && row[end] == p) ++end;
      if (p != 0) {
        if (p != last) {
          unpremultiply(p, converted);
          last = p;
        }
        for (int i = x; i < end; ++i) std::memcpy(rgba + 4 * i, converted, 4);
      }
      x = end;
    }
  }
  return out;
}

std::unique_ptr<RasterContext> makeNativeRasterContext(int width, int height) {
  return std::make_unique<NativeRasterContext>(width, height);
}

}  // namespace tessaline
