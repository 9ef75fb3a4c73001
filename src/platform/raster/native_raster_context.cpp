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
      pixels_(static_cast<PremultipliedPixel*>(
          std::calloc(static_cast<std::size_t>(width_) * height_ + 1, sizeof(PremultipliedPixel)))),
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
  if (!pixels_) return;
  rasterizer_.begin(clips_.box());
  rasterizer_.addPath(shape);
  const PixelBox bounds = rasterizer_.bounds();
  if (bounds.empty()) return;
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
  // Icons are mostly flat colour, so a pixel usually converts like its left neighbour.
  PremultipliedPixel last = 0;
  std::uint8_t converted[4] = {0, 0, 0, 0};
  for (int y = painted_.y0; y < painted_.y1; ++y) {
    const std::size_t offset = static_cast<std::size_t>(y) * width_;
    const PremultipliedPixel* row = pixels_.get() + offset;
    std::uint8_t* rgba = out.bytes().data() + offset * 4;
    for (int x = painted_.x0; x < painted_.x1; ++x) {
      const PremultipliedPixel p = row[x];
      if (p == 0) continue;
      if (p != last) {
        unpremultiply(p, converted);
        last = p;
      }
      std::memcpy(rgba + x * 4, converted, 4);
    }
  }
  return out;
}

std::unique_ptr<RasterContext> makeNativeRasterContext(int width, int height) {
  return std::make_unique<NativeRasterContext>(width, height);
}

}  // namespace tessaline
