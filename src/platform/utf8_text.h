#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace tessaline {

// Attribute texts are measured and indexed in characters, not bytes: a colour must have exactly
// eight characters and a transform list is cut at character positions. A character here is one
// Unicode code point of the UTF-8 text; a byte that does not begin a well-formed sequence counts
// as a character of its own (code point U+FFFD), so every byte belongs to exactly one character.
// Combining sequences count one per code point; only texts that no real document holds differ.
class Utf8Text {
 public:
  explicit Utf8Text(std::string_view text);

  // Number of characters.
  std::size_t size() const { return offsets_.size() - 1; }
  // The bytes of characters [from, to); both at most size().
  std::string_view slice(std::size_t from, std::size_t to) const;
  // The code point of character `index` (< size()).
  char32_t codePoint(std::size_t index) const { return codePoints_[index]; }

 private:
  std::string_view text_;
  std::vector<std::size_t> offsets_;  // byte offset of each character, then the text's size
  std::vector<char32_t> codePoints_;
};

}  // namespace tessaline
