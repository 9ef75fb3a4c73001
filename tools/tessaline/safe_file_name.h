#pragma once

#include <string>
#include <string_view>

namespace tessaline::cli {

// The PNG file name for a symbol key: every byte outside A-Z a-z 0-9 _ - is written as "%XX"
// (upper-case hexadecimal), then ".png" is appended. The name never holds a path separator,
// never starts with a dot, and different keys give different names (the encoding is reversible).
// The empty key, which percent-encoding would turn into the hidden name ".png", becomes "%.png":
// a lone "%" is never produced by the encoding.
std::string safeFileName(std::string_view key);

}  // namespace tessaline::cli
