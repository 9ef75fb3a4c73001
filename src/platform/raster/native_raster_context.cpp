#include "platform/raster/native_raster_context.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

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
      canvas_(width_, height_),
      translucent_(width_, height_),
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
  const PremultipliedPixel source = toImageOrder(premultiply(color));
  if (alphaOf(source) == 0) return;  // premultiplied, so every channel is 0: nothing changes
  if (taken_) return;
  rasterizer_.begin(clips_.box());
  rasterizer_.addPath(shape);
  const PixelBox bounds = rasterizer_.bounds();
  if (bounds.empty()) return;
  painted_ = painted_.empty()
                 ? bounds
                 : PixelBox{std::min(painted_.x0, bounds.x0), std::min(painted_.y0, bounds.y0),
                            std::max(painted_.x1, bounds.x1), std::max(painted_.y1, bounds.y1)};
  if (clips_.mask() != nullptr) {
    SolidPainter<true> painter(pixels(), width_, source, clips_.mask(), &translucent_);
    rasterizer_.sweep(rule, painter);
  } else {
    SolidPainter<false> painter(pixels(), width_, source, nullptr, &translucent_);
    rasterizer_.sweep(rule, painter);
  }
}

void NativeRasterContext::finish(Image& canvas) const {
  std::uint8_t* bytes = canvas.bytes().data();
  for (int y = painted_.y0; y < painted_.y1; ++y) {
    std::uint8_t* row = bytes + static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) * 4;
    translucent_.forEachRun(y, [&](int x, int count) {
      unpremultiplyImageOrder(row + static_cast<std::size_t>(x) * 4, count);
    });
  }
}

Image NativeRasterContext::image() const {
  if (taken_) return Image(width_, height_);
  Image out = canvas_;
  finish(out);
  return out;
}

Image NativeRasterContext::takeImage() {
  if (taken_) return Image(width_, height_);
  finish(canvas_);
  taken_ = true;
  return std::move(canvas_);
}

std::unique_ptr<RasterContext> makeNativeRasterContext(int width, int height) {
  return std::make_unique<NativeRasterContext>(width, height);
}

}  // namespace tessaline
