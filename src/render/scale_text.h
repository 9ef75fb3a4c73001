#pragma once

#include <string>

namespace tessaline {

// The decimal text of a scale factor appended to a transform list: the shortest text that reads
// back as the same double, always with a decimal point or an exponent (1 -> "1.0",
// 0.5 -> "0.5", 1e+20 -> "1e+20"); "inf" and "nan" for the factors of a zero-sized box.
std::string formatScaleFactor(double value);

}  // namespace tessaline
