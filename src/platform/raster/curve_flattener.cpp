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

void emitQuad(Point p0, Point p1, Point p2, FlatPath& out) {
  const int n = quadSegmentCount(p0, p1, p2, kFlatteningTolerance);
  // B(t) = p0 + t·b + t²·a
  const double ax = p0.x - 2 * p1.x + p2.x, ay = p0.y - 2 * p1.y + p2.y;
  const double bx = 2 * (p1.x - p0.x), by = 2 * (p1.y - p0.y);
  for (int i = 1; i < n; ++i) {
    const double t = static_cast<double>(i) / n;
    out.lineTo({p0.x + t * (bx + t * ax), p0.y + t * (by + t * ay)}, true);
  }
  out.lineTo(p2);
}

void emitCubic(Point p0, Point p1, Point p2, Point p3, FlatPath& out) {
  const int n = cubicSegmentCount(p0, p1, p2, p3, kFlatteningTolerance);
  // B(t) = p0 + t·c + t²·b + t³·a
  const double cx = 3 * (p1.x - p0.x), cy = 3 * (p1.y - p0.y);
  const double bx = 3 * (p2.x - 2 * p1.x + p0.x), by = 3 * (p2.y - 2 * p1.y + p0.y);
  const double ax = p3.x - p0.x + 3 * (p1.x - p2.x), ay = p3.y - p0.y + 3 * (p1.y - p2.y);
  for (int i = 1; i < n; ++i) {
    const double t = static_cast<double>(i) / n;
    out.lineTo({p0.x + t * (cx + t * (bx + t * ax)), p0.y + t * (cy + t * (by + t * ay))}, true);
  }
  out.lineTo(p3);
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
  path.forEach([&](const PathElement& element) {
    if (element.verb == PathVerb::Move) {
      current = start = clampPoint(element.points[0]);
      out.moveTo(start);
      return;
    }
    if (!current) return;
    if (element.verb == PathVerb::Close) {
      if (!out.hasOpenContour()) out.moveTo(start);
      out.close();
      current = start;
      return;
    }
    // A segment right after a close begins a new subpath at the closed one's start.
    if (!out.hasOpenContour()) out.moveTo(start);
    Point p[4] = {*current};
    const int n = pointCount(element.verb);
    for (int i = 0; i < n; ++i) p[i + 1] = clampPoint(element.points[i]);
    const bool chord = n > 1 && cullBox && outside(p, n + 1, *cullBox);
    if (element.verb == PathVerb::Line || chord) {
      out.lineTo(p[n]);
    } else if (element.verb == PathVerb::Quad) {
      emitQuad(p[0], p[1], p[2], out);
    } else {
      emitCubic(p[0], p[1], p[2], p[3], out);
    }
    current = p[n];
  });
  return true;
}

}  // namespace tessaline
