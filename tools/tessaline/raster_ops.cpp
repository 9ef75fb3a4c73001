#include "raster_ops.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tessaline::cli::raster {

namespace {

// The source pixels that one destination pixel covers along one axis, with the share of the
// destination pixel each of them contributes (shares add up to 1).
struct Footprint {
  int first = 0;
  std::vector<float> weights;
};

std::vector<Footprint> footprints(int sourceLength, int targetLength) {
  std::vector<Footprint> result(static_cast<std::size_t>(targetLength));
  const double scale = static_cast<double>(sourceLength) / targetLength;
  for (int i = 0; i < targetLength; ++i) {
    const double begin = i * scale;
    const double end = (i + 1) * scale;
    Footprint& footprint = result[static_cast<std::size_t>(i)];
    footprint.first = static_cast<int>(std::floor(begin));
    const int last = std::min(sourceLength - 1, static_cast<int>(std::ceil(end)) - 1);
    for (int s = footprint.first; s <= last; ++s) {
      const double overlap = std::min<double>(end, s + 1) - std::max<double>(begin, s);
      footprint.weights.push_back(static_cast<float>(std::max(0.0, overlap) / scale));
    }
  }
  return result;
}

std::uint8_t toByte(float value) {
  return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

}  // namespace

Image resizeBoxFiltered(const Image& source, int width, int height) {
  Image result(width, height);
  if (result.width() == 0 || result.height() == 0 || source.width() == 0 || source.height() == 0) {
    return result;
  }
  const std::vector<Footprint> across = footprints(source.width(), result.width());
  const std::vector<Footprint> down = footprints(source.height(), result.height());

  // Pass 1: every source row resampled horizontally, as premultiplied RGBA in 0..255.
  const auto stride = static_cast<std::size_t>(result.width()) * 4;
  std::vector<float> rows(static_cast<std::size_t>(source.height()) * stride, 0.0f);
  const std::vector<std::uint8_t>& in = source.bytes();
  for (int y = 0; y < source.height(); ++y) {
    float* row = &rows[static_cast<std::size_t>(y) * stride];
    for (int x = 0; x < result.width(); ++x) {
      const Footprint& footprint = across[static_cast<std::size_t>(x)];
      float sum[4] = {0, 0, 0, 0};
      for (std::size_t k = 0; k < footprint.weights.size(); ++k) {
        const std::size_t at =
            (static_cast<std::size_t>(y) * source.width() + footprint.first + k) * 4;
        const float alpha = in[at + 3] / 255.0f;
        const float weight = footprint.weights[k];
        for (int c = 0; c < 3; ++c) sum[c] += weight * in[at + c] * alpha;
        sum[3] += weight * in[at + 3];
      }
      std::copy(sum, sum + 4, row + static_cast<std::size_t>(x) * 4);
    }
  }

  // Pass 2: columns resampled vertically, then back to straight alpha.
  std::vector<std::uint8_t>& out = result.bytes();
  for (int y = 0; y < result.height(); ++y) {
    const Footprint& footprint = down[static_cast<std::size_t>(y)];
    for (int x = 0; x < result.width(); ++x) {
      float sum[4] = {0, 0, 0, 0};
      for (std::size_t k = 0; k < footprint.weights.size(); ++k) {
        const float* pixel =
            &rows[(footprint.first + k) * stride + static_cast<std::size_t>(x) * 4];
        for (int c = 0; c < 4; ++c) sum[c] += footprint.weights[k] * pixel[c];
      }
      const std::size_t at = (static_cast<std::size_t>(y) * result.width() + x) * 4;
      const std::uint8_t alpha = toByte(sum[3]);
      out[at + 3] = alpha;
      if (alpha == 0) continue;  // fully transparent stays (0, 0, 0, 0)
      const float unpremultiply = 255.0f / sum[3];
      for (int c = 0; c < 3; ++c) out[at + c] = toByte(sum[c] * unpremultiply);
    }
  }
  return result;
}

void fillRect(Image& image, int x, int y, int width, int height, Rgba colour) {
  const int left = std::max(0, x);
  const int top = std::max(0, y);
  const int right = std::min(image.width(), x + width);
  const int bottom = std::min(image.height(), y + height);
  for (int row = top; row < bottom; ++row) {
    for (int column = left; column < right; ++column) image.setPixel(column, row, colour);
  }
}

void strokeRect(Image& image, int x, int y, int width, int height, int thickness, Rgba colour) {
  fillRect(image, x, y, width, thickness, colour);
  fillRect(image, x, y + height - thickness, width, thickness, colour);
  fillRect(image, x, y, thickness, height, colour);
  fillRect(image, x + width - thickness, y, thickness, height, colour);
}

void fillCheckerboard(Image& image, int x, int y, int width, int height, int square, Rgba first,
                      Rgba second) {
  square = std::max(1, square);
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      const bool even = ((row / square) + (column / square)) % 2 == 0;
      image.setPixel(x + column, y + row, even ? first : second);
    }
  }
}

void compositeOver(Image& target, const Image& source, int x, int y) {
  for (int row = 0; row < source.height(); ++row) {
    for (int column = 0; column < source.width(); ++column) {
      const Rgba top = source.pixel(column, row);
      if (top.a == 0) continue;
      const Rgba under = target.pixel(x + column, y + row);
      const float a = top.a / 255.0f;
      const float underA = under.a / 255.0f * (1.0f - a);
      const float outA = a + underA;
      auto blend = [&](std::uint8_t s, std::uint8_t d) {
        return toByte((s * a + d * underA) / outA);
      };
      target.setPixel(x + column, y + row,
                      {blend(top.r, under.r), blend(top.g, under.g), blend(top.b, under.b),
                       toByte(outA * 255.0f)});
    }
  }
}

void fillTopRightTriangle(Image& image, int right, int top, int size, Rgba colour) {
  // Row r of the triangle spans the last (size - r) pixels before `right`.
  for (int row = 0; row < size; ++row) {
    fillRect(image, right - (size - row), top + row, size - row, 1, colour);
  }
}

void drawCross(Image& image, int x, int y, int width, int height, int thickness, Rgba colour) {
  const int steps = std::max(width, height);
  for (int i = 0; i < steps; ++i) {
    const int dx = i * width / steps;
    const int dy = i * height / steps;
    fillRect(image, x + dx, y + dy, thickness, thickness, colour);
    fillRect(image, x + width - thickness - dx, y + dy, thickness, thickness, colour);
  }
}

}  // namespace tessaline::cli::raster
