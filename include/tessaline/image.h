#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tessaline/export.h"

namespace tessaline {

struct Rgba {
  std::uint8_t r = 0, g = 0, b = 0, a = 0;
  friend bool operator==(const Rgba&, const Rgba&) = default;
};

// A bitmap: rows of 8-bit RGBA pixels with straight (not premultiplied) alpha, top row first.
// Pixels where nothing was drawn are fully transparent (0, 0, 0, 0).
class TESSALINE_API Image {
 public:
  Image(int width, int height);

  int width() const { return width_; }
  int height() const { return height_; }
  Rgba pixel(int x, int y) const;
  void setPixel(int x, int y, Rgba value);

  // width * height * 4 bytes, row-major, R G B A.
  const std::vector<std::uint8_t>& bytes() const { return bytes_; }
  std::vector<std::uint8_t>& bytes() { return bytes_; }

  // 8-bit RGBA PNG with straight alpha. nullopt / false when encoding or writing fails.
  std::optional<std::vector<std::uint8_t>> encodePng() const;
  bool writePng(const std::string& filePath) const;

  friend bool operator==(const Image&, const Image&) = default;

 private:
  int width_;
  int height_;
  std::vector<std::uint8_t> bytes_;
};

}  // namespace tessaline
