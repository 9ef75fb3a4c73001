#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace tessaline::detail {

// Path data addressed by user-perceived character, in constant time per access.
//
// Path data is ASCII in practice, and then every byte is one character and nothing is
// precomputed. Otherwise the constructor finds the character boundaries once (an index with one
// entry per character) so that the parser stays linear in the length of the text.
//
// The boundaries follow the Unicode rules that can make a character of more than one code point
// out of an ASCII one: a following combining or spacing mark, variation selector, emoji modifier
// or joiner attaches to it (so "1" + U+0301 is one character and not a digit), CR LF is one
// character, and nothing attaches to a control character. The remaining rules (prefixed
// characters, Hangul syllables, emoji sequences, regional-indicator pairs) only ever join two
// non-ASCII code points; the parser stops at the first character that is not a lone ASCII
// character, so cutting those differently cannot change a result, and they are left out.
// Malformed UTF-8 counts one character per offending byte. In ASCII text CR LF counts as two
// characters, which cannot change a result either: neither is a separator, digit or letter.
//
// The text is viewed, not copied: it must outlive this object.
class PathText {
 public:
  // Code returned by codeAt() for a character that is not a single ASCII byte.
  static constexpr int kNotAscii = -1;

  explicit PathText(std::string_view text);

  std::int64_t count() const { return count_; }

  // The character at `index` as its ASCII code, or kNotAscii. An index outside [0, count) is a
  // fatal stop. Inline: the path parser asks for every character at least once.
  int codeAt(std::int64_t index) const {
    checkIndex(index);
    if (!boundaries_.empty()) return codeAtBoundary(index);
    const auto byte = static_cast<unsigned char>(text_[static_cast<std::size_t>(index)]);
    return byte >= 0x80 ? kNotAscii : byte;
  }

  // The bytes of the character at `index`. An index outside [0, count) is a fatal stop.
  std::string_view characterAt(std::int64_t index) const;

  // The bytes of the characters [first, last), 0 <= first <= last <= count.
  std::string_view slice(std::int64_t first, std::int64_t last) const;

 private:
  std::size_t offset(std::int64_t index) const;
  void checkIndex(std::int64_t index) const {
    if (index < 0 || index >= count_) stopOutOfRange();
  }
  [[noreturn]] static void stopOutOfRange();
  int codeAtBoundary(std::int64_t index) const;

  std::string_view text_;
  std::int64_t count_ = 0;
  // Byte offset of every character plus the end; empty for ASCII text.
  std::vector<std::size_t> boundaries_;
};

}  // namespace tessaline::detail
