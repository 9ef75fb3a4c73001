#include "safe_file_name.h"

namespace tessaline::cli {
namespace {

bool keptAsIs(unsigned char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '-';
}

}  // namespace

std::string safeFileName(std::string_view key) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  if (key.empty()) return "%.png";
  std::string name;
  name.reserve(key.size() + 4);
  for (const char ch : key) {
    const auto c = static_cast<unsigned char>(ch);
    if (keptAsIs(c)) {
      name += ch;
    } else {
      name += '%';
      name += kHex[c >> 4];
      name += kHex[c & 0x0f];
    }
  }
  name += ".png";
  return name;
}

}  // namespace tessaline::cli
