#pragma once

#include <string_view>

#include "platform/grapheme_break_data.h"

namespace tessaline {

// Finds where user-perceived characters (extended grapheme clusters, as the platform's string
// type counts them) begin, one code point at a time: CR LF, Hangul syllables, marks and joiners
// after their base, prepended marks before theirs, emoji joined by ZWJ, and regional indicators
// in pairs.
class GraphemeBreaker {
 public:
  // Whether a character begins at `next`, the code point after those given so far (true for the
  // first).
  bool breaksBefore(char32_t next);

 private:
  detail::GraphemeClass previous_ = detail::GraphemeClass::Control;  // nothing joins the start
  bool pictographicRun_ = false;  // the code points since the last ZWJ-free break: ExtPict Extend*
  bool pictographicJoiner_ = false;  // the previous code point is a ZWJ ending such a run
  bool oddIndicators_ = false;       // an odd number of regional indicators precede
};

namespace detail {
GraphemeClass graphemeClassOf(char32_t codePoint);
bool isExtendedPictographic(char32_t codePoint);
}  // namespace detail

// Whether every byte of `text` is a character of its own: ASCII without a carriage return (which
// would join a following line feed).
inline bool hasOneCharacterPerByte(std::string_view text) {
  for (char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80 || c == '\r') return false;
  }
  return true;
}

}  // namespace tessaline
