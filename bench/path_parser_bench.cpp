// Path data parsing must stay linear in the length of `d`: every character is addressed by
// index, so the index must be constant time, for ASCII text and for text with other characters.

#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "geometry/path_builder.h"
#include "geometry/path_parser.h"

namespace tessaline {
namespace {

// Path data of about `bytes` bytes using every command, absolute and relative, with no trailing
// separator (which would be a fatal stop).
std::string makePathData(std::size_t bytes) {
  static constexpr std::array<std::string_view, 10> kSegments = {
      " L12.5 -3.25", " c1.5 2 3 4 5 6", " q1 1 2 2",     " a5 5 0 0 1 10 10", " h4 v-4",
      " S1 2 3 4",    " t3 3",           " C0,1,2,3,4,5", " A7 3 30 1 0 -6 2", " Z m1 1"};
  std::string d = "M0 0";
  d.reserve(bytes + 32);
  for (std::size_t i = 0; d.size() < bytes; ++i) d += kSegments[i % kSegments.size()];
  return d;
}

void parseAndCheck(benchmark::State& state, const std::string& d, bool expectError) {
  {
    CGMutablePathWrapper builder;
    const PathParserResult result = PathParser(d).parse(builder);
    if (result.error.has_value() != expectError) {
      state.SkipWithError(result.error ? result.error->c_str() : "expected an error at the end");
      return;
    }
    state.counters["segments"] = static_cast<double>(result.path.verbs().size());
  }
  for (auto _ : state) {
    CGMutablePathWrapper builder;
    PathParserResult result = PathParser(d).parse(builder);
    benchmark::DoNotOptimize(result.path.verbs().data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * d.size()));
  state.SetComplexityN(static_cast<std::int64_t>(d.size()));
}

void BM_ParsePathDataAscii(benchmark::State& state) {
  parseAndCheck(state, makePathData(static_cast<std::size_t>(state.range(0))), false);
}

// One character outside ASCII at the very end sends the whole text through the character index;
// the parser reads everything before it and then stops there with an error.
void BM_ParsePathDataNonAscii(benchmark::State& state) {
  parseAndCheck(state, makePathData(static_cast<std::size_t>(state.range(0))) + " \xC3\xA9", true);
}

BENCHMARK(BM_ParsePathDataAscii)
    ->Arg(10 << 10)
    ->Arg(100 << 10)
    ->Arg(1 << 20)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

BENCHMARK(BM_ParsePathDataNonAscii)
    ->Arg(10 << 10)
    ->Arg(100 << 10)
    ->Arg(1 << 20)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

}  // namespace
}  // namespace tessaline
