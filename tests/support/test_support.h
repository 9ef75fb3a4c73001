#pragma once

#include <string>

namespace tessaline::testing {

// Contents of a file under tests/data, or an empty string (and a test failure) when unreadable.
std::string readTestData(const std::string& relativePath);

}  // namespace tessaline::testing
