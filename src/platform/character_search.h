#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tessaline {

// Prefix tests, searches and splits of attribute text that match whole user-perceived characters
// only, as the platform's string type does: a "(" or ";" followed by a combining mark is a
// different character and neither matches nor splits. Offsets are in bytes. Text that is ASCII
// without a carriage return (nearly all attribute text) has a character per byte and takes the
// byte operations directly.

// Whether `text` begins with the characters of `prefix`.
bool startsWithCharacters(std::string_view text, std::string_view prefix);

// Byte offset of the first occurrence of `needle` at or after byte `from` that starts and ends on
// character boundaries of `text`, or npos. `needle` must not be empty.
std::size_t findCharacters(std::string_view text, std::string_view needle, std::size_t from = 0);

// `text` split at every whole-character occurrence of `separator` (not empty), empty pieces
// included: "a  b" split on " " gives "a", "", "b".
std::vector<std::string_view> splitOnCharacters(std::string_view text, std::string_view separator);

}  // namespace tessaline
