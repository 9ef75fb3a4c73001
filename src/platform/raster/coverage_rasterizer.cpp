#include "platform/raster/coverage_rasterizer.h"

#include <algorithm>
#include <climits>
#include <cmath>

#include "platform/raster/curve_flattener.h"

namespace tessaline {
namespace {

constexpr int kOne = 256;  // 1 px in the 24.8 fixed point of the cells

// Coordinates handed here are clipped to the canvas, so they are small and not negative.
int toFixed(double v) {
  return static_cast<int>(v * kOne + 0.5);
}

// Brings a coordinate within ±kCoordinateLimit, where differences cannot overflow; false for NaN.
bool tame(double& v) {
  if (std::isnan(v)) return false;
  v = std::clamp(v, -kCoordinateLimit, kCoordinateLimit);
  return true;
}

}  // namespace

CoverageRasterizer::CoverageRasterizer(int width, int height)
    : width_(std::max(width, 0)),
      height_(std::max(height, 0)),
      stride_(width_ + 2),
      words_((stride_ + 63) / 64),
      cells_(static_cast<std::size_t>(stride_) * kBandRows, 0),
      touched_(static_cast<std::size_t>(words_) * kBandRows, 0),
      coverage_(static_cast<std::size_t>(stride_), 0) {}

void CoverageRasterizer::reset() {
  edges_.clear();
  minRow_ = INT_MAX;
  maxRow_ = -1;
  minCol_ = INT_MAX;
  maxCol_ = -1;
  clippedRight_ = false;
}

void CoverageRasterizer::begin(const PixelBox& box) {
  box_ = box.intersected({0, 0, width_, height_});
  reset();
}

PixelBox CoverageRasterizer::bounds() const {
  if (edges_.empty()) return {};
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
  // Paths arrive finite, but a stroke outline of an absurd width can overflow; such an edge is
  // pinned far outside the canvas or, if it has no direction at all, dropped.
  if (!tame(a.x) || !tame(a.y) || !tame(b.x) || !tame(b.y)) return;
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
  if (p.x >= bx0 && q.x >= bx0 && p.x <= bx1 && q.x <= bx1) {
    addFixedEdge(toFixed(p.x), toFixed(p.y), toFixed(q.x), toFixed(q.y));
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
      addFixedEdge(toFixed(std::clamp(u.x, bx0, bx1)), toFixed(u.y),
                   toFixed(std::clamp(v.x, bx0, bx1)), toFixed(v.y));
    }
  }
}

void CoverageRasterizer::addVertical(int x, double y0, double y1) {
  addFixedEdge(x * kOne, toFixed(y0), x * kOne, toFixed(y1));
}

void CoverageRasterizer::addFixedEdge(int x0, int y0, int x1, int y1) {
  if (y0 == y1) return;
  const Edge edge{x0, y0, x1, y1};
  edges_.push_back(edge);
  minRow_ = std::min(minRow_, edge.top() / kOne);
  maxRow_ = std::max(maxRow_, (edge.bottom() - 1) / kOne);
  minCol_ = std::min(minCol_, std::min(x0, x1) / kOne);
  maxCol_ = std::max(maxCol_, std::max(x0, x1) / kOne + 1);
}

void CoverageRasterizer::bucketEdges(int bands) {
  bandStart_.assign(static_cast<std::size_t>(bands) + 1, 0);
  for (const Edge& edge : edges_) ++bandStart_[(edge.top() / kOne - minRow_) / kBandRows + 1];
  for (int band = 0; band < bands; ++band) bandStart_[band + 1] += bandStart_[band];
  order_.resize(edges_.size());
  active_.assign(bandStart_.begin(), bandStart_.end() - 1);  // next free slot of each band
  for (std::uint32_t i = 0; i < edges_.size(); ++i) {
    order_[active_[(edges_[i].top() / kOne - minRow_) / kBandRows]++] = i;
  }
}

void CoverageRasterizer::renderEdge(const Edge& edge, int firstRow, int endRow) {
  const int bandTop = firstRow * kOne, bandBottom = endRow * kOne;
  const int top = std::max(edge.top(), bandTop);
  const int bottom = std::min(edge.bottom(), bandBottom);
  if (top >= bottom) return;
  // x at a row border, rounded to the nearest 1/256 px; x never goes below 0.
  const double slope = static_cast<double>(edge.x1 - edge.x0) / (edge.y1 - edge.y0);
  const double inverseSlope =
      edge.x1 == edge.x0 ? 0 : static_cast<double>(edge.y1 - edge.y0) / (edge.x1 - edge.x0);
  const auto xAt = [&](int y) {
    if (y == edge.y0) return edge.x0;
    if (y == edge.y1) return edge.x1;
    return static_cast<int>(edge.x0 + (y - edge.y0) * slope + 0.5);
  };
  if (edge.y0 < edge.y1) {
    int y = top, x = xAt(top);
    for (int row = top / kOne;; ++row) {
      const int yEnd = std::min(bottom, (row + 1) * kOne);
      const int xEnd = xAt(yEnd);
      addRowPiece(row - firstRow, x, y - row * kOne, xEnd, yEnd - row * kOne, inverseSlope);
      if (yEnd == bottom) return;
      y = yEnd;
      x = xEnd;
    }
  } else {
    int y = bottom, x = xAt(bottom);
    for (int row = (bottom - 1) / kOne;; --row) {
      const int yEnd = std::max(top, row * kOne);
      const int xEnd = xAt(yEnd);
      addRowPiece(row - firstRow, x, y - row * kOne, xEnd, yEnd - row * kOne, inverseSlope);
      if (yEnd == top) return;
      y = yEnd;
      x = xEnd;
    }
  }
}

// One piece of an edge inside a row: from (xa, ya) to (xb, yb), x in fixed point across the
// canvas, y in fixed point within the row (0...256); `slope` is the edge's dy/dx.
void CoverageRasterizer::addRowPiece(int bandRow, int xa, int ya, int xb, int yb, double slope) {
  const int colA = xa / kOne, colB = xb / kOne;
  if (colA == colB) {
    const int left = colA * kOne;
    addCell(bandRow, colA, yb - ya, (xa - left) + (xb - left));
    return;
  }
  // Walk the cells the piece crosses, finding the height at each cell border; the heights always
  // sum to yb - ya, so the cover of the row is exact whatever the rounding of the borders.
  int x = xa, y = ya;
  const int step = xb > xa ? 1 : -1;
  for (int col = colA;; col += step) {
    const int left = col * kOne;
    if (col == colB) {
      addCell(bandRow, col, yb - y, (x - left) + (xb - left));
      return;
    }
    const int border = step > 0 ? left + kOne : left;
    const int yBorder = std::clamp(static_cast<int>(ya + (border - xa) * slope + 0.5),
                                   std::min(ya, yb), std::max(ya, yb));
    addCell(bandRow, col, yBorder - y, (x - left) + (border - left));
    x = border;
    y = yBorder;
  }
}

}  // namespace tessaline
