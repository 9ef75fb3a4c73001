// Rendering every symbol of a fetched sprite, the way the render-all command does: the keys split
// among worker threads that pull the next key from a shared counter, each response optionally
// encoded as PNG (in memory, so the disk does not take part).
//
// Arguments: sprite index, thread count (0: one per core), 1 to encode PNG.
//
// With PNG, each icon's rendering and its encoding are also timed apart, so that the share of PNG
// writing (counter png_over_render) comes from one and the same run. Taken as the difference of
// two runs, it moved by half on a shared machine whose speed changed between them.
#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "bench_data.h"
#include "tessaline/tessaline.h"

namespace tessaline::bench {
namespace {

using Clock = std::chrono::steady_clock;

// Time spent rendering and encoding, summed over every icon and thread of the runs so far.
struct SplitTimes {
  std::atomic<Clock::rep> render{0};
  std::atomic<Clock::rep> png{0};
};

void renderAll(const SVGFile& file, const std::vector<std::string>& keys, unsigned threads,
               bool encode, SplitTimes& split) {
  std::atomic<std::size_t> next{0};
  auto work = [&] {
    Clock::duration render{}, png{};
    for (std::size_t i = next++; i < keys.size(); i = next++) {
      if (!encode) {
        benchmark::DoNotOptimize(file.getUIImageForKey(keys[i]).bitmap());
        continue;
      }
      const Clock::time_point start = Clock::now();
      const TessalineResponse response = file.getUIImageForKey(keys[i]);
      const Clock::time_point rendered = Clock::now();
      if (response.bitmap()) benchmark::DoNotOptimize(response.bitmap()->encodePng());
      const Clock::time_point encoded = Clock::now();
      render += rendered - start;
      png += encoded - rendered;
    }
    split.render += render.count();
    split.png += png.count();
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
  SplitTimes split;
  for (auto _ : state) renderAll(file, keys, threads, encode, split);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * keys.size()));
  state.counters["threads"] = threads;
  state.counters["png"] = encode ? 1 : 0;
  if (encode && split.render > 0) {
    state.counters["png_over_render"] =
        static_cast<double>(split.png) / static_cast<double>(split.render);
  }
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
