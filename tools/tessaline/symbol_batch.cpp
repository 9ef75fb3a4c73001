#include "symbol_batch.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace tessaline::cli {

std::vector<std::string> keysInTableOrder(const SVGFile& file) {
  std::vector<std::string> keys;
  keys.reserve(file.symbolDefinitions.size());
  for (const auto& entry : file.symbolDefinitions) keys.push_back(entry.first);
  return keys;
}

void renderKeysInParallel(
    const SVGFile& file, const std::vector<std::string>& keys, unsigned jobs, RasterBackend backend,
    const std::function<void(std::size_t index, TessalineResponse response)>& consume) {
  if (jobs == 0) jobs = std::max(1u, std::thread::hardware_concurrency());
  const auto threadCount = static_cast<unsigned>(std::min<std::size_t>(jobs, keys.size()));

  // A parsed file is immutable while it is drawn, so the workers share it without locks; they
  // only share the counter that hands out the next key.
  std::atomic<std::size_t> next{0};
  auto work = [&] {
    for (std::size_t i = next++; i < keys.size(); i = next++) {
      consume(i, file.getUIImageForKey(keys[i], backend));
    }
  };
  if (threadCount <= 1) {
    work();
    return;
  }
  std::vector<std::jthread> workers;
  workers.reserve(threadCount);
  for (unsigned t = 0; t < threadCount; ++t) workers.emplace_back(work);
}

}  // namespace tessaline::cli
