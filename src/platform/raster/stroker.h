#pragma once

#include <cstdint>
#include <vector>

#include "platform/geometry_types.h"
#include "platform/raster/flat_path.h"
#include "platform/raster_context.h"

namespace tessaline {

// Turns a flattened path and a stroke style into the outline of the stroke, a set of closed
// contours that cover the stroked area when filled with the non-zero rule.
//
// Each subpath becomes one contour (open subpaths: the left offset forward, the end cap, the left
// offset of the reversed subpath, the start cap) or two (closed subpaths: the offsets of both
// sides, each with a join at every vertex including the start, in opposite directions so the
// inside of a ring stays empty; one when all its points lie on a line). Every piece turns the same
// way around the stroked area, so where pieces overlap the winding number only grows.
//
// Joins follow the platform: a miter is kept while miter length / stroke width = 1 / sin(θ/2) is
// at most the miter limit (θ the angle between the segments), otherwise the corner is bevelled.
// Inside a flattened curve the outer side of every vertex is rounded whatever the join, so curves
// stay smooth. On the inner side of a turn the outline turns where the two offsets cross, so
// nothing overlaps there, unless short segments would make the offsets cross over visibly; then
// it passes through the vertex itself, which keeps both segments' bodies covered however short
// they are. Caps at the ends of curves face along the curves' tangents; joins there use the end
// chords, which differ from the tangents by half a chord's angle.
//
// Parts of one path that run over each other (a line drawn back along itself, subpaths whose
// round caps meet) are outlined once per pass, so their shared edges are anti-aliased twice by
// the rasterizer (see CoverageRasterizer) and come out a little harder there.
//
// Degenerate subpaths follow the platform: repeated points are dropped; a subpath that has a
// segment or a close but no length draws a dot of the stroke width with round caps and nothing
// with butt or square caps; a lone move draws nothing.
class Stroker {
 public:
  // Writes the outline of `path` stroked with `style` to `out` (cleared first). The style's width
  // must be positive and finite and its miter limit finite.
  void stroke(const FlatPath& path, const StrokeStyle& style, FlatPath& out);

 private:
  void strokeContour(const FlatPath& path, const FlatContour& contour, FlatPath& out);
  bool collinear() const;
  void addClosedSide(bool forward, FlatPath& out);
  void addOpenSide(bool forward, FlatPath& out);
  void addJoin(Point p, Point d1, Point d2, double length1, double length2, bool smooth,
               FlatPath& out);
  Point capCorner(Point p, Point d, Point t) const;
  void addCap(Point p, Point t, FlatPath& out);
  void addArc(Point center, Point from, double angle, FlatPath& out);
  void addDot(Point center, FlatPath& out);

  double halfWidth_ = 0.5;
  double miterLimit_ = 4;
  LineCap cap_ = LineCap::Butt;
  LineJoin join_ = LineJoin::Miter;
  double arcStep_ = 0;          // largest angle one chord of a round join or cap may span
  double oneChordTangent_ = 0;  // a turn whose tangent is at most this needs no more than one chord

  // The current subpath without repeated points, and its segments' unit directions and lengths
  // (segment i runs from vertex i to vertex i + 1, wrapping round for closed subpaths).
  std::vector<Point> vertices_;
  std::vector<std::uint8_t> smooth_;
  std::vector<Point> directions_;
  std::vector<double> lengths_;
  // The unit directions an open subpath starts and ends in, for its caps.
  Point startTangent_;
  Point endTangent_;
};

}  // namespace tessaline
