#include <gtest/gtest.h>

#include <map>
#include <string>
#include <thread>
#include <vector>

#include "support/test_support.h"
#include "tessaline/tessaline.h"

namespace tessaline {
namespace {

using Rendered = std::pair<std::optional<Image>, std::vector<std::string>>;

Rendered render(const SVGFile& file, const std::string& key) {
  const TessalineResponse response = file.getUIImageForKey(key);
  return {response.bitmap(), response.errors()};
}

// One parsed file, every symbol rendered by several threads at once, each thread in its own
// order and more than once: every result must equal the single-threaded one.
TEST(ConcurrentRendering, ThreadsSharingOneFileProduceTheSamePixels) {
  const SVGFile file(testing::readTestData("../../examples/sprite.svg"));
  std::vector<std::string> keys;
  std::map<std::string, Rendered> reference;
  for (const auto& [key, definition] : file.symbolDefinitions) {
    keys.push_back(key);
    reference[key] = render(file, key);
    ASSERT_TRUE(reference[key].first.has_value()) << key;
  }
  ASSERT_GE(keys.size(), 10u);

  constexpr int kThreads = 4, kRounds = 3;
  std::vector<std::vector<std::string>> mismatches(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < kRounds; ++round) {
        for (std::size_t i = 0; i < keys.size(); ++i) {
          // Start each thread at a different symbol so different symbols overlap in time.
          const std::string& key = keys[(i + t * keys.size() / kThreads) % keys.size()];
          if (render(file, key) != reference.at(key)) mismatches[t].push_back(key);
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(mismatches[t], std::vector<std::string>{}) << t;
}

}  // namespace
}  // namespace tessaline
