#pragma once

#include <memory>

#include "platform/color.h"
#include "platform/geometry_types.h"
#include "platform/path.h"
#include "tessaline/image.h"
#include "tessaline/raster_backend.h"

namespace tessaline {

enum class LineCap { Butt, Round, Square };
enum class LineJoin { Miter, Round, Bevel };

struct StrokeStyle {
  double width = 1;
  double miterLimit = 4;
  LineCap cap = LineCap::Butt;
  LineJoin join = LineJoin::Miter;
};

// The narrow raster interface that drawing goes through: a graphics-state stack that holds the
// clip, non-zero clipping, filling by a rule and stroking, all anti-aliased, on a transparent
// canvas of a fixed pixel size. Paths arrive in pixel coordinates.
class RasterContext {
 public:
  virtual ~RasterContext() = default;

  virtual void save() = 0;
  virtual void restore() = 0;
  // Intersects the current clip with `path` filled by the non-zero winding rule.
  virtual void clip(const Path& path) = 0;
  virtual void fill(const Path& path, FillRule rule, const Color& color) = 0;
  virtual void stroke(const Path& path, const StrokeStyle& style, const Color& color) = 0;

  // The pixels drawn so far as straight-alpha RGBA.
  virtual Image image() const = 0;
  // The same pixels for a context that draws no more: a backend may hand over its own buffer
  // instead of copying it. Nothing may be drawn afterwards.
  virtual Image takeImage() { return image(); }
};

std::unique_ptr<RasterContext> makeRasterContext(RasterBackend backend, int width, int height);

}  // namespace tessaline
