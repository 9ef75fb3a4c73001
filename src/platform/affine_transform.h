#pragma once

#include "platform/geometry_types.h"

namespace tessaline {

// A 2-D affine matrix mapping (x, y) to (a·x + c·y + tx, b·x + d·y + ty), with the platform's
// composition rules: translated/rotated/scaled return a transform that performs the named
// operation first and this one after it; concat(t1, t2) performs t1 first, then t2.
struct AffineTransform {
  double a = 1, b = 0, c = 0, d = 1, tx = 0, ty = 0;

  static AffineTransform identity() { return {}; }
  static AffineTransform makeScale(double sx, double sy) { return {sx, 0, 0, sy, 0, 0}; }
  static AffineTransform makeTranslation(double x, double y) { return {1, 0, 0, 1, x, y}; }
  static AffineTransform makeRotation(double angle);
  // t1 acts on the point first, t2 after it.
  static AffineTransform concat(const AffineTransform& t1, const AffineTransform& t2);

  AffineTransform translated(double x, double y) const;
  // Rotation by a positive angle turns the positive x axis toward the positive y axis.
  AffineTransform rotated(double angle) const;
  AffineTransform scaled(double sx, double sy) const;

  Point apply(Point p) const { return {a * p.x + c * p.y + tx, b * p.x + d * p.y + ty}; }
  bool isIdentity() const { return *this == AffineTransform{}; }

  friend bool operator==(const AffineTransform&, const AffineTransform&) = default;
};

}  // namespace tessaline
