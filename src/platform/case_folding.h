#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace tessaline {

// Element names, attribute names and keywords are compared after folding to lower case, as the
// platform's Unicode lower-casing does. Every name the library recognises is ASCII, and the only
// character outside ASCII that lower-cases into ASCII is the Kelvin sign (U+212A, to "k"), so
// folding the ASCII letters and that sign is all a match can need; other bytes pass through.
inline constexpr std::string_view kKelvinSign = "\xE2\x84\xAA";

inline char foldAsciiCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

namespace detail {
// foldCase for text that is not all ASCII.
std::size_t foldCaseBeyondAscii(std::string_view text, char* out);
}  // namespace detail

// Folds `text` to lower case into `out`, which has room for text.size() bytes; returns the
// folded length (shorter than the text only where a Kelvin sign was folded).
inline std::size_t foldCase(std::string_view text, char* out) {
  unsigned char bytesOred = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {  // names are nearly always done here
    out[i] = foldAsciiCase(text[i]);
    bytesOred |= static_cast<unsigned char>(text[i]);
  }
  return bytesOred < 0x80 ? text.size() : detail::foldCaseBeyondAscii(text, out);
}

inline std::string foldCase(std::string_view text) {
  std::string folded(text.size(), '\0');
  folded.resize(foldCase(text, folded.data()));
  return folded;
}

namespace detail {
// Bytes that folding may change: the ASCII capitals and the first byte of the Kelvin sign.
inline constexpr auto kMayFold = [] {
  std::array<bool, 256> table{};
  for (int c = 'A'; c <= 'Z'; ++c) table[c] = true;
  table[static_cast<unsigned char>(kKelvinSign[0])] = true;
  return table;
}();
}  // namespace detail

// Whether folding may change `text`. Lookups of names call this on every miss, so it costs one
// table load per byte, no more than a test for capitals alone.
inline bool foldingMayChange(std::string_view text) {
  for (char c : text) {
    if (detail::kMayFold[static_cast<unsigned char>(c)]) return true;
  }
  return false;
}

}  // namespace tessaline
