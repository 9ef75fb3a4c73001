#include "geometry/elliptical_arc.h"

#include <bit>
#include <cmath>
#include <cstdint>

// The arithmetic below must round exactly as 32-bit float code does, step by step, so that
// outlines match the platform bit for bit. Do not reorder products, and do not build this file
// with -ffast-math or with floating-point contraction into fused multiply-adds.

namespace tessaline::detail {
namespace {

// π rounded toward zero to 32 bits (0x40490FDA), one ulp below the nearest float. Degrees are
// converted with this value, so rotations differ from a double computation in the last bits.
constexpr float kPiFloat = 3.1415925f;
static_assert(std::bit_cast<std::uint32_t>(kPiFloat) == 0x40490FDAu);

// 2π in double, the modulus of the IEEE remainder that folds the rotation into [-π, π].
constexpr double kTwoPi = 6.283185307179586;

// 2·kPiFloat widened to double: the amount a sweep is turned by to point the other way. It is
// slightly less than 2π, so a corrected sweep can fall short of a full turn by about 3e-7.
constexpr double kFloatTwoPi = 6.283185005187988;
static_assert(kFloatTwoPi == static_cast<double>(2.0f * kPiFloat));

constexpr float kRadiusThreshold = 0.001f;
constexpr float kDenominatorThreshold = 0.001f;
constexpr float kSweepFlagTolerance = 0.001f;

float squared(float v) {
  return v * v;
}

}  // namespace

std::optional<CenterArc> endpointToCenterArc(float lastX, float lastY, float rxIn, float ryIn,
                                             float xAxisRotation, float largeArcFlag,
                                             float sweepFlag, float x, float y) {
  const float x0 = lastX;
  const float y0 = lastY;
  float rx = rxIn;
  float ry = ryIn;

  // 1. Radii this small draw a straight line. Only this test looks at their magnitude: negative
  //    radii are used as given everywhere else.
  if (std::fabs(rx) < kRadiusThreshold || std::fabs(ry) < kRadiusThreshold) return std::nullopt;

  // 2. Rotation in radians, folded into [-π, π] by the IEEE remainder taken in double.
  const float degrees = xAxisRotation * kPiFloat / 180.0f;
  const float phi = static_cast<float>(std::remainder(static_cast<double>(degrees), kTwoPi));
  const float s = std::sin(phi);
  const float c = std::cos(phi);

  // 3. Half the chord, turned into the ellipse's own axes.
  const float x1p = (x0 - x) * c * 0.5f + (y0 - y) * s * 0.5f;
  const float y1p = (y0 - y) * c * 0.5f - (x0 - x) * s * 0.5f;

  // 4. Radii too small to span the chord grow just enough to span it. Λ == 1 already fits.
  const float lambda = squared(x1p) / squared(rx) + squared(y1p) / squared(ry);
  if (lambda > 1.0f) {
    const float grow = std::sqrt(lambda);
    rx *= grow;
    ry *= grow;
  }

  // 5. Signed distance factor of the centre from the chord's midpoint. A near-zero denominator
  //    (start and end coincide) puts the centre on the midpoint. Of the two candidate centres,
  //    equal flags pick the one on the negative side; the large-arc flag acts only here.
  float k = 0.0f;
  const float a = squared(y1p) * squared(rx);
  const float b = squared(x1p) * squared(ry);
  const float denominator = b + a;
  if (!(std::fabs(denominator) < kDenominatorThreshold)) {
    float numerator = squared(rx) * squared(ry) - a - b;
    if (!(numerator >= 0.0f)) numerator = 0.0f;  // rounding after step 4, or NaN
    k = std::sqrt(numerator / denominator);
    if (largeArcFlag == sweepFlag) k = -k;
  }

  // 6. Centre in the ellipse's axes.
  const float cxp = y1p * rx * k / ry;
  const float cyp = k * (-(ry * x1p) / rx);

  // 7. Centre in user space: turn back and move to the chord's midpoint.
  const float cx = (x0 + x) * 0.5f + (c * cxp - s * cyp);
  const float cy = (y0 + y) * 0.5f + (s * cxp + c * cyp);

  // 8. From here on in double. The unit-circle map subtracts the centre, turns by -φ and divides
  //    by the radii (each call below acts on the point before the ones already there).
  const double phiD = phi;
  const AffineTransform toUnit =
      AffineTransform::makeScale(1.0 / rx, 1.0 / ry)
          .rotated(-phiD)
          .translated(-static_cast<double>(cx), -static_cast<double>(cy));

  // 9. Angles of both end points on the unit circle.
  const Point u0 = toUnit.apply({x0, y0});
  const Point u1 = toUnit.apply({x, y});
  const double theta0 = std::atan2(u0.y, u0.x);
  const double theta1 = std::atan2(u1.y, u1.x);
  double delta = theta1 - theta0;

  // 10. Direction. The sweep flag counts as on within 0.001 of 1, unlike the exact comparison of
  //     step 5: a flag of 0.9995 sweeps positively yet differs from a large-arc flag of 1. A delta
  //     of exactly 0 stays 0 either way.
  if (std::fabs(sweepFlag - 1.0f) < kSweepFlagTolerance) {
    if (delta < 0) delta += kFloatTwoPi;
  } else {
    if (delta > 0) delta -= kFloatTwoPi;
  }

  // 11. The ellipse map: scale by the radii, turn by φ, move to the centre.
  const AffineTransform ellipseMap =
      AffineTransform::makeTranslation(cx, cy).rotated(phiD).scaled(rx, ry);

  return CenterArc{cx, cy, rx, ry, phi, theta0, delta, ellipseMap};
}

void addEllipticalArc(Path& path, float lastX, float lastY, float rxIn, float ryIn,
                      float xAxisRotation, float largeArcFlag, float sweepFlag, float x, float y) {
  const auto arc =
      endpointToCenterArc(lastX, lastY, rxIn, ryIn, xAxisRotation, largeArcFlag, sweepFlag, x, y);
  if (!arc) {
    path.lineTo({x, y});
    return;
  }
  // 12. The unit-circle arc mapped onto the ellipse. The path adds a line from its current point
  //     to the mapped start first; that line is (nearly) empty unless start and end coincide.
  path.addRelativeArc({0, 0}, 1, arc->startAngle, arc->sweep, arc->ellipseMap);
}

}  // namespace tessaline::detail
