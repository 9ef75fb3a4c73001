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

}  // namespace tessaline
