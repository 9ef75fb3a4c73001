#pragma once

#include <string_view>

namespace tessaline::cli {

// The report page's inline style sheet and script; kept apart from the markup builder so that
// each reads as its own language.
extern const std::string_view kReportStyle;
extern const std::string_view kReportScript;

}  // namespace tessaline::cli
