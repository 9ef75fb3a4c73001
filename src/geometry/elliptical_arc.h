#pragma once

#include <optional>

#include "platform/affine_transform.h"
#include "platform/path.h"

namespace tessaline::detail {

// The centre form of an SVG endpoint arc: the arc is the unit-circle arc from `startAngle`
// turning by `sweep` (radians, positive toward increasing angle), mapped through `ellipseMap`.
struct CenterArc {
  float centerX = 0;
  float centerY = 0;
  float radiusX = 0;  // after scaling up for a chord that was too long
  float radiusY = 0;
  float rotation = 0;  // the x axis rotation in radians, in [-π, π]
  double startAngle = 0;
  double sweep = 0;
  AffineTransform ellipseMap;
};

// Converts an SVG endpoint arc (start point, radii, rotation in degrees, the two flags as numbers,
// end point) to its centre form; nullopt when either radius is below 0.001, which draws as a
// straight line instead.
std::optional<CenterArc> endpointToCenterArc(float lastX, float lastY, float rxIn, float ryIn,
                                             float xAxisRotation, float largeArcFlag,
                                             float sweepFlag, float x, float y);

// Appends the arc to `path`: a straight line to (x, y) for degenerate radii, otherwise a line
// from the path's current point to the arc's start followed by cubic segments.
void addEllipticalArc(Path& path, float lastX, float lastY, float rxIn, float ryIn,
                      float xAxisRotation, float largeArcFlag, float sweepFlag, float x, float y);

}  // namespace tessaline::detail
