#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/affine_transform.h"
#include "platform/geometry_types.h"

namespace tessaline {

class SVGCanvasProtocol;

// A matrix, or the text of the error that prevented one.
struct TransformResult {
  std::optional<AffineTransform> matrix;
  std::optional<std::string> error;
};

class TransformHelper {
 public:
  // The full view-box-to-canvas matrix for a shape: S · T1 · T2 · ... · Tn, where S is the
  // uniform scale from the view box to the canvas and Ti the functions of `transformStr` in
  // written order (the rightmost acts on the point first).
  static TransformResult getTransformMatrix(const std::optional<std::string>& transformStr,
                                            const SVGCanvasProtocol& canvas, const Rect& viewBox);
};

// Converts a length in view-box units to canvas pixels: divides by the larger of the two
// view-box-to-canvas ratios, so the box fits the canvas without distortion.
float convertXToVP(float value, const Rect& viewBox, const SVGCanvasProtocol& canvas);

}  // namespace tessaline
