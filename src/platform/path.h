#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/affine_transform.h"
#include "platform/geometry_types.h"

namespace tessaline {

enum class PathVerb : std::uint8_t { Move, Line, Quad, Cubic, Close };

// Number of points each verb stores: move/line 1, quad 2 (control, end), cubic 3 (c1, c2, end).
constexpr int pointCount(PathVerb verb) {
  switch (verb) {
    case PathVerb::Move:
    case PathVerb::Line:
      return 1;
    case PathVerb::Quad:
      return 2;
    case PathVerb::Cubic:
      return 3;
    case PathVerb::Close:
      return 0;
  }
  return 0;
}

// One element of a path as handed out by Path::forEach.
struct PathElement {
  PathVerb verb;
  std::span<const Point> points;
};

// A value-type vector path: verbs plus their points, in 64-bit coordinates. Keeps a current point
// and a subpath start as the platform's mutable path does: a line or curve without a current point
// is ignored, close draws back to the subpath start and leaves the current point there.
class Path {
 public:
  void moveTo(Point p);
  void lineTo(Point p);
  void quadTo(Point control, Point end);
  void cubicTo(Point control1, Point control2, Point end);
  void close();

  // Adds an arc of `radius` around `center`, starting at `startAngle` (radians, from the positive
  // x axis toward the positive y axis) and turning by `delta`, with every point mapped through
  // `transform`. With a current point, a straight line to the arc's mapped start comes first;
  // otherwise the arc starts a new subpath. The arc is approximated by cubic Béziers of at most a
  // quarter turn each; a zero (or non-finite) delta adds only that line or move.
  void addRelativeArc(Point center, double radius, double startAngle, double delta,
                      const AffineTransform& transform);

  // A copy with every point mapped through `transform`; nullopt when a resulting coordinate is
  // not finite. The second form maps a path that is no longer needed in place.
  std::optional<Path> transformed(const AffineTransform& transform) const&;
  std::optional<Path> transformed(const AffineTransform& transform) &&;

  // Makes room for `verbs` verbs and `points` points without allocating again.
  void reserve(std::size_t verbs, std::size_t points);

  bool empty() const { return verbs_.empty(); }
  std::optional<Point> currentPoint() const { return current_; }
  const std::vector<PathVerb>& verbs() const { return verbs_; }
  const std::vector<Point>& points() const { return points_; }

  template <typename Visitor>
  void forEach(Visitor&& visit) const {
    std::size_t index = 0;
    for (PathVerb verb : verbs_) {
      const int n = pointCount(verb);
      visit(PathElement{verb, std::span<const Point>(points_.data() + index, n)});
      index += n;
    }
  }

  // Compact text form for tests and debugging: "M 10 20 L 30 40 Z"; numbers in their shortest
  // round-trip form. `precision` > 0 rounds to that many decimals instead.
  std::string dump(int precision = 0) const;

  friend bool operator==(const Path&, const Path&) = default;

 private:
  std::vector<PathVerb> verbs_;
  std::vector<Point> points_;
  std::optional<Point> current_;
  Point subpathStart_;
};

// The platform's closed shape outlines. The oval is the ellipse inscribed in `rect` (four cubic
// quarter arcs), starting at the right-most point and running through increasing angle (toward
// +y first). The rounded rectangle has all four corners rounded by `cornerRadius`, clamped to
// half the shorter side; a radius of 0 or less gives sharp corners. It starts where the top edge
// leaves the top-left corner (at the top-left corner itself when sharp) and also runs through
// increasing angle. A rectangle with a negative width or height is normalised first, as the
// platform's rectangle functions do.
Path makeOvalPath(const Rect& rect);
Path makeRoundedRectPath(const Rect& rect, double cornerRadius);

}  // namespace tessaline
