#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/grapheme_break.h"

namespace tessaline {

// Prefix tests, searches and splits of attribute text that match whole user-perceived characters
// only, as the platform's string type does: a "(" or ";" followed by a combining mark is a
// different character and neither matches nor splits. Offsets are in bytes. Text that is ASCII
// without a carriage return (nearly all attribute text) has a character per byte and takes the
// byte operations directly, without allocating.

// Where the characters of a text start, when they are not simply its bytes.
class CharacterBoundaries {
 public:
  // Empty (every byte a boundary) for text with a character per byte.
  explicit CharacterBoundaries(std::string_view text) {
    if (!hasOneCharacterPerByte(text)) findStarts(text);
  }

  bool contains(std::size_t byte) const { return starts_.empty() || startsAt(byte); }

  // The first occurrence of `needle` at or after `from` that starts and ends on boundaries.
  std::size_t findWhole(std::string_view text, std::string_view needle, std::size_t from) const {
    if (starts_.empty()) {
      // Separators are single bytes, whose search is far cheaper than the general one.
      return needle.size() == 1 ? text.find(needle[0], from) : text.find(needle, from);
    }
    return findWholeCharacters(text, needle, from);
  }

 private:
  void findStarts(std::string_view text);
  bool startsAt(std::size_t byte) const;
  std::size_t findWholeCharacters(std::string_view text, std::string_view needle,
                                  std::size_t from) const;

  std::vector<std::size_t> starts_;  // byte offsets of the characters and of the text's end
};

// Whether `text` begins with the characters of `prefix`.
bool startsWithCharacters(std::string_view text, std::string_view prefix);

// Byte offset of the first occurrence of `needle` at or after byte `from` that starts and ends on
// character boundaries of `text`, or npos. `needle` must not be empty.
std::size_t findCharacters(std::string_view text, std::string_view needle, std::size_t from = 0);

// The pieces of a text between whole-character occurrences of a separator (not empty), empty
// pieces included, one at a time: "a  b" split on " " gives "a", "", "b".
class CharacterSplitter {
 public:
  CharacterSplitter(std::string_view text, std::string_view separator)
      : text_(text), separator_(separator), boundaries_(text) {}

  // The next piece, or false when every piece has been given. Inline, as the splitting of a
  // viewBox or a transform's parameters is a handful of bytes.
  bool next(std::string_view& piece) {
    if (done_) return false;
    const std::size_t at = boundaries_.findWhole(text_, separator_, start_);
    if (at == std::string_view::npos) {
      piece = text_.substr(start_);
      done_ = true;
    } else {
      piece = text_.substr(start_, at - start_);
      start_ = at + separator_.size();
    }
    return true;
  }

 private:
  std::string_view text_;
  std::string_view separator_;
  CharacterBoundaries boundaries_;
  std::size_t start_ = 0;
  bool done_ = false;
};

// Every piece of a CharacterSplitter.
std::vector<std::string_view> splitOnCharacters(std::string_view text, std::string_view separator);

}  // namespace tessaline
