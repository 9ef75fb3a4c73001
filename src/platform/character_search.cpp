#include "platform/character_search.h"

#include <algorithm>

#include "platform/utf8_text.h"

namespace tessaline {

void CharacterBoundaries::findStarts(std::string_view text) {
  const Utf8Text characters(text);
  starts_.reserve(characters.size() + 1);
  for (std::size_t i = 0; i <= characters.size(); ++i) {
    starts_.push_back(characters.slice(0, i).size());
  }
}

bool CharacterBoundaries::startsAt(std::size_t byte) const {
  return std::binary_search(starts_.begin(), starts_.end(), byte);
}

std::size_t CharacterBoundaries::findWholeCharacters(std::string_view text, std::string_view needle,
                                                     std::size_t from) const {
  for (std::size_t at = text.find(needle, from); at != std::string_view::npos;
       at = text.find(needle, at + 1)) {
    if (startsAt(at) && startsAt(at + needle.size())) return at;
  }
  return std::string_view::npos;
}

bool startsWithCharacters(std::string_view text, std::string_view prefix) {
  return text.starts_with(prefix) && CharacterBoundaries(text).contains(prefix.size());
}

std::size_t findCharacters(std::string_view text, std::string_view needle, std::size_t from) {
  return CharacterBoundaries(text).findWhole(text, needle, from);
}

std::vector<std::string_view> splitOnCharacters(std::string_view text, std::string_view separator) {
  std::vector<std::string_view> pieces;
  CharacterSplitter splitter(text, separator);
  for (std::string_view piece; splitter.next(piece);) pieces.push_back(piece);
  return pieces;
}

}  // namespace tessaline
