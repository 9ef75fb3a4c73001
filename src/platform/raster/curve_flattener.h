#pragma once

#include <optional>

#include "platform/geometry_types.h"
#include "platform/path.h"
#include "platform/raster/flat_path.h"

namespace tessaline {

// Largest distance, in pixels, between a curve and the polyline that replaces it. A twentieth of
// a pixel moves an anti-aliased edge by at most 13 of 255 coverage levels, and in practice far
// less: the bound below is reached only where a curve bends hardest.
inline constexpr double kFlatteningTolerance = 0.05;

// A curve never becomes more segments than this, however large it is. Only curves hundreds of
// thousands of pixels across reach it; they then stay within a few pixels of the true curve
// instead of within the tolerance, which is invisible on a small canvas.
inline constexpr int kMaxCurveSegments = 1024;

// Coordinates are clamped into ±kCoordinateLimit before any arithmetic, so sums and differences of
// coordinates can never overflow to infinity. Geometry that far out is never on the canvas.
inline constexpr double kCoordinateLimit = 1e9;

// Number of equal parameter steps that keep a quadratic or cubic Bézier within `tolerance` of its
// chords. The distance between a polynomial curve and its chord over a parameter step h is at most
// h²/8 · max|B''|; for a quadratic |B''| = 2|p0 - 2p1 + p2| and for a cubic
// |B''| <= 6 · max(|p0 - 2p1 + p2|, |p1 - 2p2 + p3|), which gives the square roots below.
int quadSegmentCount(Point p0, Point p1, Point p2, double tolerance);
int cubicSegmentCount(Point p0, Point p1, Point p2, Point p3, double tolerance);

// Replaces the curves of `path` by polylines within kFlatteningTolerance and writes the result to
// `out` (cleared first), one contour per subpath. A segment that follows a close starts a new
// contour at the closed subpath's start, and a close right after a close adds a closed
// single-point contour there, as the platform's path does.
//
// With `cullBox` (for filling), a curve whose control points all lie on the far side of one edge
// of the box becomes its chord: the curve and its chord then differ only by a loop that lies
// inside the curve's convex hull, and such a loop winds zero times around every point of the box.
//
// A contour that begins or ends with a curve records the curve's tangent there (see FlatContour).
//
// Returns false, with `out` empty, when a coordinate is not finite: such a path draws nothing.
bool flattenPath(const Path& path, FlatPath& out, const std::optional<Rect>& cullBox = {});

}  // namespace tessaline
