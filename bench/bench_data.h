// Fetched sprites for the whole-sprite benchmarks. They live in bench/data/
// (scripts/fetch-bench-data, never committed); a benchmark whose file is missing reports why
// instead of measuring nothing.
#pragma once

#include <benchmark/benchmark.h>

#include <fstream>
#include <optional>
#include <sstream>
#include <string>

namespace tessaline::bench {

// The three fetched sets, indexed by a benchmark argument.
inline constexpr const char* kSpriteFiles[] = {"bootstrap-icons.svg", "tabler-sprite.svg",
                                               "fontawesome-solid.svg"};
inline constexpr int kSpriteCount = 3;

inline std::optional<std::string> readBenchSprite(int index) {
  std::ifstream in(std::string(TESSALINE_BENCH_DATA_DIR) + "/" + kSpriteFiles[index],
                   std::ios::binary);
  if (!in) return std::nullopt;
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

// Loads the sprite the benchmark's first argument names, labels the run with its file name, and
// skips with a message when the data has not been fetched.
inline std::optional<std::string> loadSpriteFor(benchmark::State& state) {
  const int index = static_cast<int>(state.range(0));
  std::optional<std::string> text = readBenchSprite(index);
  if (!text) {
    state.SkipWithError("bench/data missing: run scripts/fetch-bench-data to fetch the sprites");
    return std::nullopt;
  }
  state.SetLabel(kSpriteFiles[index]);
  return text;
}

}  // namespace tessaline::bench
