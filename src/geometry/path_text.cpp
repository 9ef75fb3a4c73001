#include "geometry/path_text.h"

#include "platform/fatal.h"
#include "platform/grapheme_break.h"

namespace tessaline::detail {
namespace {

constexpr std::string_view kOutOfRange = "path data read past its end";

}  // namespace

PathText::PathText(std::string_view text) : text_(text) {
  if (hasOneCharacterPerByte(text)) {
    count_ = static_cast<std::int64_t>(text.size());
    return;
  }
  characters_.emplace(text);
  count_ = static_cast<std::int64_t>(characters_->size());
}

void PathText::stopOutOfRange() {
  fatalError(kOutOfRange);
}

std::size_t PathText::offset(std::int64_t index) const {
  return characters_ ? characters_->byteOffset(static_cast<std::size_t>(index))
                     : static_cast<std::size_t>(index);
}

int PathText::codeAtBoundary(std::int64_t index) const {
  const std::size_t at = offset(index);
  const auto byte = static_cast<unsigned char>(text_[at]);
  if (byte >= 0x80 || offset(index + 1) != at + 1) return kNotAscii;
  return byte;
}

std::string_view PathText::characterAt(std::int64_t index) const {
  checkIndex(index);
  return slice(index, index + 1);
}

std::string_view PathText::slice(std::int64_t first, std::int64_t last) const {
  const std::size_t from = offset(first);
  return text_.substr(from, offset(last) - from);
}

}  // namespace tessaline::detail
