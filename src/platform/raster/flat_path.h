#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "platform/geometry_types.h"

namespace tessaline {

// One contour of a FlatPath: the points [begin, end) of FlatPath::points, closed or open. When
// the contour began or ended with a curve, the direction the curve leaves its first point in or
// arrives at its last point in (not normalised; zero when the end is straight), so that a
// stroke's caps can face along the curve rather than along its first or last chord.
struct FlatContour {
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
  bool closed = false;
  Point startTangent;
  Point endTangent;
};

// A path made only of straight segments, in pixel coordinates: what curve flattening produces,
// what the stroker consumes and emits, and what the rasterizer fills. The vectors are kept across
// clear() so a context that reuses one FlatPath allocates only while its paths keep growing.
//
// Every point is kept as given, repeated points included: whether a contour is a lone move, a
// zero-length segment or a closed single point decides what a stroke draws there. `smooth` marks
// points that lie inside a flattened curve, where a stroke must look round whatever the join.
class FlatPath {
 public:
  void clear() {
    points_.clear();
    smooth_.clear();
    contours_.clear();
  }

  // Starts a new contour at `p`.
  void moveTo(Point p) {
    // The first contour makes room for a typical icon's path at once: growing from empty a
    // doubling at a time costs a dozen allocations and copies, and an icon draws with one
    // context that is then gone.
    if (contours_.capacity() == 0) {
      points_.reserve(kInitialPoints);
      smooth_.reserve(kInitialPoints);
      contours_.reserve(kInitialContours);
    }
    contours_.push_back({size(), size(), false, {}, {}});
    push(p, false);
  }

  // Appends a point to the last contour; the caller has called moveTo first.
  void lineTo(Point p, bool smooth = false) { push(p, smooth); }

  // Marks the last contour closed: filling and stroking join its last point back to its first.
  void close() { contours_.back().closed = true; }

  void setStartTangent(Point direction) { contours_.back().startTangent = direction; }
  void setEndTangent(Point direction) { contours_.back().endTangent = direction; }

  bool hasOpenContour() const { return !contours_.empty() && !contours_.back().closed; }

  const std::vector<Point>& points() const { return points_; }
  const std::vector<std::uint8_t>& smooth() const { return smooth_; }
  const std::vector<FlatContour>& contours() const { return contours_; }

  std::span<const Point> contourPoints(const FlatContour& c) const {
    return {points_.data() + c.begin, points_.data() + c.end};
  }

 private:
  static constexpr std::size_t kInitialPoints = 512;
  static constexpr std::size_t kInitialContours = 16;

  std::uint32_t size() const { return static_cast<std::uint32_t>(points_.size()); }

  void push(Point p, bool smooth) {
    points_.push_back(p);
    smooth_.push_back(smooth ? 1 : 0);
    contours_.back().end = size();
  }

  std::vector<Point> points_;
  std::vector<std::uint8_t> smooth_;
  std::vector<FlatContour> contours_;
};

}  // namespace tessaline
