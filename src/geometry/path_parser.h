#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "geometry/path_builder.h"
#include "geometry/path_text.h"
#include "platform/path.h"

namespace tessaline {

// What one run of the path data parser leaves: the builder's path as it stood when parsing ended
// (a partial outline after an error, never absent) and the first error, if any.
struct [[nodiscard]] PathParserResult {
  Path path;
  std::optional<std::string> error;
};

// A single-pass scanner over the text of a path's `d` attribute. It knows the commands
// M m L l H h V v C c S s Q q T t A a Z z, plain decimal numbers (no exponent, no plus sign),
// and the space and the comma as the only separators. Each command becomes one call on the
// builder with absolute coordinates; the first syntax error ends the run with a message.
//
//   CGMutablePathWrapper builder;
//   PathParserResult result = PathParser("M0 0 L10 10 Z").parse(builder);
//   // result.path.dump() == "M 0 0 L 10 10 Z", result.error is empty
//
// Some inputs behave in ways kept on purpose because outlines must match existing documents:
// lower-case `t` offsets its reflected control point by the current point a second time; a
// separator after the last parameter makes the scanner look one character past the end of the
// text, which is a fatal stop; and `Z` followed by anything that is not a letter repeats the
// close without consuming input, for ever. Characters are user-perceived characters (see
// PathText); the run is linear in the length of the text.
class PathParser {
 public:
  explicit PathParser(std::string_view d);
  PathParser(const PathParser&) = delete;
  PathParser& operator=(const PathParser&) = delete;

  // Runs the whole text once, adding segments to `builder`. Meant to be called once.
  PathParserResult parse(CGMutablePathWrapper& builder);

  // The path data exactly as it stood in the attribute.
  const std::string d;

 private:
  // Advances to and returns the next character that is not a separator; absent at the end.
  std::optional<std::string_view> nextChar();
  // Reads the next number; absent when none starts at the next non-separator character.
  std::optional<float> nextFloat();
  // Whether the first character after `check` that is not a space is a letter.
  bool isNextCharALetter(std::int64_t check) const;

  bool isSeparatorAt(std::int64_t index) const;

  const detail::PathText text_;  // views `d`
  // Index of the last character consumed; -1 before anything is.
  std::int64_t currentChar = -1;
};

}  // namespace tessaline
