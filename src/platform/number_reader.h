#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace tessaline {

// Lenient number reading used for every numeric attribute value: skips leading white space, reads
// the longest leading decimal number (optional sign, digits, optional fraction, optional exponent)
// and ignores what follows. Yields 0 when the text does not start with a number. Never fails and
// never reads hexadecimal, "inf" or "nan". Out-of-range magnitudes give +-infinity or +-0.
float readLenientFloat(std::string_view text);

// The value of a plain decimal without sign or exponent, given as its digits read as one
// integer (`count` digits, leading zeros included, `fractionDigits` of them after the point),
// when one correctly rounded division gives it exactly as a full conversion would: at most nine
// digits whose integer stays within 2^24, so that it and the power of ten are exact floats.
// nullopt otherwise, and the text is to be read in full. Inline: path data asks this of nearly
// every number it reads.
inline std::optional<float> shortDecimalValue(std::uint64_t integer, int count,
                                              int fractionDigits) {
  static constexpr float kPowersOfTen[] = {1e0f, 1e1f, 1e2f, 1e3f, 1e4f,
                                           1e5f, 1e6f, 1e7f, 1e8f, 1e9f};
  if (count > 9 || integer > (1u << 24)) return std::nullopt;
  return static_cast<float>(integer) / kPowersOfTen[fractionDigits];
}

// Length of the longest leading decimal number of `text` (after no white space): optional sign,
// digits, optional fraction and an exponent only when digits follow it. 0 when none.
std::size_t scanDecimalPrefix(std::string_view text);

}  // namespace tessaline
