#pragma once

#include <stdexcept>
#include <string>

namespace tessaline {

// Thrown by fatalError() only in the fuzzing build (TESSALINE_FATAL_THROWS).
class FatalStop : public std::runtime_error {
 public:
  explicit FatalStop(const std::string& message) : std::runtime_error(message) {}
};

}  // namespace tessaline
