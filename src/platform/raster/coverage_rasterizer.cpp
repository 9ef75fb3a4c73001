#include "platform/raster/coverage_rasterizer.h"

#include <algorithm>
#include <climits>
#include <cmath>

namespace tessaline {
namespace {

constexpr int kOne = 256;  // 1 px in the 24.8 fixed point of the cells

int toFixed(double v) {
  return static_cast<int>(std::lrint(v * kOne));
}

// n / d rounded to nearest (halves away from zero), d != 0. Rounding rather than truncating keeps
// the interpolated crossings unbiased.
int divideRounded(std::int64_t n, std::int64_t d) {
  if (d < 0) {
    n = -n;
    d = -d;
  }
  return static_cast<int>(n >= 0 ? (n + d / 2) / d : -((d / 2 - n) / d));
}

}  // namespace

CoverageRasterizer::CoverageRasterizer(int width, int height)
    : width_(std::max(width, 0)),
      height_(std::max(height, 0)),
      stride_(width_ + 2),
      words_((stride_ + 63) / 64),
      cells_(static_cast<std::size_t>(stride_) * height_, 0),
      touched_(static_cast<std::size_t>(words_) * height_, 0),
      coverage_(static_cast<std::size_t>(stride_), 0) {}

void CoverageRasterizer::begin(const PixelBox& box) {
  // Anything left behind by an unswept shape is discarded first.
  if (maxRow_ >= minRow_) {
    struct Discard {
      void solid(int, int, int, std::uint8_t) {}
      void varying(int, int, int, const std::uint8_t*) {}
    } discard;
    sweepRows<false>(discard);
  }
  box_ = box.intersected({0, 0, width_, height_});
  minRow_ = INT_MAX;
  maxRow_ = -1;
  minCol_ = INT_MAX;
  maxCol_ = -1;
  clippedRight_ = false;
}

PixelBox CoverageRasterizer::bounds() const {
  if (maxRow_ < minRow_ || maxCol_ < minCol_) return {};
  const int right = clippedRight_ ? box_.x1 : std::min(maxCol_ + 1, box_.x1);
  return {minCol_, minRow_, right, maxRow_ + 1};
}

void CoverageRasterizer::addPath(const FlatPath& path) {
  const std::vector<Point>& points = path.points();
  for (const FlatContour& contour : path.contours()) {
    if (contour.end - contour.begin < 2) continue;
    for (std::uint32_t i = contour.begin + 1; i < contour.end; ++i) {
      addLine(points[i - 1], points[i]);
    }
    addLine(points[contour.end - 1], points[contour.begin]);
  }
}

void CoverageRasterizer::addLine(Point a, Point b) {
  if (box_.empty() || a.y == b.y) return;
  const double bx0 = box_.x0, bx1 = box_.x1, by0 = box_.y0, by1 = box_.y1;
  if ((a.y <= by0 && b.y <= by0) || (a.y >= by1 && b.y >= by1)) return;
  if (a.x >= bx1 && b.x >= bx1) {
    clippedRight_ = true;
    return;
  }

  // Clip to the rows of the box, keeping the edge's direction.
  const auto xAtY = [&](double y) { return a.x + (y - a.y) * (b.x - a.x) / (b.y - a.y); };
  Point p = a, q = b;
  if (p.y < by0) p = {xAtY(by0), by0};
  if (p.y > by1) p = {xAtY(by1), by1};
  if (q.y < by0) q = {xAtY(by0), by0};
  if (q.y > by1) q = {xAtY(by1), by1};

  // Columns: a piece left of the box still covers every pixel to its right, so it becomes a
  // vertical edge on the box's left side; a piece right of the box affects no pixel inside it.
  if (p.x <= bx0 && q.x <= bx0) {
    addVertical(box_.x0, p.y, q.y);
    return;
  }
  Point pieces[4] = {p};
  int count = 1;
  const auto yAtX = [&](double x) { return p.y + (x - p.x) * (q.y - p.y) / (q.x - p.x); };
  const double first = p.x < q.x ? bx0 : bx1;
  const double second = p.x < q.x ? bx1 : bx0;
  for (double border : {first, second}) {
    if ((p.x < border && q.x > border) || (p.x > border && q.x < border)) {
      pieces[count++] = {border, yAtX(border)};
    }
  }
  pieces[count++] = q;
  for (int i = 0; i + 1 < count; ++i) {
    const Point u = pieces[i], v = pieces[i + 1];
    const double middle = 0.5 * (u.x + v.x);
    if (middle <= bx0) {
      addVertical(box_.x0, u.y, v.y);
    } else if (middle >= bx1) {
      clippedRight_ = true;
    } else {
      addFixedLine(toFixed(std::clamp(u.x, bx0, bx1)), toFixed(u.y),
                   toFixed(std::clamp(v.x, bx0, bx1)), toFixed(v.y));
    }
  }
}

void CoverageRasterizer::addVertical(int x, double y1, double y2) {
  addFixedLine(x * kOne, toFixed(y1), x * kOne, toFixed(y2));
}

void CoverageRasterizer::addFixedLine(int x1, int y1, int x2, int y2) {
  if (y1 == y2) return;
  const std::int64_t dx = x2 - x1;
  const std::int64_t dy = y2 - y1;
  const auto xAt = [&](int y) { return y == y2 ? x2 : x1 + divideRounded((y - y1) * dx, dy); };
  if (y1 < y2) {
    minRow_ = std::min(minRow_, y1 / kOne);
    maxRow_ = std::max(maxRow_, (y2 - 1) / kOne);
    int row = y1 / kOne, y = y1, x = x1;
    for (;;) {
      const int yEnd = std::min(y2, (row + 1) * kOne);
      const int xEnd = dx == 0 ? x1 : xAt(yEnd);
      addRowPiece(row, x, y - row * kOne, xEnd, yEnd - row * kOne);
      if (yEnd == y2) break;
      ++row;
      y = yEnd;
      x = xEnd;
    }
  } else {
    minRow_ = std::min(minRow_, y2 / kOne);
    maxRow_ = std::max(maxRow_, (y1 - 1) / kOne);
    int row = (y1 - 1) / kOne, y = y1, x = x1;
    for (;;) {
      const int yEnd = std::max(y2, row * kOne);
      const int xEnd = dx == 0 ? x1 : xAt(yEnd);
      addRowPiece(row, x, y - row * kOne, xEnd, yEnd - row * kOne);
      if (yEnd == y2) break;
      --row;
      y = yEnd;
      x = xEnd;
    }
  }
}

// One piece of an edge inside a row: from (xa, ya) to (xb, yb), x in fixed point across the
// canvas, y in fixed point within the row (0...256).
void CoverageRasterizer::addRowPiece(int row, int xa, int ya, int xb, int yb) {
  const int colA = xa / kOne, colB = xb / kOne;
  if (colA == colB) {
    const int left = colA * kOne;
    addCell(row, colA, yb - ya, (xa - left) + (xb - left));
    return;
  }
  // Walk the cells the piece crosses, finding the height at each cell border; the heights always
  // sum to yb - ya, so the cover of the row is exact whatever the rounding of the borders.
  const std::int64_t dx = xb - xa;
  const std::int64_t dy = yb - ya;
  int x = xa, y = ya;
  const int step = xb > xa ? 1 : -1;
  for (int col = colA;; col += step) {
    const int left = col * kOne;
    if (col == colB) {
      addCell(row, col, yb - y, (x - left) + (xb - left));
      return;
    }
    const int border = step > 0 ? left + kOne : left;
    const int yBorder = ya + divideRounded((border - xa) * dy, dx);
    addCell(row, col, yBorder - y, (x - left) + (border - left));
    x = border;
    y = yBorder;
  }
}

}  // namespace tessaline
