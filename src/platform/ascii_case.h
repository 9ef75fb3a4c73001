#pragma once

#include <string>
#include <string_view>

namespace tessaline {

// Element names, attribute names and keywords are compared after folding to lower case. Every
// name the library recognises is ASCII, so folding the ASCII letters is all a match can need;
// other bytes (UTF-8 sequences included) pass through unchanged.
inline char foldAsciiCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

inline std::string foldAsciiCase(std::string_view text) {
  std::string folded(text);
  for (char& c : folded) c = foldAsciiCase(c);
  return folded;
}

}  // namespace tessaline
