#pragma once

#include "api/svg_canvas.h"

namespace tessaline::testing {

// A canvas that only knows its size: viewport mapping and paint resolution read nothing else.
class SizeOnlyCanvas final : public SVGCanvasProtocol {
 public:
  SizeOnlyCanvas(int width, int height) : width_(width), height_(height) {}
  void initCanvas(int width, int height) override { width_ = width, height_ = height; }
  int getWidth() const override { return width_; }
  int getHeight() const override { return height_; }
  void drawPath(const Path&, const Paint&, std::optional<FillRule>) override {}
  void clipPath(const std::optional<Path>&) override {}
  void restoreClipPath() override {}

 private:
  int width_, height_;
};

}  // namespace tessaline::testing
