// Rendering one symbol through the public API, for representative kinds of icon taken from the
// bundled example sprite: filled paths, stroked paths with round joins and caps, a clip path and
// `use` references. Each iteration is one getUIImageForKey on the native backend, so the time
// includes the fresh canvas and the image handed back.
#include <benchmark/benchmark.h>

#include <fstream>
#include <sstream>
#include <string>

#include "tessaline/tessaline.h"

namespace tessaline::bench {
namespace {

SVGFile exampleSprite() {
  std::ifstream in(TESSALINE_EXAMPLE_SPRITE, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return SVGFile(text.str());
}

void renderSymbol(benchmark::State& state, const std::string& key) {
  const SVGFile file = exampleSprite();
  if (!file.symbolDefinitions.contains(key)) {
    state.SkipWithError(("examples/sprite.svg has no symbol " + key).c_str());
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(file.getUIImageForKey(key));
  state.SetLabel(key);
}

BENCHMARK_CAPTURE(renderSymbol, filled, std::string("home"))->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(renderSymbol, filled_curves, std::string("commands-absolute"))
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(renderSymbol, stroked_round, std::string("stroke-only"))
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(renderSymbol, stroked_joins, std::string("line-joins"))
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(renderSymbol, clip_path, std::string("clip-by-reference"))
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(renderSymbol, use, std::string("use-symbol"))->Unit(benchmark::kMicrosecond);

// What every render pays before and besides its geometry: an empty symbol (a fresh canvas, its
// clearing and the image handed back) and one opaque square over the whole canvas (the same plus
// painting every pixel once). Together they put a floor under any icon's time: the empty cost
// plus the share of the canvas the icon paints times the difference.
void renderFloor(benchmark::State& state, const std::string& content) {
  const SVGFile file("<svg><symbol id='s' viewBox='0 0 16 16'>" + content + "</symbol></svg>");
  for (auto _ : state) benchmark::DoNotOptimize(file.getUIImageForKey("s"));
}

BENCHMARK_CAPTURE(renderFloor, empty, std::string())->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(renderFloor, full_canvas, std::string("<rect width='16' height='16'/>"))
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tessaline::bench
