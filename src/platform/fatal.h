#pragma once

#include <string_view>

namespace tessaline {

// Stops the process with a clear message on standard error. A handful of malformed inputs are
// deliberately fatal (reading past the end of path data or a point list, drawing a scaled
// definition without a transform); every one of them goes through here, so there is one place to
// break on and one place the fuzzing build redirects.
[[noreturn]] void fatalError(std::string_view message);

}  // namespace tessaline
