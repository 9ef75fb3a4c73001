#include "platform/path.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <numbers>
#include <utility>

namespace tessaline {

void Path::moveTo(Point p) {
  verbs_.push_back(PathVerb::Move);
  points_.push_back(p);
  current_ = p;
  subpathStart_ = p;
}

void Path::lineTo(Point p) {
  if (!current_) return;
  verbs_.push_back(PathVerb::Line);
  points_.push_back(p);
  current_ = p;
}

void Path::quadTo(Point control, Point end) {
  if (!current_) return;
  verbs_.push_back(PathVerb::Quad);
  points_.push_back(control);
  points_.push_back(end);
  current_ = end;
}

void Path::cubicTo(Point control1, Point control2, Point end) {
  if (!current_) return;
  verbs_.push_back(PathVerb::Cubic);
  points_.push_back(control1);
  points_.push_back(control2);
  points_.push_back(end);
  current_ = end;
}

void Path::close() {
  if (!current_) return;
  verbs_.push_back(PathVerb::Close);
  current_ = subpathStart_;
}

void Path::addRelativeArc(Point center, double radius, double startAngle, double delta,
                          const AffineTransform& transform) {
  auto pointAt = [&](double angle) {
    return transform.apply(
        {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)});
  };
  const Point start = pointAt(startAngle);
  if (current_) {
    lineTo(start);
  } else {
    moveTo(start);
  }
  if (delta == 0 || !std::isfinite(delta)) return;

  // At most a quarter turn per cubic keeps the radial error below 3e-4 of the radius. The small
  // slack stops a sweep that is a quarter turn plus rounding noise from splitting in two.
  constexpr double kQuarterTurn = std::numbers::pi / 2;
  const double quarters = std::ceil(std::fabs(delta) / kQuarterTurn - 1e-9);
  const int segments = std::max(1, static_cast<int>(quarters));
  const double step = delta / segments;
  // Control points sit on the tangents at distance k·radius; k = 4/3·tan(θ/4) makes the cubic
  // meet the circle at the midpoint of the segment as well as at both ends. A negative step gives
  // a negative k, which turns the tangents around with the direction of travel.
  const double k = 4.0 / 3.0 * std::tan(step / 4);
  for (int i = 0; i < segments; ++i) {
    const double a0 = startAngle + step * i;
    // The last segment ends exactly at startAngle + delta, not at an accumulated sum.
    const double a1 = i + 1 == segments ? startAngle + delta : startAngle + step * (i + 1);
    const double c0 = std::cos(a0), s0 = std::sin(a0);
    const double c1 = std::cos(a1), s1 = std::sin(a1);
    const Point control1 =
        transform.apply({center.x + radius * (c0 - k * s0), center.y + radius * (s0 + k * c0)});
    const Point control2 =
        transform.apply({center.x + radius * (c1 + k * s1), center.y + radius * (s1 - k * c1)});
    cubicTo(control1, control2, pointAt(a1));
  }
}

std::optional<Path> Path::transformed(const AffineTransform& transform) const& {
  return Path(*this).transformed(transform);
}

std::optional<Path> Path::transformed(const AffineTransform& transform) && {
  for (Point& p : points_) {
    p = transform.apply(p);
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return std::nullopt;
  }
  if (current_) current_ = transform.apply(*current_);
  subpathStart_ = transform.apply(subpathStart_);
  return std::move(*this);
}

void Path::reserve(std::size_t verbs, std::size_t points) {
  verbs_.reserve(verbs);
  points_.reserve(points);
}

namespace {

void appendNumber(std::string& out, double value, int precision) {
  char buffer[64];
  if (precision > 0) {
    const double scale = std::pow(10.0, precision);
    value = std::round(value * scale) / scale;
  }
  if (value == 0) value = 0;  // print -0 as 0
  auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  out.append(buffer, result.ptr);
}

char verbLetter(PathVerb verb) {
  switch (verb) {
    case PathVerb::Move:
      return 'M';
    case PathVerb::Line:
      return 'L';
    case PathVerb::Quad:
      return 'Q';
    case PathVerb::Cubic:
      return 'C';
    case PathVerb::Close:
      return 'Z';
  }
  return '?';
}

}  // namespace

std::string Path::dump(int precision) const {
  std::string out;
  forEach([&](const PathElement& element) {
    if (!out.empty()) out += ' ';
    out += verbLetter(element.verb);
    for (const Point& p : element.points) {
      out += ' ';
      appendNumber(out, p.x, precision);
      out += ' ';
      appendNumber(out, p.y, precision);
    }
  });
  return out;
}

namespace {

// Control-point distance of a cubic quarter circle of unit radius: 4/3·tan(π/8).
constexpr double kQuarterCircleK = 0.5522847498307936;

// Rectangles with a negative width or height describe the same area from the other corner.
Rect standardized(const Rect& rect) {
  Rect r = rect;
  if (r.width < 0) {
    r.x += r.width;
    r.width = -r.width;
  }
  if (r.height < 0) {
    r.y += r.height;
    r.height = -r.height;
  }
  return r;
}

// A quarter turn of the ellipse with radii (rx, ry) around `center`, from the unit direction
// (ux, uy) to the direction a quarter turn further toward increasing angle, (-uy, ux).
void quarterArc(Path& path, Point center, double rx, double ry, double ux, double uy) {
  const double vx = -uy, vy = ux;
  const double k = kQuarterCircleK;
  path.cubicTo({center.x + rx * (ux + k * vx), center.y + ry * (uy + k * vy)},
               {center.x + rx * (vx + k * ux), center.y + ry * (vy + k * uy)},
               {center.x + rx * vx, center.y + ry * vy});
}

}  // namespace

Path makeOvalPath(const Rect& rect) {
  const Rect r = standardized(rect);
  const double rx = r.width / 2, ry = r.height / 2;
  const Point center{r.x + rx, r.y + ry};
  // Starts at the right-most point and runs through increasing angle (toward +y first), the
  // direction of the platform's oval.
  Path path;
  path.moveTo({center.x + rx, center.y});
  quarterArc(path, center, rx, ry, 1, 0);
  quarterArc(path, center, rx, ry, 0, 1);
  quarterArc(path, center, rx, ry, -1, 0);
  quarterArc(path, center, rx, ry, 0, -1);
  path.close();
  return path;
}

Path makeRoundedRectPath(const Rect& rect, double cornerRadius) {
  const Rect r = standardized(rect);
  const double left = r.x, top = r.y, right = r.x + r.width, bottom = r.y + r.height;
  Path path;
  // `!(radius > 0)` also catches a NaN radius.
  const double radius = std::min(cornerRadius, std::min(r.width, r.height) / 2);
  if (!(radius > 0)) {
    path.moveTo({left, top});
    path.lineTo({right, top});
    path.lineTo({right, bottom});
    path.lineTo({left, bottom});
    path.close();
    return path;
  }
  // Clockwise on screen (increasing angle), starting where the top edge leaves the top-left
  // corner, like the platform's rounded rectangle.
  path.moveTo({left + radius, top});
  path.lineTo({right - radius, top});
  quarterArc(path, {right - radius, top + radius}, radius, radius, 0, -1);
  path.lineTo({right, bottom - radius});
  quarterArc(path, {right - radius, bottom - radius}, radius, radius, 1, 0);
  path.lineTo({left + radius, bottom});
  quarterArc(path, {left + radius, bottom - radius}, radius, radius, 0, 1);
  path.lineTo({left, top + radius});
  quarterArc(path, {left + radius, top + radius}, radius, radius, -1, 0);
  path.close();
  return path;
}

}  // namespace tessaline
