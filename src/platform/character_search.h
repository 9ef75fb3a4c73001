#pragma once

#include <cstddef>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/grapheme_break.h"
#include "platform/utf8_text.h"

namespace tessaline {

// Prefix tests, searches and splits of attribute text that match whole user-perceived characters
// only, as the platform's string type does: a "(" or ";" followed by a combining mark is a
// different character and neither matches nor splits. Offsets are in bytes. Text that is ASCII
// without a carriage return (nearly all attribute text) has a character per byte and takes the
// byte operations directly, without allocating.
//
// The text is viewed, not copied: it must outlive this object.
class CharacterText {
 public:
  explicit CharacterText(std::string_view text) : text_(text) {
    if (!hasOneCharacterPerByte(text)) characters_.emplace(text);
  }

  // Whether the text begins with the characters of `prefix`.
  bool startsWith(std::string_view prefix) const {
    return text_.starts_with(prefix) && isBoundary(prefix.size());
  }

  // Byte offset of the first occurrence of `needle` (not empty) at or after byte `from` that
  // starts and ends on character boundaries, or npos.
  std::size_t find(std::string_view needle, std::size_t from = 0) const {
    if (!characters_) {
      // Separators are single bytes, whose search is far cheaper than the general one.
      return needle.size() == 1 ? text_.find(needle[0], from) : text_.find(needle, from);
    }
    return findWholeCharacters(needle, from);
  }

  std::string_view text() const { return text_; }

 private:
  bool isBoundary(std::size_t byte) const {
    return !characters_ || characters_->startsCharacterAt(byte);
  }
  std::size_t findWholeCharacters(std::string_view needle, std::size_t from) const;

  std::string_view text_;
  std::optional<Utf8Text> characters_;  // only for text that is not a character per byte
};

// The pieces of a text between whole-character occurrences of a separator (not empty), empty
// pieces included, one at a time: "a  b" split on " " gives "a", "", "b".
class CharacterSplitter {
 public:
  CharacterSplitter(std::string_view text, std::string_view separator)
      : text_(text), separator_(separator) {}

  // The next piece, or false when every piece has been given. Inline, as the splitting of a
  // viewBox or a transform's parameters is a handful of bytes.
  bool next(std::string_view& piece) {
    if (done_) return false;
    const std::string_view text = text_.text();
    const std::size_t at = text_.find(separator_, start_);
    if (at == std::string_view::npos) {
      piece = text.substr(start_);
      done_ = true;
    } else {
      piece = text.substr(start_, at - start_);
      start_ = at + separator_.size();
    }
    return true;
  }

 private:
  CharacterText text_;
  std::string_view separator_;
  std::size_t start_ = 0;
  bool done_ = false;
};

// Every piece of a CharacterSplitter.
std::vector<std::string_view> splitOnCharacters(std::string_view text, std::string_view separator);

// The text without the tabs and space characters (Unicode's space separators: the blank, the
// no-break space, the ideographic space and the rest of their category) at either end, as the
// platform trims "white space, not line breaks". Trimming goes code point by code point, so a
// blank carrying a combining mark loses the blank and keeps the mark.
std::string_view trimSpacesAndTabs(std::string_view text);

}  // namespace tessaline
