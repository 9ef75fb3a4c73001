#pragma once

#include <cstddef>

#include "platform/geometry_types.h"
#include "platform/path.h"

namespace tessaline {

// The one object through which path data becomes geometry. The path data parser calls these
// operations with absolute coordinates, in the order of the commands; every operation is virtual
// so that a caller can observe or redirect the calls. Nothing here reports errors: every operation
// succeeds.
//
//   CGMutablePathWrapper builder;
//   builder.move({0, 0});
//   builder.arcTo(0, 0, 5, 5, 0, 0, 1, 10, 0);  // half circle from (0, 0) to (10, 0)
//   Path outline = builder.path();
class CGMutablePathWrapper {
 public:
  CGMutablePathWrapper() = default;
  virtual ~CGMutablePathWrapper() = default;
  CGMutablePathWrapper(const CGMutablePathWrapper&) = delete;
  CGMutablePathWrapper& operator=(const CGMutablePathWrapper&) = delete;

  virtual void move(Point to);
  virtual void addLine(Point to);
  virtual void closeSubpath();
  // The SVG elliptical arc from (lastX, lastY) to (x, y): radii, rotation of the x axis in
  // degrees, and the two flags as the numbers the path data gave. The caller passes its own
  // current point; the path's current point is never consulted. Radii below 0.001 give a straight
  // line; radii too small for the chord are scaled up.
  virtual void arcTo(float lastX, float lastY, float rxIn, float ryIn, float xAxisRotation,
                     float largeArcFlag, float sweepFlag, float x, float y);
  virtual void addCurve(Point to, Point control1, Point control2);
  virtual void addQuadCurve(Point to, Point control);

  // Makes room in the path for `verbs` verbs and `points` points: a hint that spares the path's
  // buffers their growth from empty when the caller knows roughly how much is coming.
  void reserve(std::size_t verbs, std::size_t points) { path_.reserve(verbs, points); }

  // The path built so far. Copy it to keep it beyond the builder's life.
  const Path& path() const { return path_; }

 private:
  Path path_;
};

}  // namespace tessaline
