#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/color.h"
#include "platform/geometry_types.h"
#include "style/presentation_attributes.h"

namespace tessaline {

class SVGCanvasProtocol;

enum class PaintStrokeCap { Butt, Round, Square };
// Note the order: it differs from the raster context's joins; SVGCanvas maps between them.
enum class PaintStrokeLineJoin { Miter, Bevel, Round };

class Paint {
 public:
  virtual ~Paint() = default;
};

class FillPaint final : public Paint {
 public:
  FillPaint(Color color, std::int64_t alpha) : color(color), alpha(alpha) {}
  Color color;
  std::int64_t alpha;  // 0...255, 255 opaque
};

class StrokePaint final : public Paint {
 public:
  StrokePaint(Color color, std::int64_t alpha, float strokeWidth, float strokeMiter,
              PaintStrokeCap strokeCap, PaintStrokeLineJoin strokeLine)
      : color(color),
        alpha(alpha),
        strokeWidth(strokeWidth),
        strokeMiter(strokeMiter),
        strokeCap(strokeCap),
        strokeLine(strokeLine) {}
  Color color;
  std::int64_t alpha;
  float strokeWidth;  // canvas pixels
  float strokeMiter;  // at least 1
  PaintStrokeCap strokeCap;
  PaintStrokeLineJoin strokeLine;
};

// The paints one shape is drawn with, or the one error that prevents drawing it.
class PresentationPaint {
 public:
  static PresentationPaint get(const SVGCanvasProtocol& canvas, const Rect& viewBox,
                               const PresentationAttributes& attributes);

  // Fill first, then stroke; empty when nothing is drawn.
  std::vector<const Paint*> getPaints() const;

  std::optional<FillPaint> fill;
  std::optional<StrokePaint> stroke;
  std::optional<std::string> error;

 private:
  struct ColorResult {
    std::optional<Color> color;
    std::optional<std::string> error;
  };
  static ColorResult getColor(const std::optional<std::string>& colorString);
};

}  // namespace tessaline
