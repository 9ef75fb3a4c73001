#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/utf8_text.h"

namespace tessaline::detail {

// Path data addressed by user-perceived character, in constant time per access.
//
// Path data is ASCII in practice, and then every byte is one character and nothing is
// precomputed. Otherwise the constructor finds the characters once (Utf8Text: extended grapheme
// clusters, so "1" + U+0301 is one character and not a digit, and CR LF is one character) so
// that the parser stays linear in the length of the text. Malformed UTF-8 counts one character
// per offending byte.
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
    if (characters_) return codeAtBoundary(index);
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
  std::optional<Utf8Text> characters_;  // only for text that is not a character per byte
};

}  // namespace tessaline::detail
