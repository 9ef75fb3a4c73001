#include "platform/fatal.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#ifdef TESSALINE_FATAL_THROWS
#include "platform/fatal_stop.h"
#endif

namespace tessaline {

void fatalError(std::string_view message) {
#ifdef TESSALINE_FATAL_THROWS
  // Fuzzing build: unwind to the harness so deliberate stops are told apart from real faults.
  throw FatalStop(std::string(message));
#else
  std::fprintf(stderr, "tessaline: fatal error: %.*s\n", static_cast<int>(message.size()),
               message.data());
  std::fflush(stderr);
  std::abort();
#endif
}

}  // namespace tessaline
