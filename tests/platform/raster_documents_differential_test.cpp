// Renders every symbol of the example sprite and of the test documents through the public API
// with the native backend and with cairo, the reference: both must report the same errors and
// draw pixels that differ only where anti-aliasing may differ.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "image_difference.h"
#include "support/test_support.h"
#include "tessaline/tessaline.h"

namespace tessaline {
namespace {

struct Document {
  std::string name;  // relative to tests/data
  std::string text;
};

// The example sprite and every document under tests/data, found on disk so new ones are covered.
std::vector<Document> documents() {
  std::vector<Document> found{{"../../examples/sprite.svg", ""}};
  const std::filesystem::path root(TESSALINE_TEST_DATA);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    if (entry.is_regular_file() && entry.path().extension() == ".svg") {
      found.push_back({std::filesystem::relative(entry.path(), root).generic_string(), ""});
    }
  }
  std::sort(found.begin(), found.end(), [](auto& a, auto& b) { return a.name < b.name; });
  for (Document& document : found) document.text = testing::readTestData(document.name);
  return found;
}

// Icons drawn at 256 x 256 are mostly interior, where the backends agree exactly; what differs
// is edges (cairo samples 15 sub-rows per pixel, we integrate exact areas; cairo flattens curves
// within 0.1 px, we within 0.05 px) and, for shapes whose outlines overlap inside one pixel (a
// stroke crossing itself, a round join's overlap), the fill rule applied to the pixel's summed
// area rather than per sub-row. So the bounds are on the mean difference over drawn pixels and
// on the share of drawn pixels past the edge noise rather than on the largest difference. At this
// size edges are a small share of what is drawn: the symbols measured so far stay below a mean
// of 0.1 levels with no pixel past the edge noise, and the bounds leave room for busier icons.
constexpr double kMaxMean = 1;
constexpr double kMaxShareOver = 0.01;

TEST(RasterDocumentsDifferential, EverySymbolRendersAlikeWithBothBackends) {
  int symbols = 0;
  for (const Document& document : documents()) {
    SCOPED_TRACE(document.name);
    ASSERT_FALSE(document.text.empty());
    const SVGFile file(document.text);
    for (const auto& [key, definition] : file.symbolDefinitions) {
      SCOPED_TRACE(key);
      ++symbols;
      const TessalineResponse reference = file.getUIImageForKey(key, RasterBackend::Cairo);
      const TessalineResponse native = file.getUIImageForKey(key, RasterBackend::Native);
      EXPECT_EQ(native.errors(), reference.errors());
      ASSERT_EQ(native.bitmap().has_value(), reference.bitmap().has_value());
      if (!native.bitmap()) continue;
      const testing::ImageDifference d =
          testing::compareImages(*reference.bitmap(), *native.bitmap());
      EXPECT_LE(d.mean, kMaxMean) << "largest channel difference " << d.max;
      EXPECT_LE(d.shareOver, kMaxShareOver) << "largest channel difference " << d.max;
      if (std::getenv("TESSALINE_RASTER_DIFF_STATS") != nullptr) {
        std::printf("%-28s %-24s max %3d mean %.3f over %.2f%%\n", document.name.c_str(),
                    key.c_str(), d.max, d.mean, 100 * d.shareOver);
      }
    }
  }
  // The example sprite alone has over twenty symbols; finding none means the files were missed.
  EXPECT_GE(symbols, 20);
}

}  // namespace
}  // namespace tessaline
