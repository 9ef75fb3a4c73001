#include "platform/raster/curve_flattener.h"

#include <algorithm>
#include <cmath>

namespace tessaline {
namespace {

double length(double x, double y) {
  return std::sqrt(x * x + y * y);
}

int segmentsFor(double bound, double tolerance) {
  // `bound` is the chord-distance bound for a single step; n steps divide it by n².
  const double n = std::ceil(std::sqrt(bound / tolerance));
  if (!(n > 1)) return 1;  // also catches NaN
  return n >= kMaxCurveSegments ? kMaxCurveSegments : static_cast<int>(n);
}

Point clampPoint(Point p) {
  return {std::clamp(p.x, -kCoordinateLimit, kCoordinateLimit),
          std::clamp(p.y, -kCoordinateLimit, kCoordinateLimit)};
}

// True when all `n` points are strictly beyond one edge of `box`.
bool outside(const Point* p, int n, const Rect& box) {
  bool left = true, right = true, above = true, below = true;
  for (int i = 0; i < n; ++i) {
    left = left && p[i].x < box.x;
    right = right && p[i].x > box.x + box.width;
    above = above && p[i].y < box.y;
    below = below && p[i].y > box.y + box.height;
  }
  return left || right || above || below;
}

// The direction a curve leaves its first point in: toward the first control point that differs
// from it (all equal: none, the zero vector).
Point leavingDirection(const Point* p, int n) {
  for (int i = 1; i < n; ++i) {
    if (p[i] != p[0]) return {p[i].x - p[0].x, p[i].y - p[0].y};
  }
  return {};
}

// Emits a curve's inner points and its end.
void emitCurve(const Point* p, int degree, FlatPath& out) {
  const int n = degree == 2 ? quadSegmentCount(p[0], p[1], p[2], kFlatteningTolerance)
                            : cubicSegmentCount(p[0], p[1], p[2], p[3], kFlatteningTolerance);
  for (int i = 1; i < n; ++i) {
    const double t = static_cast<double>(i) / n, u = 1 - t;
    if (degree == 2) {
      out.lineTo({u * u * p[0].x + 2 * u * t * p[1].x + t * t * p[2].x,
                  u * u * p[0].y + 2 * u * t * p[1].y + t * t * p[2].y},
                 true);
    } else {
      const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
      out.lineTo({a * p[0].x + b * p[1].x + c * p[2].x + d * p[3].x,
                  a * p[0].y + b * p[1].y + c * p[2].y + d * p[3].y},
                 true);
    }
  }
  out.lineTo(p[degree]);
}

}  // namespace

int quadSegmentCount(Point p0, Point p1, Point p2, double tolerance) {
  const double dd = length(p0.x - 2 * p1.x + p2.x, p0.y - 2 * p1.y + p2.y);
  return segmentsFor(dd / 4, tolerance);
}

int cubicSegmentCount(Point p0, Point p1, Point p2, Point p3, double tolerance) {
  const double dd1 = length(p0.x - 2 * p1.x + p2.x, p0.y - 2 * p1.y + p2.y);
  const double dd2 = length(p1.x - 2 * p2.x + p3.x, p1.y - 2 * p2.y + p3.y);
  return segmentsFor(0.75 * std::max(dd1, dd2), tolerance);
}

bool flattenPath(const Path& path, FlatPath& out, const std::optional<Rect>& cullBox) {
  out.clear();
  for (const Point& p : path.points()) {
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return false;
  }

  std::optional<Point> current;
  Point start;
  bool moved = false;  // the current contour has left its first point
  const auto beginContour = [&] {
    out.moveTo(start);
    moved = false;
  };
  path.forEach([&](const PathElement& element) {
    if (element.verb == PathVerb::Move) {
      current = start = clampPoint(element.points[0]);
      beginContour();
      return;
    }
    if (!current) return;
    if (element.verb == PathVerb::Close) {
      if (!out.hasOpenContour()) beginContour();
      out.close();
      current = start;
      return;
    }
    // A segment right after a close begins a new subpath at the closed one's start.
    if (!out.hasOpenContour()) beginContour();
    Point p[4] = {*current};
    const int n = pointCount(element.verb);
    for (int i = 0; i < n; ++i) p[i + 1] = clampPoint(element.points[i]);
    const bool chord = n > 1 && cullBox && outside(p, n + 1, *cullBox);
    if (element.verb == PathVerb::Line || chord) {
      out.lineTo(p[n]);
      // A line of no length (path builders add one before an arc) leaves the tangents alone.
      if (p[n] != p[0]) {
        out.setEndTangent({});
        moved = true;
      }
    } else {
      // The tangents at the curve's ends, for caps, which must face along the curve: its first
      // and last chords turn away from it by half their angle.
      Point reversed[4];
      for (int i = 0; i <= n; ++i) reversed[i] = p[n - i];
      emitCurve(p, n, out);
      const Point leaving = leavingDirection(p, n + 1);
      const Point arriving = leavingDirection(reversed, n + 1);
      if (leaving != Point{}) {
        if (!moved) out.setStartTangent(leaving);
        out.setEndTangent({-arriving.x, -arriving.y});
        moved = true;
      }
      current = p[n];
      return;
    }
    current = p[n];
  });
  return true;
}

}  // namespace tessaline
