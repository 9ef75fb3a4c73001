#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <cwchar>

#include "platform/raster/blend_four.h"
#include "platform/raster/pixel_ops.h"
#include "platform/raster/translucent_marks.h"

namespace tessaline {

// The span sink that paints a solid colour with source-over: each pixel receives the colour
// scaled by its coverage, times the clip mask's value when there is one (`Masked`). Coverage and
// mask are 8-bit and combine as the reference backend combines a shape's mask with a clip.
// Whether there is a mask is a template argument so each loop below stays branch-light.
//
// Wherever a pixel may come out translucent, the painter sets the bit of its group of eight in
// `marks` (TranslucentMarks), so the finished canvas is converted to straight alpha only there.
// A colourless source (black at any alpha, the usual ink of icons) marks nothing: it leaves a
// transparent pixel colourless, which is final at any alpha, an opaque one opaque, and a
// translucent coloured one was marked by the painter that coloured it.
template <bool Masked>
class SolidPainter {
 public:
  // `pixels` and `mask` (null unless Masked) are canvases of `stride` pixels per row.
  SolidPainter(PremultipliedPixel* pixels, int stride, PremultipliedPixel color,
               const std::uint8_t* mask, TranslucentMarks* marks)
      : pixels_(pixels),
        mask_(mask),
        marks_(marks),
        stride_(stride),
        color_(color),
        opaque_(alphaOf(color) == 255),
        marking_((color & 0x00ffffffu) != 0) {}

  void solid(int y, int x, int length, std::uint8_t coverage) {
    if (marking_ && (Masked || coverage != 255 || !opaque_)) marks_->mark(y, x, length);
    PremultipliedPixel* out = row(y) + x;
    if constexpr (Masked) {
      const std::uint8_t* mask = maskRow(y) + x;
      int i = 0;
      if (coverage == 255) {
        // Inside a shape, a clip is mostly wholly in or wholly out; take eight pixels at a time
        // where it is.
        for (; i + 8 <= length; i += 8) {
          std::uint64_t block;
          std::memcpy(&block, mask + i, sizeof block);
          if (block == 0) continue;
          if (block == ~std::uint64_t{0}) {
            SolidPainter<false>(pixels_, stride_, color_, nullptr, marks_).solid(y, x + i, 8, 255);
            continue;
          }
          for (int k = i; k < i + 8; ++k) blend(out[k], mask[k]);
        }
      }
      for (; i < length; ++i) blend(out[i], multiply255(coverage, mask[i]));
    } else {
      if (coverage == 255 && opaque_) {
        fill(out, length);
        return;
      }
      const PremultipliedPixel source = coverage == 255 ? color_ : scalePixel(color_, coverage);
      const std::uint32_t keep = 255 - alphaOf(source);
      const std::uint64_t sources = std::uint64_t{source} << 32 | source;
      int i = 0;
      for (; i + 2 <= length; i += 2) {
        std::uint64_t pair;
        std::memcpy(&pair, out + i, sizeof pair);
        pair = sources + scalePixelPair(pair, keep);
        std::memcpy(out + i, &pair, sizeof pair);
      }
      if (i < length) out[i] = source + scalePixel(out[i], keep);
    }
  }

#if defined(__SSE2__)
  // What painting whole groups of four pixels of one row needs, as a value of its own so that
  // the sweep keeps it in registers rather than reading the painter again after every store.
  class GroupRow {
   public:
    GroupRow(PremultipliedPixel* pixels, __m128i color, TranslucentMarks* marks, int y,
             bool opaqueBlack)
        : pixels_(pixels), color_(color), marks_(marks), y_(y), opaqueBlack_(opaqueBlack) {}

    // Paints pixels x...x + 3 with the coverages of the rasterizer's lanes, as varying() would.
    void group(int x, __m128i coverages) {
      if (marks_ != nullptr) marks_->mark(y_, x, 4);
      PremultipliedPixel* const out = pixels_ + x;
      const __m128i destination = _mm_loadu_si128(reinterpret_cast<const __m128i*>(out));
      if (opaqueBlack_ && detail::allTransparent(destination)) {
        // Opaque black over transparent pixels, the edges of most icons, is the coverage as
        // alpha and nothing else: what the blend computes, without its arithmetic.
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_slli_epi32(coverages, 24));
        return;
      }
      __m128i firstTwo, lastTwo;
      detail::spreadCoverageLanes(coverages, firstTwo, lastTwo);
      detail::blendFourOnto(out, destination, color_, firstTwo, lastTwo);
    }

   private:
    PremultipliedPixel* pixels_;
    __m128i color_;
    TranslucentMarks* marks_;  // null when the ink marks nothing
    int y_;
    bool opaqueBlack_;
  };

  GroupRow groupRow(int y) const requires(!Masked) {
    return GroupRow(row(y), detail::colorLanes(color_), marking_ ? marks_ : nullptr, y,
                    color_ == 0xff000000u);
  }
#endif

  void varying(int y, int x, int length, const std::uint8_t* coverage) {
    if (marking_) marks_->mark(y, x, length);
    PremultipliedPixel* out = row(y) + x;
    const std::uint8_t* mask = Masked ? maskRow(y) + x : nullptr;
    int i = 0;
#if defined(__SSE2__)
    // Four pixels at a time without branches; the same arithmetic as blend() below.
    const __m128i color = detail::colorLanes(color_);
    for (; i + 4 <= length; i += 4) {
      if constexpr (Masked) {
        std::uint8_t masked[4];
        detail::maskCoverages(coverage + i, mask + i, masked);
        detail::blendFour(out + i, color, masked);
      } else {
        detail::blendFour(out + i, color, coverage + i);
      }
    }
#endif
    for (; i < length; ++i) blend(out[i], Masked ? multiply255(coverage[i], mask[i]) : coverage[i]);
  }

 private:
  PremultipliedPixel* row(int y) const {
    return pixels_ + static_cast<std::ptrdiff_t>(y) * stride_;
  }
  const std::uint8_t* maskRow(int y) const {
    return mask_ + static_cast<std::ptrdiff_t>(y) * stride_;
  }

  // Stores the colour `length` times in 16-byte copies of four pixels, which compilers turn into
  // vector stores even where they do not vectorise loops. The last copy may overlap the one
  // before rather than finish pixel by pixel, so a run costs one loop whatever its length.
  void fill(PremultipliedPixel* out, int length) const {
    const PremultipliedPixel four[4] = {color_, color_, color_, color_};
    if (length < 4) {
      for (int i = 0; i < length; ++i) out[i] = color_;
      return;
    }
    if (length >= kLongRun) {
      // The C library's wide fill picks the widest stores the machine has at run time.
      static_assert(sizeof(wchar_t) == sizeof(PremultipliedPixel));
      std::wmemset(reinterpret_cast<wchar_t*>(out), static_cast<wchar_t>(color_),
                   static_cast<std::size_t>(length));
      return;
    }
    int i = 0;
    for (; i + 16 < length; i += 16) {  // the inside of a shape: long runs, four copies a turn
      for (int k = 0; k < 16; k += 4) std::memcpy(out + i + k, four, sizeof four);
    }
    for (; i + 4 < length; i += 4) std::memcpy(out + i, four, sizeof four);
    std::memcpy(out + length - 4, four, sizeof four);
  }

  void blend(PremultipliedPixel& pixel, std::uint32_t coverage) const {
    if (coverage == 255) {
      pixel = opaque_ ? color_ : sourceOver(color_, pixel);
    } else if (coverage != 0) {
      // Over a transparent pixel (most edges: the first shape to reach them) the scaled colour
      // is the result, as source-over would compute it.
      const PremultipliedPixel source = scalePixel(color_, coverage);
      pixel = pixel == 0 ? source : sourceOver(source, pixel);
    }
  }

  static constexpr int kLongRun = 24;

  PremultipliedPixel* pixels_;
  const std::uint8_t* mask_;
  TranslucentMarks* marks_;
  int stride_;
  PremultipliedPixel color_;
  bool opaque_;
  bool marking_;
};

}  // namespace tessaline
