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

}  // namespace
}  // namespace tessaline::bench
