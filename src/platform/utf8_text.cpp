#include "platform/utf8_text.h"

namespace tessaline {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool isContinuation(unsigned char byte) {
  return (byte & 0xC0) == 0x80;
}

// Decodes the sequence at the start of `text` (not empty); sets `length` to the bytes it takes.
// Overlong forms, surrogates and values past U+10FFFF are rejected as one-byte characters.
char32_t decodeOne(std::string_view text, std::size_t& length) {
  const auto lead = static_cast<unsigned char>(text[0]);
  length = 1;
  if (lead < 0x80) return lead;
  std::size_t needed = 0;
  char32_t value = 0;
  char32_t minimum = 0;
  if ((lead & 0xE0) == 0xC0) {
    needed = 1, value = lead & 0x1F, minimum = 0x80;
  } else if ((lead & 0xF0) == 0xE0) {
    needed = 2, value = lead & 0x0F, minimum = 0x800;
  } else if ((lead & 0xF8) == 0xF0) {
    needed = 3, value = lead & 0x07, minimum = 0x10000;
  } else {
    return kReplacement;
  }
  if (text.size() <= needed) return kReplacement;
  for (std::size_t i = 1; i <= needed; ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (!isContinuation(byte)) return kReplacement;
    value = (value << 6) | (byte & 0x3F);
  }
  if (value < minimum || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
    return kReplacement;
  }
  length = needed + 1;
  return value;
}

}  // namespace

Utf8Text::Utf8Text(std::string_view text) : text_(text) {
  offsets_.reserve(text.size() + 1);
  codePoints_.reserve(text.size());
  std::size_t offset = 0;
  while (offset < text.size()) {
    std::size_t length = 1;
    codePoints_.push_back(decodeOne(text.substr(offset), length));
    offsets_.push_back(offset);
    offset += length;
  }
  offsets_.push_back(text.size());
}

std::string_view Utf8Text::slice(std::size_t from, std::size_t to) const {
  return text_.substr(offsets_[from], offsets_[to] - offsets_[from]);
}

}  // namespace tessaline
