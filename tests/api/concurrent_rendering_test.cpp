#include <gtest/gtest.h>

#include <map>
#include <string>
#include <thread>
#include <vector>

#include "support/test_support.h"
#include "tessaline/tessaline.h"

namespace tessaline {
namespace {

struct Rendered {
  std::optional<Image> bitmap;
  std::vector<std::string> errors;
  friend bool operator==(const Rendered&, const Rendered&) = default;
};

// One parsed file, every symbol rendered by several threads at once, each thread in its own
// order and more than once: every result must equal the single-threaded one.
TEST(ConcurrentRendering, ThreadsSharingOneFileProduceTheSamePixels) {
  const SVGFile file(testing::readTestData("../../examples/sprite.svg"));
  std::vector<std::string> keys;
  for (const auto& entry : file.symbolDefinitions) keys.push_back(entry.first);
  ASSERT_GE(keys.size(), 10u);

  std::map<std::string, Rendered> reference;
  for (const std::string& key : keys) {
    const TessalineResponse response = file.getUIImageForKey(key);
    reference[key] = {response.bitmap(), response.errors()};
    ASSERT_TRUE(response.bitmap().has_value()) << key;
  }

  constexpr int kThreads = 4;
  constexpr int kRounds = 3;
  std::vector<std::vector<std::string>> mismatches(kThreads);
  std::vector<std::thread> threads;
  for (int t = 0; t < kThreads; ++t) {
    threads.emplace_back([&, t] {
      for (int round = 0; round < kRounds; ++round) {
        for (std::size_t i = 0; i < keys.size(); ++i) {
          // Start each thread at a different symbol so different symbols overlap in time.
          const std::string& key = keys[(i + t * keys.size() / kThreads) % keys.size()];
          const TessalineResponse response = file.getUIImageForKey(key);
          if (!(Rendered{response.bitmap(), response.errors()} == reference.at(key))) {
            mismatches[t].push_back(key);
          }
        }
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int t = 0; t < kThreads; ++t) EXPECT_EQ(mismatches[t], std::vector<std::string>{}) << t;
}

}  // namespace
}  // namespace tessaline
