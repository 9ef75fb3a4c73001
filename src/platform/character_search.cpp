#include "platform/character_search.h"

#include <algorithm>

namespace tessaline {

std::size_t CharacterText::findWholeCharacters(std::string_view needle, std::size_t from) const {
  for (std::size_t at = text_.find(needle, from); at != std::string_view::npos;
       at = text_.find(needle, at + 1)) {
    if (isBoundary(at) && isBoundary(at + needle.size())) return at;
  }
  return std::string_view::npos;
}

std::vector<std::string_view> splitOnCharacters(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> pieces;
  CharacterSplitter splitter(text, separator);
  for (std::string_view piece; splitter.next(piece);) pieces.push_back(piece);
  return pieces;
}

namespace {

bool isSpaceOrTab(char32_t c) {
  return c == U' ' || c == U'\t' || c == 0x00A0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) ||
         c == 0x202F || c == 0x205F || c == 0x3000;
}

}  // namespace

std::string_view trimSpacesAndTabs(std::string_view text) {
  // One pass forward keeps the code points as decoding cuts them, broken sequences included:
  // from the first code point that is kept to the end of the last.
  std::size_t begin = text.size();
  std::size_t end = 0;
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCodePoint decoded = decodeUtf8At(text, at);
    if (!isSpaceOrTab(decoded.codePoint)) {
      begin = std::min(begin, at);
      end = at + decoded.length;
    }
    at += decoded.length;
  }
  return begin < end ? text.substr(begin, end - begin) : std::string_view();
}

}  // namespace tessaline
