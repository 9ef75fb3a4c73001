#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

namespace tessaline {

// One code point decoded from UTF-8 and the bytes it took. Overlong forms, surrogates, values past
// U+10FFFF and broken sequences decode as U+FFFD of one byte, so every byte belongs to exactly one
// code point and a broken sequence never swallows the character after it.
struct DecodedCodePoint {
  char32_t codePoint;
  std::size_t length;
};
DecodedCodePoint decodeUtf8At(std::string_view text, std::size_t at);

// Attribute texts are measured and indexed in user-perceived characters, as the platform's string
// type counts them: a colour must have exactly eight characters, a transform list is cut at
// character positions, and "(" followed by a combining mark is not a "(".
class Utf8Text {
 public:
  // What character() answers for a character made of more than one code point.
  static constexpr char32_t kCompound = 0xFFFFFFFF;

  explicit Utf8Text(std::string_view text);

  // Number of characters.
  std::size_t size() const { return characterStarts_.size() - 1; }
  // The bytes of characters [from, to); both at most size().
  std::string_view slice(std::size_t from, std::size_t to) const;
  // Where character `index` (at most size(), which gives the text's length) starts, in bytes.
  std::size_t byteOffset(std::size_t index) const { return characterStarts_[index].byte; }
  // Whether a character starts at `byte` (the text's length counts as a start).
  bool startsCharacterAt(std::size_t byte) const;
  // The code point of character `index` (< size()) when it is a single one, else kCompound.
  char32_t character(std::size_t index) const;
  // Every code point of the text in order, for readers that work below the character level.
  std::span<const char32_t> codePoints() const { return codePoints_; }

 private:
  struct Start {
    std::size_t byte;
    std::size_t codePoint;
  };
  std::string_view text_;
  std::vector<char32_t> codePoints_;
  std::vector<Start> characterStarts_;  // where each character starts, then the text's end
};

}  // namespace tessaline
