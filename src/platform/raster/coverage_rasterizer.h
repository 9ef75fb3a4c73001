#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/geometry_types.h"
#include "platform/raster/cell_group_sum.h"
#include "platform/raster/flat_path.h"
#include "platform/raster/pixel_box.h"

namespace tessaline {

// Exact-area anti-aliased scan conversion of polygons into 8-bit coverage, in the manner of the
// classic cell-based "gray" rasterizers. Edges are walked through the pixel cells they cross in
// 24.8 fixed point; each cell collects the signed height of the edge pieces inside it (cover) and
// those heights weighted by where they lie across the cell (area). Summing along a row gives
// every pixel's signed covered area, to which the fill rule is applied.
//
// Edges are first clipped and stored; the sweep then walks the shape in bands of kBandRows rows,
// so the cells of one band stay in the first-level cache and no buffer grows with the canvas.
// The cells of a row are stored densely as a running difference, so that a prefix sum along the
// row yields the covered area directly, and a bit per aligned group of four cells marks the
// groups that hold anything. The sweep sums marked groups four cells at a time (in a vector
// register where there is one, the running area kept there too) and hands each out as it is
// summed; the runs between marked groups have constant coverage and are handed out as solid
// spans without being visited. The sweep clears what it reads, so the buffers are reused from
// shape to shape.
//
// Coverage is exact for every pixel no two edges cross inside; where they do, the fill rule is
// applied to the pixel's summed signed area (as every cell rasterizer does), so overlapping parts
// of one shape count twice there and parts wound in opposite directions cancel. Accumulation
// wraps modulo 2^32, so even-odd stays exact and only a winding number beyond 16383 could be
// misread.
class CoverageRasterizer {
 public:
  static constexpr int kBandRows = 16;

  CoverageRasterizer(int width, int height);

  // Starts a new shape, wanted only inside `box` (which lies within the canvas); drops whatever
  // was added and not swept. Geometry outside the box costs one rejection test per edge.
  void begin(const PixelBox& box);

  // Adds one directed edge, in pixels. Edges of a shape may come in any order but must form
  // closed loops for the result to mean anything.
  void addLine(Point a, Point b);

  // Adds every contour of `path`, each closed back to its first point.
  void addPath(const FlatPath& path);

  // The pixels that can receive non-zero coverage from the edges added so far (empty if none).
  PixelBox bounds() const;

  // Emits the coverage of the shape, row by row from the top and left to right within a row,
  // through `sink.solid(y, x, length, coverage)` for runs of one coverage and
  // `sink.varying(y, x, length, coverages)` for runs that vary per pixel (coverages[0] is pixel
  // x; zeros may occur). Runs of zero coverage are skipped. Leaves the rasterizer empty.
  //
  // A sink that paints may also offer `sink.groupRow(y)`, a value whose `group(x, coverages)`
  // takes the four pixels x...x + 3 of row y straight from the sum's vector lanes (x a multiple of
  // kGroup, the group wholly inside the box); the sweep then hands it every whole group instead
  // of a varying run of four, and keeps that value in registers for the row.
  template <typename Sink>
  void sweep(FillRule rule, Sink& sink) {
    if (rule == FillRule::EvenOdd) {
      sweepBands<true>(sink);
    } else {
      sweepBands<false>(sink);
    }
  }

  // Coverage value of a fully covered pixel in the summed-area units of the cells.
  static constexpr std::uint32_t kFullArea = 1u << 17;

  static std::uint8_t nonZeroCoverage(std::uint32_t area) {
    const std::uint32_t magnitude = (area & 0x80000000u) ? 0u - area : area;
    // Clamping to a full pixel, which gives exactly 255, keeps this free of branches.
    return static_cast<std::uint8_t>((std::min(magnitude, kFullArea) * 255 + kFullArea / 2) >> 17);
  }

  static std::uint8_t evenOddCoverage(std::uint32_t area) {
    std::uint32_t folded = area & (2 * kFullArea - 1);
    if (folded > kFullArea) folded = 2 * kFullArea - folded;
    return static_cast<std::uint8_t>((folded * 255 + kFullArea / 2) >> 17);
  }

  // The coverage of a summed area under the fill rule the sweep was instantiated for.
  template <bool EvenOdd>
  static std::uint8_t coverageOf(std::uint32_t area) {
    return EvenOdd ? evenOddCoverage(area) : nonZeroCoverage(area);
  }

  // Cells are marked, summed and cleared in aligned groups of this many: an edge crossing a row
  // touches one to three cells, and four pixels fill one vector register in the painter.
  static constexpr int kGroup = 4;

  // Adds the four cells at `cells` onto `area` in turn, writes each sum's coverage under the
  // fill rule to coverage[0...3], clears the cells and returns the last sum: one step of the
  // sweep (GroupSweep, vectorised where the target allows), with sumGroupByCell as its reference.
  template <bool EvenOdd>
  static std::uint32_t sumGroup(std::uint32_t* cells, std::uint32_t area, std::uint8_t* coverage) {
    GroupSweep sweep(area);
    storeCoverages(sweep.template next<EvenOdd>(cells), coverage);
    return sweep.area();
  }

  template <bool EvenOdd>
  static std::uint32_t sumGroupByCell(std::uint32_t* cells, std::uint32_t area,
                                      std::uint8_t* coverage) {
    for (int i = 0; i < kGroup; ++i) {
      area += cells[i];
      cells[i] = 0;
      coverage[i] = coverageOf<EvenOdd>(area);
    }
    return area;
  }

 private:
  // An edge clipped to the box, in 24.8 fixed point, stored from its top to its bottom (yTop <
  // yBottom) with `sign` giving its direction (+1 pointing down), which is all that the cells
  // need of it. Its slope is divided out once when it is stored: an edge is walked once per band
  // it spans, and the divisions of many edges overlap there where one edge's walk would wait for
  // its own.
  struct Edge {
    int xTop, yTop, xBottom, yBottom;
    int sign;
    double dxdy;  // (xBottom - xTop) / (yBottom - yTop)
  };

  // A point as an edge needs it: whether it lies in the box, and if so its fixed-point coordinates
  // and whether it lies left of the box's right side. addPath works each point out once, not once
  // per edge it ends.
  struct BoxedPoint {
    Point point;
    int x, y;
    bool inside;
    bool leftOfRight;
  };
  [[gnu::always_inline]] inline BoxedPoint boxed(Point p) const;
  // The edge from a to b: stored at once when it lies wholly inside the box, clipped out of line
  // otherwise.
  [[gnu::always_inline]] inline void addBoxedEdge(const BoxedPoint& a, const BoxedPoint& b);
  void addClippedLine(Point a, Point b);
  [[gnu::always_inline]] inline void addFixedEdge(int x0, int y0, int x1, int y1);
  void addVertical(int x, double y0, double y1);
  // Walks the part of every edge active in `band` (rows [firstRow, endRow)) into its cells and
  // drops from the active edges those that end within it.
  void renderBand(int band, int firstRow, int endRow);
  // Walks the part of `edge` within rows [firstRow, endRow) of the current band into its cells.
  [[gnu::always_inline]] inline void renderEdge(const Edge& edge, int firstRow, int endRow);
  // A piece of an edge inside one row that crosses cell borders; see renderEdge.
  [[gnu::always_inline]] inline void addRowPiece(std::uint32_t* cells, std::uint64_t* bits, int xa,
                                                 int ya, int xb, int yb, int sign, double dxdy);

  // Records an edge piece of height `dy` inside cell `col` of a row whose ends lie fx1 and fx2
  // from the cell's left side (their sum given as `fxSum`, in 1/256 px). The cell keeps the
  // piece's cover less its area, the next cell its area, so a prefix sum along the row gives
  // each pixel's covered area. Marks nothing; see addCell.
  static void accumulateCell(std::uint32_t* cells, int col, int dy, int fxSum) {
    const int area = dy * fxSum;
    cells[col] += static_cast<std::uint32_t>(dy * 512 - area);
    cells[col + 1] += static_cast<std::uint32_t>(area);
  }

  // accumulateCell, marking the cell's group and, when it received something, the next cell's.
  static void addCell(std::uint32_t* cells, std::uint64_t* bits, int col, int dy, int fxSum) {
    accumulateCell(cells, col, dy, fxSum);
    mark(bits, col);
    if (dy * fxSum != 0) mark(bits, col + 1);
  }

  // Marks the groups of columns first...last (first <= last). Marking a group that holds no
  // change costs the sweep a visit but changes nothing it hands out.
  static void markColumns(std::uint64_t* bits, int first, int last) {
    const unsigned firstGroup = static_cast<unsigned>(first) / kGroup;
    const unsigned lastGroup = static_cast<unsigned>(last) / kGroup;
    if ((firstGroup >> 6) == (lastGroup >> 6)) {
      bits[firstGroup >> 6] |=
          (~std::uint64_t{0} << (firstGroup & 63)) & (~std::uint64_t{0} >> (63 - (lastGroup & 63)));
      return;
    }
    for (unsigned group = firstGroup; group <= lastGroup; ++group) {
      bits[group >> 6] |= std::uint64_t{1} << (group & 63);
    }
  }

  static void mark(std::uint64_t* bits, int col) {
    // Columns are never negative; unsigned division is a plain shift.
    const unsigned group = static_cast<unsigned>(col) / kGroup;
    bits[group >> 6] |= std::uint64_t{1} << (group & 63);
  }

  // Sorts the edges by the band they start in, into order_ (bandStart_ indexes it by band).
  void bucketEdges(int bands);

#if defined(__SSE2__)
  using GroupSweep = detail::GroupSweep;
  using GroupCoverages = __m128i;
  static void storeCoverages(GroupCoverages coverages, std::uint8_t* coverage) {
    detail::storeCoverages(coverages, coverage);
  }
#else
  // The sweep's steps cell by cell, for targets without SSE2.
  struct GroupCoverages {
    std::uint8_t value[kGroup];
  };
  class GroupSweep {
   public:
    explicit GroupSweep(std::uint32_t area = 0) : area_(area) {}
    std::uint32_t area() const { return area_; }
    template <bool EvenOdd>
    GroupCoverages next(std::uint32_t* cells) {
      GroupCoverages coverages;
      area_ = sumGroupByCell<EvenOdd>(cells, area_, coverages.value);
      return coverages;
    }

   private:
    std::uint32_t area_;
  };
  static void storeCoverages(const GroupCoverages& coverages, std::uint8_t* coverage) {
    std::memcpy(coverage, coverages.value, kGroup);
  }
#endif

  // Hands the groups of row y to a sink without groupRow (see sweep): each as a varying run of
  // four, through the row of coverage bytes.
  template <typename Sink>
  struct VaryingGroups {
    Sink& sink;
    int y;
    std::uint8_t* coverage;
    void group(int x, GroupCoverages coverages) {
      storeCoverages(coverages, coverage + x);
      sink.varying(y, x, kGroup, coverage + x);
    }
  };

  template <typename Sink>
  static auto groupsOf(Sink& sink, int y, std::uint8_t* coverage) {
    if constexpr (requires { sink.groupRow(y).group(0, GroupCoverages{}); }) {
      return sink.groupRow(y);
    } else {
      return VaryingGroups<Sink>{sink, y, coverage};
    }
  }

  template <bool EvenOdd, typename Sink>
  void sweepBands(Sink& sink);

  template <bool EvenOdd, typename Sink>
  [[gnu::always_inline]] inline void sweepRow(int y, int bandRow, Sink& sink);

  void reset();

  int width_;
  int height_;
  int stride_;  // cells per row: the canvas width plus two, for pieces on the right border,
                // rounded up to whole groups
  int words_;   // 64-bit words of touched-group bits per row
  std::vector<std::uint32_t> cells_;    // kBandRows rows of cells
  std::vector<std::uint64_t> touched_;  // kBandRows rows of bits
  std::vector<std::uint8_t> coverage_;  // one row of varying coverage handed to the sink
  std::vector<Edge> edges_;
  std::vector<std::uint32_t> order_;
  std::vector<std::uint32_t> bandStart_;
  std::vector<std::uint32_t> active_;
  PixelBox box_;
  int minRow_ = 0, maxRow_ = -1, minCol_ = 0, maxCol_ = -1;
  bool clippedRight_ = false;  // an edge ran right of the box: rows may stay covered up to x1
};

template <bool EvenOdd, typename Sink>
void CoverageRasterizer::sweepBands(Sink& sink) {
  if (edges_.empty()) {
    reset();
    return;
  }
  const int bands = (maxRow_ - minRow_) / kBandRows + 1;
  bucketEdges(bands);
  active_.clear();
  for (int band = 0; band < bands; ++band) {
    const int firstRow = minRow_ + band * kBandRows;
    const int endRow = std::min(firstRow + kBandRows, maxRow_ + 1);
    renderBand(band, firstRow, endRow);
    for (int y = firstRow; y < endRow; ++y) sweepRow<EvenOdd>(y, y - firstRow, sink);
  }
  reset();
}

template <bool EvenOdd, typename Sink>
void CoverageRasterizer::sweepRow(int y, int bandRow, Sink& sink) {
  const int x1 = box_.x1;
  std::uint8_t* const coverage = coverage_.data();
  std::uint32_t* const row = cells_.data() + static_cast<std::size_t>(bandRow) * stride_;
  std::uint64_t* const bits = touched_.data() + static_cast<std::size_t>(bandRow) * words_;
  auto groups = groupsOf(sink, y, coverage);
  GroupSweep sweep;
  // Marked cells all lie inside the box, so the first marked group reaches x0 and the pixels
  // left of it are never handed out even though their (zero) coverage is computed. Each marked
  // group goes out on its own: merging neighbours into longer runs would cost more bookkeeping
  // per group than it saves the sink.
  int x = box_.x0;  // first pixel of the row not yet handed out
  for (int w = 0; w < words_; ++w) {
    std::uint64_t word = bits[w];
    if (word == 0) continue;
    bits[w] = 0;
    do {
      const int start = (w * 64 + std::countr_zero(word)) * kGroup;
      word &= word - 1;
      if (start >= x1) {  // pieces on the box's right border only, which no pixel inside sees
        std::fill_n(row + start, kGroup, 0u);
        continue;
      }
      if (start > x) {
        const std::uint8_t c = coverageOf<EvenOdd>(sweep.area());
        if (c != 0) sink.solid(y, x, start - x, c);
        x = start;
      }
      const GroupCoverages coverages = sweep.template next<EvenOdd>(row + start);
      const int end = std::min(start + kGroup, x1);
      if (start == x && end == start + kGroup) {
        groups.group(start, coverages);
      } else {  // a group cut by a side of the box
        storeCoverages(coverages, coverage + start);
        sink.varying(y, x, end - x, coverage + x);
      }
      x = end;
    } while (word != 0);
  }
  if (x < x1) {
    const std::uint8_t c = coverageOf<EvenOdd>(sweep.area());
    if (c != 0) sink.solid(y, x, x1 - x, c);
  }
}

}  // namespace tessaline
