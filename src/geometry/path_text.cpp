#include "geometry/path_text.h"

#include <algorithm>

#include "platform/fatal.h"
#include "platform/grapheme_break.h"
#include "platform/utf8_text.h"

namespace tessaline::detail {
namespace {

constexpr std::string_view kOutOfRange = "path data read past its end";

}  // namespace

PathText::PathText(std::string_view text) : text_(text) {
  if (hasOneCharacterPerByte(text)) {
    count_ = static_cast<std::int64_t>(text.size());
    return;
  }
  GraphemeBreaker breaker;
  for (std::size_t at = 0; at < text.size();) {
    const DecodedCodePoint decoded = decodeUtf8At(text, at);
    if (breaker.breaksBefore(decoded.codePoint)) boundaries_.push_back(at);
    at += decoded.length;
  }
  count_ = static_cast<std::int64_t>(boundaries_.size());
  boundaries_.push_back(text.size());
}

void PathText::stopOutOfRange() {
  fatalError(kOutOfRange);
}

std::size_t PathText::offset(std::int64_t index) const {
  return boundaries_.empty() ? static_cast<std::size_t>(index)
                             : boundaries_[static_cast<std::size_t>(index)];
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
