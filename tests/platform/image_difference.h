#pragma once

#include <algorithm>
#include <cstdlib>

#include "platform/geometry_types.h"
#include "tessaline/image.h"

namespace tessaline::testing {

// Differences up to this are what two anti-aliasing methods may disagree by on any one edge
// pixel; the shape corpus of the raster differential test shows where it comes from.
inline constexpr int kEdgeNoise = 32;

inline int premultiplied(int channel, int alpha) {
  return (channel * alpha + 127) / 255;
}

// How far two renderings of the same picture are apart, compared premultiplied so that colours
// under near-zero alpha do not count.
struct ImageDifference {
  int max = 0;            // largest difference of a premultiplied channel
  double mean = 0;        // mean channel difference over the pixels either image has drawn on
  double shareOver = 0;   // share of those pixels with a channel differing by more than kEdgeNoise
  Point worst;            // where the largest difference is
  long long touched = 0;  // pixels either image has drawn on
};

inline ImageDifference compareImages(const Image& expected, const Image& actual) {
  ImageDifference result;
  long long sum = 0;
  long long over = 0;
  for (int y = 0; y < expected.height(); ++y) {
    for (int x = 0; x < expected.width(); ++x) {
      const Rgba e = expected.pixel(x, y);
      const Rgba a = actual.pixel(x, y);
      if (e.a == 0 && a.a == 0) continue;
      ++result.touched;
      const int d[4] = {premultiplied(e.r, e.a) - premultiplied(a.r, a.a),
                        premultiplied(e.g, e.a) - premultiplied(a.g, a.a),
                        premultiplied(e.b, e.a) - premultiplied(a.b, a.a), e.a - a.a};
      int pixelMax = 0;
      for (const int v : d) {
        pixelMax = std::max(pixelMax, std::abs(v));
        sum += std::abs(v);
      }
      over += pixelMax > kEdgeNoise;
      if (pixelMax > result.max) {
        result.max = pixelMax;
        result.worst = {static_cast<double>(x), static_cast<double>(y)};
      }
    }
  }
  if (result.touched > 0) {
    result.mean = static_cast<double>(sum) / (4.0 * static_cast<double>(result.touched));
    result.shareOver = static_cast<double>(over) / static_cast<double>(result.touched);
  }
  return result;
}

}  // namespace tessaline::testing
