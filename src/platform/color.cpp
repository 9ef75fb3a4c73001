#include "platform/color.h"

#include <cstdint>
#include <span>
#include <string>

#include "platform/utf8_text.h"

namespace tessaline {
namespace {

// The white space and line breaks a hexadecimal scanner skips before the number: tab, the line
// breaks, and the Unicode space separators.
bool isSkippedBeforeNumber(char32_t c) {
  switch (c) {
    case 0x09:
    case 0x0A:
    case 0x0B:
    case 0x0C:
    case 0x0D:
    case 0x20:
    case 0x85:
    case 0xA0:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
      return true;
    default:
      return c >= 0x2000 && c <= 0x200A;
  }
}

int hexDigitValue(char32_t c) {
  if (c >= '0' && c <= '9') return static_cast<int>(c - '0');
  if (c >= 'a' && c <= 'f') return static_cast<int>(c - 'a' + 10);
  if (c >= 'A' && c <= 'F') return static_cast<int>(c - 'A' + 10);
  return -1;
}

// Reads a hexadecimal number the way the platform scanner does: skips leading white space, takes
// an optional "0x" or "0X" when a hex digit follows it, then the longest run of hex digits. A "0x"
// with no digit after it reads as the single digit "0" (value 0), as the scanner does. Fails only
// when no digit was read. The scanner reads code points, below the character level: the "0" of
// "0" + U+0301 is a digit to it. At most eight characters reach here, and a digit is never a
// compound character's mark, so at most eight digits are read and the value cannot overflow.
std::optional<std::uint64_t> scanHexLongLong(std::span<const char32_t> text) {
  std::size_t i = 0;
  while (i < text.size() && isSkippedBeforeNumber(text[i])) ++i;
  if (i + 2 < text.size() && text[i] == '0' && (text[i + 1] == 'x' || text[i + 1] == 'X') &&
      hexDigitValue(text[i + 2]) >= 0) {
    i += 2;
  }
  std::uint64_t value = 0;
  std::size_t digits = 0;
  for (; i < text.size() && hexDigitValue(text[i]) >= 0; ++i, ++digits) {
    value = value * 16 + static_cast<std::uint64_t>(hexDigitValue(text[i]));
  }
  if (digits == 0) return std::nullopt;
  return value;
}

double channel(std::uint32_t rgba, int shift) {
  return ((rgba >> shift) & 0xFF) / 255.0;
}

}  // namespace

std::optional<Color> Color::fromHexString(std::string_view text) {
  if (!text.empty() && text.front() == '#') text.remove_prefix(1);
  std::string digits(text);
  // Six characters are an opaque colour; lengths are counted in characters, not bytes.
  if (Utf8Text(digits).size() == 6) digits += "FF";
  const Utf8Text scanned(digits);
  if (scanned.size() != 8) return std::nullopt;
  const auto value = scanHexLongLong(scanned.codePoints());
  if (!value) return std::nullopt;
  const auto rgba = static_cast<std::uint32_t>(*value);
  return Color{channel(rgba, 24), channel(rgba, 16), channel(rgba, 8), channel(rgba, 0)};
}

}  // namespace tessaline
