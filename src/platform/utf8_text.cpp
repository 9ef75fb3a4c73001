#include "platform/utf8_text.h"

#include <algorithm>

#include "platform/grapheme_break.h"

namespace tessaline {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isContinuation(unsigned char byte) {
  return (byte & 0xC0) == 0x80;
}

}  // namespace

DecodedCodePoint decodeUtf8At(std::string_view text, std::size_t at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
  const unsigned char lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  std::size_t length = 0;
  char32_t value = 0;
  char32_t minimum = 0;
  if ((lead & 0xE0) == 0xC0) {
    length = 2, value = lead & 0x1F, minimum = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    length = 3, value = lead & 0x0F, minimum = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    length = 4, value = lead & 0x07, minimum = 0x10000;
  } else {
    return {kReplacement, 1};
  }
  if (at + length > text.size()) return {kReplacement, 1};
  for (std::size_t i = 1; i < length; ++i) {
    if (!isContinuation(byte(i))) return {kReplacement, 1};
    value = (value << 6) | (byte(i) & 0x3F);
  }
  if (value < minimum || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
    return {kReplacement, 1};
  }
  return {value, length};
}

Utf8Text::Utf8Text(std::string_view text) : text_(text) {
  codePoints_.reserve(text.size());
  characterStarts_.reserve(text.size() + 1);
  const bool simple = hasOneCharacterPerByte(text);  // nearly every attribute text
  GraphemeBreaker breaker;
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCodePoint decoded = decodeUtf8At(text, at);
    if (simple || breaker.breaksBefore(decoded.codePoint)) {
      characterStarts_.push_back({at, codePoints_.size()});
    }
    codePoints_.push_back(decoded.codePoint);
    at += decoded.length;
  }
  characterStarts_.push_back({text.size(), codePoints_.size()});
}

std::string_view Utf8Text::slice(std::size_t from, std::size_t to) const {
  const std::size_t begin = characterStarts_[from].byte;
  return text_.substr(begin, characterStarts_[to].byte - begin);
}

bool Utf8Text::startsCharacterAt(std::size_t byte) const {
  const auto found =
      std::lower_bound(characterStarts_.begin(), characterStarts_.end(), byte,
                       [](const Start& start, std::size_t value) { return start.byte < value; });
  return found != characterStarts_.end() && found->byte == byte;
}

char32_t Utf8Text::character(std::size_t index) const {
  const std::size_t first = characterStarts_[index].codePoint;
  return characterStarts_[index + 1].codePoint == first + 1 ? codePoints_[first] : kCompound;
}

}  // namespace tessaline
