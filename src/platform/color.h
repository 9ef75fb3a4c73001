#pragma once

#include <optional>
#include <string_view>

namespace tessaline {

// An RGBA colour with components in 0...1, straight (not premultiplied) alpha.
struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 1;

  static constexpr Color black() { return {0, 0, 0, 1}; }

  // Copy of this colour with its alpha replaced.
  Color withAlpha(double newAlpha) const { return {red, green, blue, newAlpha}; }

  // "#RRGGBB", "#RRGGBBAA" or the same without "#"; the digits are read as a hexadecimal scanner
  // would (optional "0x", longest leading run of hex digits, at least one). nullopt on failure.
  static std::optional<Color> fromHexString(std::string_view text);

  friend bool operator==(const Color&, const Color&) = default;
};

}  // namespace tessaline
