#pragma once

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

// Calls emit(c) for each byte of `text` folded to lower case.
template <typename Emit>
void foldCase(std::string_view text, Emit&& emit) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, kKelvinSign.size(), kKelvinSign) == 0) {
      emit('k');
      i += kKelvinSign.size() - 1;
    } else {
      emit(foldAsciiCase(text[i]));
    }
  }
}

inline std::string foldCase(std::string_view text) {
  std::string folded;
  folded.reserve(text.size());
  foldCase(text, [&](char c) { folded.push_back(c); });
  return folded;
}

// Whether folding would change `text`.
inline bool foldingChanges(std::string_view text) {
  for (char c : text) {
    if (c >= 'A' && c <= 'Z') return true;
  }
  return text.find(kKelvinSign) != std::string_view::npos;
}

}  // namespace tessaline
