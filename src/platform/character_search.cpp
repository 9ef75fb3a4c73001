#include "platform/character_search.h"

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

bool isContinuationByte(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

}  // namespace

std::string_view trimSpacesAndTabs(std::string_view text) {
  std::size_t begin = 0;
  while (begin < text.size()) {
    const DecodedCodePoint decoded = decodeUtf8At(text, begin);
    if (!isSpaceOrTab(decoded.codePoint)) break;
    begin += decoded.length;
  }
  std::size_t end = text.size();
  while (end > begin) {
    // Back to where the last code point starts: at most three continuation bytes precede it.
    std::size_t start = end - 1;
    while (start > begin && end - start < 4 && isContinuationByte(text[start])) --start;
    const DecodedCodePoint decoded = decodeUtf8At(text, start);
    if (start + decoded.length != end || !isSpaceOrTab(decoded.codePoint)) break;
    end = start;
  }
  return text.substr(begin, end - begin);
}

}  // namespace tessaline
