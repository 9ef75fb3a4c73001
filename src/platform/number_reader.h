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
// nullopt otherwise, and the text is to be read in full.
std::optional<float> shortDecimalValue(std::uint64_t integer, int count, int fractionDigits);

// Length of the longest leading decimal number of `text` (after no white space): optional sign,
// digits, optional fraction and an exponent only when digits follow it. 0 when none.
std::size_t scanDecimalPrefix(std::string_view text);

}  // namespace tessaline
