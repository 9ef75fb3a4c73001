#include "tessaline/svg_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "geometry/basic_shapes.h"
#include "parse/svg_definition.h"

namespace tessaline {
namespace {

using Messages = std::vector<std::string>;

const SVGDefinition* find(const SVGFile& file, const std::string& key) {
  auto it = file.symbolDefinitions.find(key);
  return it == file.symbolDefinitions.end() ? nullptr : it->second.get();
}

std::vector<std::string> keys(const SVGFile& file) {
  std::vector<std::string> out;
  for (const auto& entry : file.symbolDefinitions) out.push_back(entry.first);
  return out;
}

TEST(SVGFile, ViewBoxComesFromTheFarCornerOrFallsBackToWidthAndHeight) {
  struct Case {
    const char* attributes;
    std::optional<Rect> box;
  };
  const Case cases[] = {
      {"viewBox='0 0 24 24'", Rect{0, 0, 24, 24}},
      {"viewBox='10 10 34 34'", Rect{10, 10, 24, 24}},  // far corner, not a size
      {"ViewBox='-1 -2 3 4'", Rect{-1, -2, 4, 6}},
      {"viewbox='0 0 0.1 1e1'", Rect{0, 0, 0.1f, 10}},  // through 32-bit floats
      {"viewBox='0 0 24px x'", Rect{0, 0, 24, 0}},
      {"width='10px' height='20'", Rect{0, 0, 10, 20}},
      {"viewBox='0,0,24,24' width='5' height='5'", Rect{0, 0, 5, 5}},
      {"viewBox='0  0 24 24' width='5' height='6'", Rect{0, 0, 5, 6}},
      {"viewBox='0 0 24 24 ' width='5' height='6'", Rect{0, 0, 5, 6}},
      {"viewBox='0 0 24' width='5' height='6'", Rect{0, 0, 5, 6}},
      {"viewBox='0 0 24 24' width='5' height='6'", Rect{0, 0, 24, 24}},
      {"width='5'", std::nullopt},
      {"width='5' height=''", std::nullopt},
      {"width=' ' height='x'", Rect{0, 0, 0, 0}},
      {"viewBox='0,0,24,24'", std::nullopt},
      {"", std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.attributes);
    const SVGFile file(std::string("<svg><symbol id='a' ") + c.attributes + "/></svg>");
    const SVGDefinition* definition = find(file, "a");
    ASSERT_NE(definition, nullptr);
    EXPECT_EQ(definition->viewBox, c.box);
    EXPECT_TRUE(definition->errorMessages.empty());
  }
}

TEST(SVGFile, ReportsUnknownSymbolAttributesWithTheFixedWording) {
  struct Case {
    const char* attributes;
    Messages messages;
  };
  const std::string kMessage = "Encountered unknown attribute for symbol: $attrName";
  const Case cases[] = {
      {"foo='1' fill='red'", {kMessage}},
      {"xmlns='http://www.w3.org/2000/svg'", {}},
      {"xmlns:xlink='http://www.w3.org/1999/xlink'", {kMessage}},
      {"Width='1' HEIGHT='2' Transform='scale(2)' style='fill:red'", {}},
      {"style='fill:red;x' data-name='n' class='c'", {kMessage, kMessage, kMessage}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.attributes);
    const SVGFile file(std::string("<svg><symbol ID='a' ") + c.attributes + "/></svg>");
    const SVGDefinition* definition = find(file, "a");
    ASSERT_NE(definition, nullptr);
    EXPECT_EQ(definition->errorMessages, c.messages);
  }
}

TEST(SVGFile, OnlySymbolsWithAnIdBecomeEntries) {
  const SVGFile file(
      "<svg xmlns='http://www.w3.org/2000/svg'>"
      "<symbol viewBox='0 0 24 24' foo='1'><symbol id='inner'/><path d='M0 0'/></symbol>"
      "<defs><g><Symbol id='deep'><path d='M1 1'/></Symbol></g></defs>"
      "<SYMBOL id='Upper'/><x:symbol id='prefixed'/><symbolic id='no'/>"
      "<symbol id=''/>"
      "</svg>");
  EXPECT_EQ(keys(file), (std::vector<std::string>{"", "Upper", "deep", "inner"}));
  for (const auto& [key, definition] : file.symbolDefinitions) {
    SCOPED_TRACE(key);
    EXPECT_EQ(definition->id, key);
    EXPECT_TRUE(definition->errorMessages.empty());
  }
  EXPECT_EQ(find(file, "deep")->svgComponents.size(), 1u);
  EXPECT_EQ(file.url, "");
}

TEST(SVGFile, ALaterSymbolWithTheSameIdReplacesTheEarlier) {
  const SVGFile file(
      "<svg><symbol id='a' viewBox='0 0 1 1'/><symbol id='b'/>"
      "<symbol id='a' viewBox='0 0 2 2'><circle cx='1' r='1'/></symbol></svg>");
  ASSERT_EQ(keys(file), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(find(file, "a")->viewBox, (Rect{0, 0, 2, 2}));
  EXPECT_EQ(find(file, "a")->svgComponents.size(), 1u);
}

TEST(SVGFile, SymbolAttributesReachItsElementsUntilTheFirstGroupCloses) {
  const SVGFile file(
      "<svg><symbol id='a' fill='red' Stroke='blue'><path d='M0 0'/><g opacity='0.5'></g>"
      "<path d='M1 1'/></symbol><symbol id='b'><path d='M2 2'/></symbol></svg>");
  const SVGDefinition* a = find(file, "a");
  ASSERT_NE(a, nullptr);
  ASSERT_EQ(a->svgComponents.size(), 2u);
  const auto& first = dynamic_cast<const PathComponent&>(*a->svgComponents[0]);
  EXPECT_EQ(first.attributes.fill, "red");
  EXPECT_EQ(first.attributes.stroke, "blue");
  const auto& second = dynamic_cast<const PathComponent&>(*a->svgComponents[1]);
  EXPECT_EQ(second.attributes.fill, std::nullopt);
  const SVGDefinition* b = find(file, "b");
  ASSERT_NE(b, nullptr);
  EXPECT_EQ(dynamic_cast<const PathComponent&>(*b->svgComponents[0]).attributes.fill, std::nullopt);
}

TEST(SVGFile, MalformedDocumentsGiveAnEmptyTable) {
  for (const char* text : {"", "<svg><symbol id='a'></svg>", "not xml", "<svg/><svg/>"}) {
    SCOPED_TRACE(text);
    const SVGFile file(text);
    EXPECT_TRUE(file.symbolDefinitions.empty());
    const TessalineResponse response = file.getUIImageForKey("a");
    EXPECT_EQ(response.key(), "a");
    EXPECT_FALSE(response.bitmap().has_value());
    EXPECT_EQ(response.errors(), (Messages{"No SVG Definition found for key"}));
  }
}

TEST(SVGFile, KeysMatchExactly) {
  const SVGFile file("<svg><symbol id='a' foo='1' viewBox='0 0 24 24'/></svg>");
  const TessalineResponse missing = file.getUIImageForKey("A");
  EXPECT_EQ(missing.key(), "A");
  EXPECT_FALSE(missing.bitmap().has_value());
  EXPECT_EQ(missing.errors(), (Messages{"No SVG Definition found for key"}));

  const TessalineResponse found = file.getUIImageForKey("a");
  EXPECT_EQ(found.key(), "a");
  ASSERT_TRUE(found.bitmap().has_value());
  EXPECT_EQ(found.bitmap()->width(), 256);
  EXPECT_EQ(found.bitmap()->height(), 256);
  ASSERT_FALSE(found.errors().empty());
  EXPECT_EQ(found.errors().front(), "Encountered unknown attribute for symbol: $attrName");
}

TEST(SVGFile, ParsesASpriteWithHundredsOfSymbols) {
  constexpr int kSymbols = 600;
  std::string text = "<?xml version='1.0'?>\n<svg xmlns='http://www.w3.org/2000/svg'>\n";
  for (int i = 0; i < kSymbols; ++i) {
    const std::string n = std::to_string(i);
    text += "<symbol id='icon-" + n + "' viewBox='0 0 " + n + " 24'><g fill='#" +
            std::to_string(100 + i % 900) + "'><path d='M0 0h" + n + "'/><circle cx='" + n +
            "' r='2'/></g><rect width='" + n + "' height='1'/>" + (i % 7 == 0 ? "<text/>" : "") +
            "</symbol>\n";
  }
  text += "</svg>\n";
  const SVGFile file(text);
  ASSERT_EQ(file.symbolDefinitions.size(), static_cast<std::size_t>(kSymbols));
  const std::vector<std::string> sorted = keys(file);
  EXPECT_TRUE(std::is_sorted(sorted.begin(), sorted.end()));
  for (int i = 0; i < kSymbols; ++i) {
    const std::string key = "icon-" + std::to_string(i);
    SCOPED_TRACE(key);
    const SVGDefinition* definition = find(file, key);
    ASSERT_NE(definition, nullptr);
    EXPECT_EQ(definition->viewBox, (Rect{0, 0, static_cast<double>(i), 24}));
    ASSERT_EQ(definition->svgComponents.size(), 3u);
    const auto& path = dynamic_cast<const PathComponent&>(*definition->svgComponents[0]);
    EXPECT_EQ(path.d, "M0 0h" + std::to_string(i));
    EXPECT_EQ(path.attributes.fill, "#" + std::to_string(100 + i % 900));
    const auto& rect = dynamic_cast<const RectComponent&>(*definition->svgComponents[2]);
    EXPECT_EQ(rect.width, static_cast<float>(i));
    EXPECT_EQ(rect.attributes.fill, std::nullopt);
    EXPECT_EQ(definition->errorMessages.size(), i % 7 == 0 ? 1u : 0u);
  }
}

}  // namespace
}  // namespace tessaline
