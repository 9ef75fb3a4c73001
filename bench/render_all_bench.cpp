// Rendering every symbol of a fetched sprite, the way the render-all command does: the keys split
// among worker threads that pull the next key from a shared counter, each response optionally
// encoded as PNG (in memory, so the disk does not take part).
//
// Arguments: sprite index, thread count (0: one per core), 1 to encode PNG.
#include <atomic>
#include <thread>
#include <vector>

#include "bench_data.h"
#include "tessaline/tessaline.h"

namespace tessaline::bench {
namespace {

void renderAll(const SVGFile& file, const std::vector<std::string>& keys, unsigned threads,
               bool encode) {
  std::atomic<std::size_t> next{0};
  auto work = [&] {
    for (std::size_t i = next++; i < keys.size(); i = next++) {
      const TessalineResponse response = file.getUIImageForKey(keys[i]);
      if (encode && response.bitmap()) benchmark::DoNotOptimize(response.bitmap()->encodePng());
      benchmark::DoNotOptimize(response.bitmap());
    }
  };
  if (threads <= 1) {
    work();
    return;
  }
  std::vector<std::jthread> workers;
  for (unsigned t = 0; t < threads; ++t) workers.emplace_back(work);
}

void BM_RenderAll(benchmark::State& state) {
  const std::optional<std::string> text = loadSpriteFor(state);
  if (!text) return;
  const SVGFile file(*text);
  std::vector<std::string> keys;
  for (const auto& entry : file.symbolDefinitions) keys.push_back(entry.first);
  unsigned threads = static_cast<unsigned>(state.range(1));
  if (threads == 0) threads = std::max(1u, std::thread::hardware_concurrency());
  const bool encode = state.range(2) != 0;
  for (auto _ : state) renderAll(file, keys, threads, encode);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * keys.size()));
  state.counters["threads"] = threads;
  state.counters["png"] = encode ? 1 : 0;
}
// One set for the thread and PNG comparisons keeps the run short; bootstrap-icons has the most
// symbols of the three and both filled and stroked shapes.
BENCHMARK(BM_RenderAll)
    ->ArgsProduct({{0}, {1, 0}, {0, 1}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(2.0);

// PNG encoding alone, over the rendered images of the same set, to put beside rendering.
void BM_EncodeAll(benchmark::State& state) {
  const std::optional<std::string> text = loadSpriteFor(state);
  if (!text) return;
  const SVGFile file(*text);
  std::vector<Image> images;
  for (const auto& entry : file.symbolDefinitions) {
    TessalineResponse response = file.getUIImageForKey(entry.first);
    if (response.bitmap()) images.push_back(*response.bitmap());
  }
  for (auto _ : state) {
    for (const Image& image : images) benchmark::DoNotOptimize(image.encodePng());
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * images.size()));
}
BENCHMARK(BM_EncodeAll)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace tessaline::bench
