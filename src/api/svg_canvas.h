#pragma once

#include <optional>

#include "platform/geometry_types.h"
#include "platform/path.h"
#include "platform/raster_context.h"

namespace tessaline {

class Paint;

// The only way drawing code reaches the raster context.
class SVGCanvasProtocol {
 public:
  virtual ~SVGCanvasProtocol() = default;
  virtual void initCanvas(int width, int height) = 0;
  virtual int getWidth() const = 0;
  virtual int getHeight() const = 0;
  // Sets the context up for `paint`, then fills (by `fillRule`, non-zero when absent) or strokes.
  virtual void drawPath(const Path& path, const Paint& paint, std::optional<FillRule> fillRule) = 0;
  // Always saves the graphics state; with a path, clips to it by the non-zero rule.
  virtual void clipPath(const std::optional<Path>& path) = 0;
  // Restores the state saved by the matching clipPath.
  virtual void restoreClipPath() = 0;
};

class SVGCanvas final : public SVGCanvasProtocol {
 public:
  explicit SVGCanvas(RasterContext& context) : context_(context) {}

  void initCanvas(int width, int height) override {
    width_ = width;
    height_ = height;
  }
  int getWidth() const override { return width_; }
  int getHeight() const override { return height_; }
  void drawPath(const Path& path, const Paint& paint, std::optional<FillRule> fillRule) override;
  void clipPath(const std::optional<Path>& path) override;
  void restoreClipPath() override;

 private:
  void setUpContextForPaint(const Paint& paint);

  RasterContext& context_;
  int width_ = 256;
  int height_ = 256;
  // The paint state of the context, as the last setUpContextForPaint left it.
  Color fillColor_ = Color::black();
  Color strokeColor_ = Color::black();
  StrokeStyle strokeStyle_;
};

}  // namespace tessaline
