#include "platform/affine_transform.h"

#include <cmath>

namespace tessaline {

AffineTransform AffineTransform::makeRotation(double angle) {
  const double s = std::sin(angle);
  const double co = std::cos(angle);
  return {co, s, -s, co, 0, 0};
}

AffineTransform AffineTransform::concat(const AffineTransform& t1, const AffineTransform& t2) {
  return {t1.a * t2.a + t1.b * t2.c,           t1.a * t2.b + t1.b * t2.d,
          t1.c * t2.a + t1.d * t2.c,           t1.c * t2.b + t1.d * t2.d,
          t1.tx * t2.a + t1.ty * t2.c + t2.tx, t1.tx * t2.b + t1.ty * t2.d + t2.ty};
}

AffineTransform AffineTransform::translated(double x, double y) const {
  return concat(makeTranslation(x, y), *this);
}

AffineTransform AffineTransform::rotated(double angle) const {
  return concat(makeRotation(angle), *this);
}

AffineTransform AffineTransform::scaled(double sx, double sy) const {
  return concat(makeScale(sx, sy), *this);
}

}  // namespace tessaline
