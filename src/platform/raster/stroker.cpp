#include "platform/raster/stroker.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "platform/raster/curve_flattener.h"

namespace tessaline {
namespace {

// Points closer than this are one point: a direction measured over a shorter distance would be
// mostly rounding noise.
constexpr double kSamePointDistance = 1e-6;

// Whether two points lie within kSamePointDistance of each other. Consecutive points of a path
// are almost always farther apart along an axis than that, which settles it without the
// distance itself (never less than either coordinate's difference).
bool samePoint(Point a, Point b) {
  const double dx = a.x - b.x, dy = a.y - b.y;
  if (std::abs(dx) > kSamePointDistance || std::abs(dy) > kSamePointDistance) return false;
  return std::hypot(dx, dy) <= kSamePointDistance;
}

// Directions whose sines differ by less than this lie on one line, to well below a pixel over
// any length on the canvas.
constexpr double kCollinearSine = 1e-9;

// A round join or cap never uses more chords than this per full turn; only strokes thousands of
// pixels wide reach it.
constexpr int kMaxArcSegmentsPerTurn = 1024;

Point add(Point a, Point b) {
  return {a.x + b.x, a.y + b.y};
}
Point sub(Point a, Point b) {
  return {a.x - b.x, a.y - b.y};
}
Point scale(Point a, double s) {
  return {a.x * s, a.y * s};
}
// The left normal: the direction turned a quarter toward positive y.
Point normal(Point d) {
  return {-d.y, d.x};
}

}  // namespace

void Stroker::stroke(const FlatPath& path, const StrokeStyle& style, FlatPath& out) {
  out.clear();
  halfWidth_ = style.width / 2;
  miterLimit_ = style.miterLimit;
  cap_ = style.cap;
  join_ = style.join;
  // A chord spanning angle a around radius r strays r·(1 - cos(a/2)) from the arc.
  const double minStep = 2 * std::numbers::pi / kMaxArcSegmentsPerTurn;
  arcStep_ = halfWidth_ > kFlatteningTolerance
                 ? std::max(minStep, 2 * std::acos(1 - kFlatteningTolerance / halfWidth_))
                 : std::numbers::pi / 2;
  // Shy of the exact bound by far more than the rounding of tan and atan2, so a turn it admits
  // is one that addArc would give no inner point.
  oneChordTangent_ = arcStep_ < std::numbers::pi / 2 ? std::tan(arcStep_) * (1 - 1e-9)
                                                     : std::numeric_limits<double>::infinity();
  for (const FlatContour& contour : path.contours()) strokeContour(path, contour, out);
}

void Stroker::strokeContour(const FlatPath& path, const FlatContour& contour, FlatPath& out) {
  vertices_.clear();
  smooth_.clear();
  for (std::uint32_t i = contour.begin; i < contour.end; ++i) {
    const Point p = path.points()[i];
    const bool smooth = path.smooth()[i] != 0;
    if (!vertices_.empty() && samePoint(p, vertices_.back())) {
      smooth_.back() = smooth_.back() && smooth;
      continue;
    }
    vertices_.push_back(p);
    smooth_.push_back(smooth);
  }
  if (contour.closed && vertices_.size() > 1 && samePoint(vertices_.back(), vertices_.front())) {
    vertices_.pop_back();
    smooth_.pop_back();
  }

  const std::size_t n = vertices_.size();
  if (n == 0) return;
  if (n == 1) {
    const bool hasSegment = contour.end - contour.begin > 1 || contour.closed;
    if (hasSegment && cap_ == LineCap::Round) addDot(vertices_[0], out);
    return;
  }

  const std::size_t segments = contour.closed ? n : n - 1;
  directions_.resize(segments);
  lengths_.resize(segments);
  for (std::size_t i = 0; i < segments; ++i) {
    const Point d = sub(vertices_[(i + 1) % n], vertices_[i]);
    const double length = std::hypot(d.x, d.y);
    directions_[i] = scale(d, 1 / length);
    lengths_[i] = length;
  }

  const auto unit = [](Point v, Point fallback) {
    const double length = std::hypot(v.x, v.y);
    return length > 0 ? scale(v, 1 / length) : fallback;
  };
  startTangent_ = unit(contour.startTangent, directions_.front());
  endTangent_ = unit(contour.endTangent, directions_.back());

  if (contour.closed) {
    addClosedSide(true, out);
    // A closed subpath that never leaves one line turns back at its ends, so one side already
    // runs all the way round; the other would only cover the same pixels a second time.
    if (!collinear()) addClosedSide(false, out);
  } else {
    addOpenSide(true, out);
    addOpenSide(false, out);
    out.close();
  }
}

bool Stroker::collinear() const {
  const Point d0 = directions_[0];
  for (const Point& d : directions_) {
    if (std::abs(d0.x * d.y - d0.y * d.x) > kCollinearSine) return false;
  }
  return true;
}

// The left offset of a closed subpath, forward or (the right side) backward, as one contour.
void Stroker::addClosedSide(bool forward, FlatPath& out) {
  const std::size_t n = vertices_.size();
  for (std::size_t k = 0; k < n; ++k) {
    const std::size_t i = forward ? k : n - 1 - k;
    // Segments before and after vertex i, in walking order.
    const std::size_t before = forward ? (i + n - 1) % n : i;
    const std::size_t after = forward ? i : (i + n - 1) % n;
    const Point d1 = forward ? directions_[before] : scale(directions_[before], -1);
    const Point d2 = forward ? directions_[after] : scale(directions_[after], -1);
    if (k == 0) out.moveTo(add(vertices_[i], scale(normal(d1), halfWidth_)));
    addJoin(vertices_[i], d1, d2, lengths_[before], lengths_[after], smooth_[i] != 0, out);
  }
  out.close();
}

// Half of the contour of an open subpath: the left offset from one end to the other, then the
// cap at the far end. Called forward and then backward, which closes the loop. Each end's cap
// faces along `tangents_` (the curve's tangent there, or the end segment), and the offsets run
// up to the cap's line: where a curve ends, its last chord turns away from that line.
void Stroker::addOpenSide(bool forward, FlatPath& out) {
  const std::size_t n = vertices_.size();
  const auto vertex = [&](std::size_t k) { return vertices_[forward ? k : n - 1 - k]; };
  const auto direction = [&](std::size_t k) {  // the k-th segment in walking order
    return forward ? directions_[k] : scale(directions_[n - 2 - k], -1);
  };
  const auto length = [&](std::size_t k) { return lengths_[forward ? k : n - 2 - k]; };
  // The walk's own directions at its start and end.
  const Point startTangent = forward ? startTangent_ : scale(endTangent_, -1);
  const Point endTangent = forward ? endTangent_ : scale(startTangent_, -1);

  const Point start = capCorner(vertex(0), direction(0), startTangent);
  if (forward) {
    out.moveTo(start);
  } else {
    out.lineTo(start);
  }
  for (std::size_t k = 1; k + 1 < n; ++k) {
    addJoin(vertex(k), direction(k - 1), direction(k), length(k - 1), length(k),
            smooth_[forward ? k : n - 1 - k] != 0, out);
  }
  out.lineTo(capCorner(vertex(n - 1), direction(n - 2), endTangent));
  addCap(vertex(n - 1), endTangent, out);
}

// Where the left offset of a segment running in direction `d` meets the line of a cap at its
// end point `p` that faces along `t` (unit vectors): p + normal(t)·halfWidth when d = t.
Point Stroker::capCorner(Point p, Point d, Point t) const {
  const Point corner = add(p, scale(normal(d), halfWidth_));
  const double along = d.x * t.x + d.y * t.y;
  // A chord and its curve's tangent differ by half the chord's angle, a few degrees; anything
  // far off is not worth leaning the corner for.
  if (along < 0.5) return add(p, scale(normal(t), halfWidth_));
  const Point n = normal(d);
  const double shift = -halfWidth_ * (n.x * t.x + n.y * t.y) / along;
  return add(corner, scale(d, shift));
}

// Emits the offset outline around vertex `p` where the walk turns from direction d1 to d2 (unit
// vectors), starting at the end of the incoming segment's offset and ending at the start of the
// outgoing one's.
void Stroker::addJoin(Point p, Point d1, Point d2, double length1, double length2, bool smooth,
                      FlatPath& out) {
  const Point n1 = scale(normal(d1), halfWidth_);
  const Point n2 = scale(normal(d2), halfWidth_);
  const double cross = d1.x * d2.y - d1.y * d2.x;
  const double dot = d1.x * d2.x + d1.y * d2.y;

  if (cross == 0 && dot > 0) {  // straight on
    out.lineTo(add(p, n1));
    return;
  }
  if (cross > 0) {
    // Turning toward this side: the inner side of the corner. The two offsets cross a distance
    // a = halfWidth·tan(φ/2) = halfWidth·sin φ / (1 + cos φ) before and after the corner (φ the
    // turning angle), and the crossing is the outline's corner: nothing overlaps there, so no
    // pixel counts an overlap twice. If a reaches past the middle of a segment, the offsets of
    // its two ends cross over and wind a sliver the wrong way, about (a - length/2)·sin φ wide;
    // up to the flattening tolerance that is invisible (it happens all along a curve exactly as
    // round as the stroke is wide). Beyond that the outline goes round through the vertex
    // instead, which covers both segments' bodies however short they are.
    const double overshoot = halfWidth_ * cross / (1 + dot) - 0.5 * std::min(length1, length2);
    if (1 + dot > 0 && overshoot * cross <= kFlatteningTolerance) {
      out.lineTo(add(p, scale(add(n1, n2), 1 / (1 + dot))));
      return;
    }
    out.lineTo(add(p, n1));
    out.lineTo(p);
    out.lineTo(add(p, n2));
    return;
  }

  // The outer side of the corner.
  const LineJoin join = smooth ? LineJoin::Round : join_;
  if (join == LineJoin::Miter) {
    // 1/sin(θ/2) <= limit with θ = π - φ is 2 <= limit²·(1 + cos φ).
    if (miterLimit_ * miterLimit_ * (1 + dot) >= 2) {
      out.lineTo(add(p, scale(add(n1, n2), 1 / (1 + dot))));
      return;
    }
  }
  out.lineTo(add(p, n1));
  // The arc turns with the path, clockwise here; for an exact U-turn the cross product is a
  // zero of either sign, and the arc must still go round the front of the corner.
  // Along a flattened curve most turns are smaller than one chord of the arc, which then has no
  // inner point; the tangent of the turn tells so without its angle.
  const bool oneChord = dot > 0 && std::abs(cross) <= dot * oneChordTangent_;
  if (join == LineJoin::Round && !oneChord) {
    addArc(p, n1, -std::atan2(std::abs(cross), dot), out);
  }
  out.lineTo(add(p, n2));
}

// Emits the cap at end point `p` of a path arriving in direction `t`, between the outline's
// corners on either side of p (see capCorner), which the caller emits.
void Stroker::addCap(Point p, Point t, FlatPath& out) {
  const Point n = scale(normal(t), halfWidth_);
  switch (cap_) {
    case LineCap::Butt:
      break;
    case LineCap::Square: {
      const Point ahead = scale(t, halfWidth_);
      out.lineTo(add(add(p, n), ahead));
      out.lineTo(add(sub(p, n), ahead));
      break;
    }
    case LineCap::Round:
      out.lineTo(add(p, n));
      addArc(p, n, -std::numbers::pi, out);
      out.lineTo(sub(p, n));
      break;
  }
}

// Emits the inner points of the arc around `center` that starts at center + from and turns by
// `angle` (negative: from positive y toward positive x); the end points are the caller's.
void Stroker::addArc(Point center, Point from, double angle, FlatPath& out) {
  const int steps = static_cast<int>(std::ceil(std::abs(angle) / arcStep_));
  if (steps < 2) return;
  const double step = angle / steps;
  const double c = std::cos(step), s = std::sin(step);
  Point v = from;
  for (int i = 1; i < steps; ++i) {
    v = {v.x * c - v.y * s, v.x * s + v.y * c};
    out.lineTo(add(center, v));
  }
}

void Stroker::addDot(Point center, FlatPath& out) {
  const Point from{halfWidth_, 0};
  out.moveTo(add(center, from));
  addArc(center, from, 2 * std::numbers::pi, out);
  out.close();
}

}  // namespace tessaline
