#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/raster/clip_stack.h"
#include "platform/raster/coverage_rasterizer.h"
#include "platform/raster/flat_path.h"
#include "platform/raster/pixel_ops.h"
#include "platform/raster/stroker.h"
#include "platform/raster/translucent_marks.h"
#include "platform/raster_context.h"

namespace tessaline {

// The library's own raster backend: curves flattened within kFlatteningTolerance, strokes turned
// into outlines, exact-area anti-aliased scan conversion, clips as coverage masks and
// source-over compositing of solid colours into a premultiplied canvas.
//
// All working buffers live in the context and are reused from one call to the next, so drawing
// allocates only while paths keep growing. One context serves one thread; contexts share nothing.
//
// Paths with a coordinate that is not finite draw nothing, and as a clip leave nothing visible.
// A stroke whose width or miter limit is not finite, or whose width is not positive, draws
// nothing. A restore without its save is ignored.
class NativeRasterContext final : public RasterContext {
 public:
  // A transparent canvas of `width` x `height` pixels (negative sizes count as 0).
  NativeRasterContext(int width, int height);

  void save() override;
  void restore() override;
  void clip(const Path& path) override;
  void fill(const Path& path, FillRule rule, const Color& color) override;
  void stroke(const Path& path, const StrokeStyle& style, const Color& color) override;
  Image image() const override;
  // Converts the canvas in place and hands it over; the context draws nothing afterwards.
  Image takeImage() override;

  int width() const { return width_; }
  int height() const { return height_; }

 private:
  void paint(FillRule rule, const FlatPath& shape, const Color& color);
  // Converts the marked pixels of `canvas`, this context's canvas or a copy of it.
  void finish(Image& canvas) const;

  PremultipliedPixel* pixels() {
    return reinterpret_cast<PremultipliedPixel*>(canvas_.bytes().data());
  }

  int width_;
  int height_;
  // The canvas holds premultiplied pixels in the buffer of the image it becomes: takeImage()
  // converts them in place, so a rendering allocates and clears one bitmap, not two.
  Image canvas_;
  PixelBox painted_;  // every pixel outside is still transparent
  TranslucentMarks translucent_;
  bool taken_ = false;
  ClipStack clips_;
  CoverageRasterizer rasterizer_;
  Stroker stroker_;
  FlatPath flat_;
  FlatPath outline_;
};

std::unique_ptr<RasterContext> makeNativeRasterContext(int width, int height);

}  // namespace tessaline
