#include "geometry/path_text.h"

#include <algorithm>

#include "geometry/grapheme_extend.h"
#include "platform/fatal.h"

namespace tessaline::detail {
namespace {

constexpr std::string_view kOutOfRange = "path data read past its end";

constexpr char32_t kReplacement = 0xFFFD;

struct Decoded {
  char32_t codePoint;
  std::size_t length;
};

bool isContinuation(unsigned char byte) {
  return (byte & 0xC0) == 0x80;
}

// One code point of UTF-8 at `at`; a malformed sequence decodes as U+FFFD of one byte.
Decoded decodeAt(std::string_view text, std::size_t at) {
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

bool isControl(char32_t c) {
  return c < 0x20 || (c >= 0x7F && c <= 0x9F);
}

}  // namespace

PathText::PathText(std::string_view text) : text_(text) {
  const bool ascii = std::all_of(text.begin(), text.end(),
                                 [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  if (ascii) {
    count_ = static_cast<std::int64_t>(text.size());
    return;
  }
  char32_t previous = 0;
  for (std::size_t at = 0; at < text.size();) {
    const Decoded decoded = decodeAt(text, at);
    const char32_t c = decoded.codePoint;
    const bool joins = at > 0 && ((previous == U'\r' && c == U'\n') ||
                                  (!isControl(previous) && extendsGraphemeCluster(c)));
    if (!joins) boundaries_.push_back(at);
    previous = c;
    at += decoded.length;
  }
  count_ = static_cast<std::int64_t>(boundaries_.size());
  boundaries_.push_back(text.size());
}

void PathText::checkIndex(std::int64_t index) const {
  if (index < 0 || index >= count_) fatalError(kOutOfRange);
}

std::size_t PathText::offset(std::int64_t index) const {
  return boundaries_.empty() ? static_cast<std::size_t>(index)
                             : boundaries_[static_cast<std::size_t>(index)];
}

int PathText::codeAt(std::int64_t index) const {
  checkIndex(index);
  const std::size_t at = offset(index);
  const auto byte = static_cast<unsigned char>(text_[at]);
  if (byte >= 0x80) return kNotAscii;
  if (!boundaries_.empty() && offset(index + 1) != at + 1) return kNotAscii;
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
