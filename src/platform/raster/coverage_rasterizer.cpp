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

// The pixel row or column of a fixed-point coordinate. Stored coordinates are clipped to the
// canvas and never negative, so this is a plain shift rather than a signed division.
int pixelOf(int fixed) {
  return static_cast<int>(static_cast<unsigned>(fixed) / kOne);
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
      stride_((width_ + 2 + kGroup - 1) / kGroup * kGroup),
      words_((stride_ / kGroup + 63) / 64),
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
  // A point starts at most one edge, or three where clipping cuts it; room for one each spares
  // the edge list its growth a doubling at a time. Still doubling when it must grow, so that
  // many small paths added to one shape stay linear.
  if (const std::size_t wanted = edges_.size() + points.size(); wanted > edges_.capacity()) {
    edges_.reserve(std::max(wanted, 2 * edges_.capacity()));
  }
  for (const FlatContour& contour : path.contours()) {
    if (contour.end - contour.begin < 2) continue;
    const BoxedPoint first = boxed(points[contour.begin]);
    BoxedPoint previous = first;
    for (std::uint32_t i = contour.begin + 1; i < contour.end; ++i) {
      const BoxedPoint current = boxed(points[i]);
      addBoxedEdge(previous, current);
      previous = current;
    }
    addBoxedEdge(previous, first);
  }
}

CoverageRasterizer::BoxedPoint CoverageRasterizer::boxed(Point p) const {
  // NaN fails every comparison and counts as outside.
  const bool inside = p.x >= box_.x0 && p.x <= box_.x1 && p.y >= box_.y0 && p.y <= box_.y1;
  if (!inside) return {p, 0, 0, false, false};
  return {p, toFixed(p.x), toFixed(p.y), true, p.x < box_.x1};
}

void CoverageRasterizer::addBoxedEdge(const BoxedPoint& a, const BoxedPoint& b) {
  // Most edges lie wholly inside the box and need none of the clipping (which would leave them as
  // they are); an edge along the box's right side covers nothing inside it.
  if (a.inside && b.inside && (a.leftOfRight || b.leftOfRight)) {
    addFixedEdge(a.x, a.y, b.x, b.y);
    return;
  }
  addClippedLine(a.point, b.point);
}

void CoverageRasterizer::addLine(Point a, Point b) {
  addBoxedEdge(boxed(a), boxed(b));
}

void CoverageRasterizer::addClippedLine(Point a, Point b) {
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
  // The slope is the same from either end.
  const double dxdy = static_cast<double>(x1 - x0) / (y1 - y0);
  const Edge edge = y0 < y1 ? Edge{x0, y0, x1, y1, 1, dxdy} : Edge{x1, y1, x0, y0, -1, dxdy};
  edges_.push_back(edge);
  minRow_ = std::min(minRow_, pixelOf(edge.yTop));
  maxRow_ = std::max(maxRow_, pixelOf(edge.yBottom - 1));
  minCol_ = std::min(minCol_, pixelOf(std::min(x0, x1)));
  maxCol_ = std::max(maxCol_, pixelOf(std::max(x0, x1)) + 1);
}

void CoverageRasterizer::bucketEdges(int bands) {
  bandStart_.assign(static_cast<std::size_t>(bands) + 1, 0);
  for (const Edge& edge : edges_) ++bandStart_[(pixelOf(edge.yTop) - minRow_) / kBandRows + 1];
  for (int band = 0; band < bands; ++band) bandStart_[band + 1] += bandStart_[band];
  order_.resize(edges_.size());
  active_.reserve(edges_.size());
  active_.assign(bandStart_.begin(), bandStart_.end() - 1);  // next free slot of each band
  for (std::uint32_t i = 0; i < edges_.size(); ++i) {
    order_[active_[(pixelOf(edges_[i].yTop) - minRow_) / kBandRows]++] = i;
  }
}

void CoverageRasterizer::renderBand(int band, int firstRow, int endRow) {
  for (std::uint32_t i = bandStart_[band]; i < bandStart_[band + 1]; ++i) {
    active_.push_back(order_[i]);
  }
  std::size_t kept = 0;
  for (std::uint32_t index : active_) {
    const Edge& edge = edges_[index];
    renderEdge(edge, firstRow, endRow);
    if (edge.yBottom > endRow * kOne) active_[kept++] = index;
  }
  active_.resize(kept);
}

// Walks an edge from its top to its bottom whichever way it points; `sign` restores its
// direction, which is all that the cells need of it.
void CoverageRasterizer::renderEdge(const Edge& edge, int firstRow, int endRow) {
  const int sign = edge.sign;
  const int yTop = edge.yTop, yBottom = edge.yBottom, xTop = edge.xTop, xBottom = edge.xBottom;
  const int top = std::max(yTop, firstRow * kOne);
  const int bottom = std::min(yBottom, endRow * kOne);
  if (top >= bottom) return;
  const double dxdy = edge.dxdy;
  // x where the edge meets height y, rounded to the nearest 1/256 px (never below 0).
  const auto xAt = [&](int y) { return static_cast<int>(xTop + (y - yTop) * dxdy + 0.5); };
  int row = pixelOf(top);
  const int lastRow = pixelOf(bottom - 1);
  std::uint32_t* cells = cells_.data() + static_cast<std::size_t>(row - firstRow) * stride_;
  std::uint64_t* bits = touched_.data() + static_cast<std::size_t>(row - firstRow) * words_;
  int y = top - row * kOne;  // within the row
  if (dxdy == 0) {
    // A vertical edge (the sides of rectangles, lines along an axis) leaves the same share in the
    // same cell of every row it crosses whole; only its first and last rows may be partial.
    const int col = pixelOf(xTop);
    const int fxSum = 2 * (xTop - col * kOne);
    for (; row < lastRow; ++row) {
      addCell(cells, bits, col, sign * (kOne - y), fxSum);
      cells += stride_;
      bits += words_;
      y = 0;
    }
    addCell(cells, bits, col, sign * (bottom - row * kOne - y), fxSum);
    return;
  }
  int x = top == yTop ? xTop : xAt(top);
  // The piece of the edge inside the current row, from (x, y) down to (xEnd, yEnd).
  const auto addPiece = [&](int xEnd, int yEnd) {
    const int col = pixelOf(x);
    if (col == pixelOf(xEnd)) {
      addCell(cells, bits, col, sign * (yEnd - y), (x - col * kOne) + (xEnd - col * kOne));
    } else {
      addRowPiece(cells, bits, x, y, xEnd, yEnd, sign, dxdy);
    }
  };
  // Every row but the last is crossed to its bottom, where the edge does not end.
  for (; row < lastRow; ++row) {
    const int xEnd = xAt((row + 1) * kOne);
    addPiece(xEnd, kOne);
    cells += stride_;
    bits += words_;
    y = 0;
    x = xEnd;
  }
  addPiece(bottom == yBottom ? xBottom : xAt(bottom), bottom - row * kOne);
}

// A piece from (xa, ya) down to (xb, yb) inside one row, x in fixed point across the canvas and
// y within the row (0...256), crossing at least one cell border. The heights found at the
// borders always sum to yb - ya, so the row's cover is exact whatever their rounding.
void CoverageRasterizer::addRowPiece(std::uint32_t* cells, std::uint64_t* bits, int xa, int ya,
                                     int xb, int yb, int sign, double dxdy) {
  // Only pieces that cross a border need the inverse slope; most rows of most edges stay in one
  // cell and never pay for this division. A piece crossing a border is never vertical.
  const double dydx = 1 / dxdy;
  const int step = xb > xa ? 1 : -1;
  const int colA = pixelOf(xa), colB = pixelOf(xb);
  // Every cell from the first to one past the last receives something, so their groups are
  // marked at once rather than cell by cell.
  markColumns(bits, std::min(colA, colB), std::max(colA, colB) + 1);
  int x = xa, y = ya;
  for (int col = colA;; col += step) {
    const int left = col * kOne;
    if (col == colB) {
      accumulateCell(cells, col, sign * (yb - y), (x - left) + (xb - left));
      return;
    }
    const int border = step > 0 ? left + kOne : left;
    const int yBorder = std::clamp(static_cast<int>(ya + (border - xa) * dydx + 0.5), y, yb);
    accumulateCell(cells, col, sign * (yBorder - y), (x - left) + (border - left));
    x = border;
    y = yBorder;
  }
}

}  // namespace tessaline
