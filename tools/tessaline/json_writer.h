#pragma once

#include <nlohmann/json.hpp>

#include <ostream>

namespace tessaline::cli {

// Writes `value` in the layout of nlohmann's dump(2) (two blanks per level), except that an array
// of numbers (a view box, a point) stays on one line and indentation stops growing past 32
// levels. Written without recursion, since a document may nest `defs` and clip paths a hundred
// thousand levels deep. Text that is not valid UTF-8 gets replacement characters.
void writeJson(std::ostream& out, const nlohmann::ordered_json& value);

}  // namespace tessaline::cli
