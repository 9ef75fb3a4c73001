#include "platform/character_search.h"

#include <algorithm>
#include <optional>

#include "platform/utf8_text.h"

namespace tessaline {
namespace {

bool hasOneCharacterPerByte(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80 && c != '\r'; });
}

// The byte offsets where characters of `text` start, and its end.
class CharacterBoundaries {
 public:
  explicit CharacterBoundaries(std::string_view text) {
    const Utf8Text characters(text);
    starts_.reserve(characters.size() + 1);
    for (std::size_t i = 0; i <= characters.size(); ++i) {
      starts_.push_back(characters.slice(0, i).size());
    }
  }
  bool contains(std::size_t byte) const {
    return std::binary_search(starts_.begin(), starts_.end(), byte);
  }

 private:
  std::vector<std::size_t> starts_;
};

std::size_t findWhole(std::string_view text, std::string_view needle, std::size_t from,
                      const CharacterBoundaries& boundaries) {
  for (std::size_t at = text.find(needle, from); at != std::string_view::npos;
       at = text.find(needle, at + 1)) {
    if (boundaries.contains(at) && boundaries.contains(at + needle.size())) return at;
  }
  return std::string_view::npos;
}

}  // namespace

bool startsWithCharacters(std::string_view text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  if (hasOneCharacterPerByte(text)) return true;
  return CharacterBoundaries(text).contains(prefix.size());
}

std::size_t findCharacters(std::string_view text, std::string_view needle, std::size_t from) {
  if (hasOneCharacterPerByte(text)) return text.find(needle, from);
  return findWhole(text, needle, from, CharacterBoundaries(text));
}

std::vector<std::string_view> splitOnCharacters(std::string_view text, std::string_view separator) {
  std::optional<CharacterBoundaries> boundaries;
  if (!hasOneCharacterPerByte(text)) boundaries.emplace(text);
  const auto next = [&](std::size_t from) {
    return boundaries ? findWhole(text, separator, from, *boundaries) : text.find(separator, from);
  };
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  for (std::size_t at = next(0); at != std::string_view::npos; at = next(start)) {
    pieces.push_back(text.substr(start, at - start));
    start = at + separator.size();
  }
  pieces.push_back(text.substr(start));
  return pieces;
}

}  // namespace tessaline
