#include "geometry/path_builder.h"

#include "geometry/elliptical_arc.h"

namespace tessaline {

void CGMutablePathWrapper::move(Point to) {
  path_.moveTo(to);
}

void CGMutablePathWrapper::addLine(Point to) {
  path_.lineTo(to);
}

void CGMutablePathWrapper::closeSubpath() {
  path_.close();
}

void CGMutablePathWrapper::arcTo(float lastX, float lastY, float rxIn, float ryIn,
                                 float xAxisRotation, float largeArcFlag, float sweepFlag, float x,
                                 float y) {
  detail::addEllipticalArc(path_, lastX, lastY, rxIn, ryIn, xAxisRotation, largeArcFlag, sweepFlag,
                           x, y);
}

void CGMutablePathWrapper::addCurve(Point to, Point control1, Point control2) {
  path_.cubicTo(control1, control2, to);
}

void CGMutablePathWrapper::addQuadCurve(Point to, Point control) {
  path_.quadTo(control, to);
}

}  // namespace tessaline
