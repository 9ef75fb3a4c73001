#include "api/svg_canvas.h"

#include "style/paint.h"

namespace tessaline {
namespace {

LineCap toLineCap(PaintStrokeCap cap) {
  switch (cap) {
    case PaintStrokeCap::Butt:
      return LineCap::Butt;
    case PaintStrokeCap::Round:
      return LineCap::Round;
    case PaintStrokeCap::Square:
      return LineCap::Square;
  }
  return LineCap::Butt;
}

// The paint's join order (miter, bevel, round) is not the raster context's (miter, round, bevel):
// map by name, never by value.
LineJoin toLineJoin(PaintStrokeLineJoin join) {
  switch (join) {
    case PaintStrokeLineJoin::Miter:
      return LineJoin::Miter;
    case PaintStrokeLineJoin::Bevel:
      return LineJoin::Bevel;
    case PaintStrokeLineJoin::Round:
      return LineJoin::Round;
  }
  return LineJoin::Miter;
}

// The paint's alpha replaces the colour's own: the alpha digits of an eight-digit colour never
// reach the pixels.
Color withPaintAlpha(const Color& color, std::int64_t alpha) {
  return color.withAlpha(static_cast<double>(alpha) / 255.0);
}

}  // namespace

void SVGCanvas::setUpContextForPaint(const Paint& paint) {
  if (const auto* fill = dynamic_cast<const FillPaint*>(&paint)) {
    fillColor_ = withPaintAlpha(fill->color, fill->alpha);
  } else if (const auto* stroke = dynamic_cast<const StrokePaint*>(&paint)) {
    strokeColor_ = withPaintAlpha(stroke->color, stroke->alpha);
    strokeStyle_.width = stroke->strokeWidth;
    strokeStyle_.miterLimit = stroke->strokeMiter;
    strokeStyle_.cap = toLineCap(stroke->strokeCap);
    strokeStyle_.join = toLineJoin(stroke->strokeLine);
  }
}

void SVGCanvas::drawPath(const Path& path, const Paint& paint, std::optional<FillRule> fillRule) {
  setUpContextForPaint(paint);
  if (dynamic_cast<const FillPaint*>(&paint) != nullptr) {
    context_.fill(path, fillRule.value_or(FillRule::Winding), fillColor_);
  } else if (dynamic_cast<const StrokePaint*>(&paint) != nullptr) {
    context_.stroke(path, strokeStyle_, strokeColor_);
  }
}

void SVGCanvas::clipPath(const std::optional<Path>& path) {
  // Save even without a path, so every call pairs with exactly one restoreClipPath().
  context_.save();
  if (path) context_.clip(*path);
}

void SVGCanvas::restoreClipPath() {
  context_.restore();
}

}  // namespace tessaline
