// Huge, wide and deep documents parse, render and free: no stack overflow, no quadratic blow-up
// (ctest's timeout catches one), and the hostile part still behaves as a small document would.
#include "hostile_documents.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "tessaline/tessaline.h"

namespace tessaline {
namespace {

using testing::HostileKind;
using Texts = std::vector<std::string>;

constexpr Rgba kRed{255, 0, 0, 255};
constexpr Rgba kBlue{0, 0, 255, 255};
constexpr Rgba kTransparent{0, 0, 0, 0};

struct Expected {
  Texts errors;
  Rgba centre;
  std::size_t symbols = 3;  // at least: "first", "last" and the hostile one
};

TEST(HostileDocuments, ParseRenderAndFree) {
  const std::map<HostileKind, Expected> hostile = {
      // The grey diagonal, drawn last, crosses the centre of every icon.
      {HostileKind::LargeDocument, {{}, {0x88, 0x88, 0x88, 255}, 40000}},
      {HostileKind::ManySymbols, {{}, {0, 0, 0, 255}, 100002}},
      {HostileKind::LongPath, {{}, {0, 0, 0, 255}}},
      {HostileKind::DeepGroups, {{}, kBlue}},
      // Only the outermost `defs` is searched for the referenced element.
      {HostileKind::DeepDefs, {{"No SVG found for href link"}, kTransparent}},
      // A clip path's first child must be a shape; here it is another clip path.
      {HostileKind::DeepClipPaths, {{"Unable to find clip path for key"}, kTransparent}},
      // Every unknown level is reported; its content is drawn all the same.
      {HostileKind::DeepUnknown, {Texts(100000, "Encountered unknown SVG component: x"), kBlue}},
  };
  for (const testing::HostileCase& c : testing::hostileCases()) {
    SCOPED_TRACE(std::string(c.name));
    std::optional<SVGFile> file(std::in_place, testing::makeHostileDocument(c.kind));
    EXPECT_GE(file->symbolDefinitions.size(), hostile.at(c.kind).symbols);
    // The whole document was read: the symbols before and after the hostile part are there.
    const std::pair<std::string, Expected> keys[] = {
        {"first", {{}, kRed}}, {"last", {{}, kRed}}, {std::string(c.key), hostile.at(c.kind)}};
    for (const auto& [key, expected] : keys) {
      SCOPED_TRACE(key);
      const TessalineResponse response = file->getUIImageForKey(key);
      ASSERT_TRUE(response.bitmap().has_value());
      EXPECT_EQ(response.errors(), expected.errors);
      EXPECT_EQ(response.bitmap()->pixel(128, 128), expected.centre);
    }

    file.reset();  // freeing must not recurse either
  }
}

TEST(HostileDocuments, EntityTricksGiveAnEmptyTableQuickly) {
  // Nested entities that would expand to 10^10 bytes are refused by the XML reader's
  // amplification limit; an external entity is never fetched. Either way the document is not
  // well-formed for us, and a malformed document gives an empty table.
  std::string laughs = "<?xml version='1.0'?><!DOCTYPE svg [<!ENTITY a0 'xxxxxxxxxx'>";
  for (int i = 1; i < 10; ++i) {
    laughs += "<!ENTITY a" + std::to_string(i) + " '";
    for (int j = 0; j < 10; ++j) laughs += "&a" + std::to_string(i - 1) + ";";
    laughs += "'>";
  }
  laughs += "]><svg><symbol id='s' viewBox='0 0 24 24'><path d='&a9;'/></symbol></svg>";
  const std::string external =
      "<?xml version='1.0'?><!DOCTYPE svg [<!ENTITY x SYSTEM 'file:///etc/passwd'>]>"
      "<svg><symbol id='s' viewBox='0 0 24 24'><path d='&x;'/></symbol></svg>";
  EXPECT_TRUE(SVGFile(laughs).symbolDefinitions.empty());
  EXPECT_TRUE(SVGFile(external).symbolDefinitions.empty());
}

}  // namespace
}  // namespace tessaline
