// libFuzzer target: parses arbitrary bytes as a document and renders every symbol.
//
// Built only with -DTESSALINE_FUZZ=ON (clang). In that build the single fatal-stop function
// throws FatalStop instead of aborting, so the deliberate stops (path data ending in spaces after a
// parameter, an odd polygon point list, scaled definition drawing without a transform, ...) unwind
// back here and are told apart from real faults, which the sanitizers report.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/fatal_stop.h"
#include "tessaline/tessaline.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    const tessaline::SVGFile file(text);
    for (const auto& [key, definition] : file.symbolDefinitions) {
      try {
        const tessaline::TessalineResponse response = file.getUIImageForKey(key);
        (void)response;
      } catch (const tessaline::FatalStop&) {
        // A deliberate stop while drawing this symbol; go on with the next one.
      }
    }
  } catch (const tessaline::FatalStop&) {
    // A deliberate stop while parsing.
  }
  return 0;
}
