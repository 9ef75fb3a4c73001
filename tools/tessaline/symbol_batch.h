#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "tessaline/tessaline.h"

namespace tessaline::cli {

// Every key of the document, in the table's order (byte order of the ids).
std::vector<std::string> keysInTableOrder(const SVGFile& file);

// Renders every key through the public API on up to `jobs` threads (0: one per core) and hands
// each response to `consume` together with the key's position in `keys`. `consume` runs on the
// worker threads, once per key, so it must only touch state that belongs to that position.
void renderKeysInParallel(
    const SVGFile& file, const std::vector<std::string>& keys, unsigned jobs, RasterBackend backend,
    const std::function<void(std::size_t index, TessalineResponse response)>& consume);

}  // namespace tessaline::cli
