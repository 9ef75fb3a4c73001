#include "platform/path.h"

#include <charconv>
#include <cmath>
#include <cstdio>

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

std::optional<Path> Path::transformed(const AffineTransform& transform) const {
  Path copy = *this;
  for (Point& p : copy.points_) {
    p = transform.apply(p);
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) return std::nullopt;
  }
  if (copy.current_) copy.current_ = transform.apply(*copy.current_);
  copy.subpathStart_ = transform.apply(copy.subpathStart_);
  return copy;
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
    case PathVerb::Move: return 'M';
    case PathVerb::Line: return 'L';
    case PathVerb::Quad: return 'Q';
    case PathVerb::Cubic: return 'C';
    case PathVerb::Close: return 'Z';
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

}  // namespace tessaline
