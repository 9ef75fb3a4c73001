#pragma once

#include <string_view>

namespace tessaline {

// Lenient number reading used for every numeric attribute value: skips leading white space, reads
// the longest leading decimal number (optional sign, digits, optional fraction, optional exponent)
// and ignores what follows. Yields 0 when the text does not start with a number. Never fails and
// never reads hexadecimal, "inf" or "nan". Out-of-range magnitudes give +-infinity or +-0.
float readLenientFloat(std::string_view text);

// Length of the longest leading decimal number of `text` (after no white space): optional sign,
// digits, optional fraction and an exponent only when digits follow it. 0 when none.
std::size_t scanDecimalPrefix(std::string_view text);

}  // namespace tessaline
