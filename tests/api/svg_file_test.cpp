#include "tessaline/svg_file.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "parse/parse_test_helpers.h"

namespace tessaline {
namespace {

using Messages = std::vector<std::string>;
using testing::describe;

const std::string kUnknownSymbolAttribute = "Encountered unknown attribute for symbol: $attrName";

// Throws, failing the test, when the symbol is missing.
const SVGDefinition& definitionOf(const SVGFile& file, const std::string& key) {
  return *file.symbolDefinitions.at(key);
}

const PresentationAttributes& attributesOf(const SVGDefinition& definition, std::size_t index) {
  return dynamic_cast<const PresentationAttributeSVGComponent&>(*definition.svgComponents.at(index))
      .attributes;
}

TEST(SVGFile, SymbolAttributes) {
  struct Case {
    const char* attributes;
    std::optional<Rect> box;
    std::size_t unknown = 0;  // attributes reported with the fixed wording
  };
  const Case cases[] = {
      {"viewBox='10 10 34 34'", Rect{10, 10, 24, 24}},  // far corner, not a size
      {"ViewBox='-1 -2 3 4' xmlns='http://www.w3.org/2000/svg'", Rect{-1, -2, 4, 6}},
      {"viewbox='0 0 0.1 1e1x'", Rect{0, 0, 0.1f, 10}},  // leniently, through 32-bit floats
      {"width='10px' height='20'", Rect{0, 0, 10, 20}},
      // Anything but exactly four blank-separated pieces falls back to width and height.
      {"viewBox='0,0,24,24' width='5' height='6'", Rect{0, 0, 5, 6}},
      {"viewBox='0  0 24 24' width='5' height='6'", Rect{0, 0, 5, 6}},
      {"viewBox='0 0 24 24 ' width='5' height='6'", Rect{0, 0, 5, 6}},
      {"viewBox='0 0 24' width='5' height='6'", Rect{0, 0, 5, 6}},
      {"viewBox='0 0 24 \u030124' width='5' height='6'", Rect{0, 0, 5, 6}},  // marked blank
      {"viewBox='0 0 24 24' VIEWBOX='1 2'", Rect{0, 0, 24, 24}},  // invalid keeps the valid one
      {"viewBox='0 0 24 24' width='5' height='6'", Rect{0, 0, 24, 24}},
      {"width='5' height=''", std::nullopt},
      {"viewBox='0,0,24,24'", std::nullopt},
      {"foo='1' fill='red' xmlns:xlink='http://www.w3.org/1999/xlink'", std::nullopt, 2},
      {"Transform='scale(2)' style='fill:red;x' data-name='n' class='c'", std::nullopt, 3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.attributes);
    const SVGFile file(std::string("<svg><symbol ID='a' ") + c.attributes + "/></svg>");
    EXPECT_EQ(definitionOf(file, "a").viewBox, c.box);
    EXPECT_EQ(definitionOf(file, "a").errorMessages, Messages(c.unknown, kUnknownSymbolAttribute));
  }
}

// Symbols with an id become entries wherever they stand; a later one with the same id replaces
// the earlier. The symbol's attributes reach its elements until the first group closes.
TEST(SVGFile, Entries) {
  const SVGFile file(
      "<svg xmlns='http://www.w3.org/2000/svg'>"
      "<symbol viewBox='0 0 24 24' foo='1'><symbol id='inner'/><path d='M0 0'/></symbol>"
      "<defs><g><Symbol id='deep'><path d='M1 1'/></Symbol></g></defs>"
      "<SYMBOL id='Upper'/><x:symbol id='prefixed'/><symbolic id='no'/><symbol id=''/>"
      "<symbol id='a' viewBox='0 0 1 1'/><symbol id='a' viewBox='0 0 2 2' fill='red' Stroke='blue'>"
      "<path d='M0 0'/><g opacity='0.5'></g><path d='M1 1'/></symbol>"
      "<symbol id='b'><path d='M2 2'/></symbol></svg>");
  std::vector<std::string> entries;
  for (const auto& [key, definition] : file.symbolDefinitions) {
    entries.push_back(key + ": " + describe(*definition));
    EXPECT_EQ(definition->id, key);
    EXPECT_TRUE(definition->errorMessages.empty()) << key;
  }
  EXPECT_EQ(entries, (std::vector<std::string>{
                         ": ", "Upper: ", "a: path d='M0 0' fill=red stroke=blue; path d='M1 1'",
                         "b: path d='M2 2'", "deep: path d='M1 1'", "inner: "}));
  EXPECT_EQ(definitionOf(file, "a").viewBox, (Rect{0, 0, 2, 2}));
}

// Keys match exactly; a malformed document gives an empty table. A found key, its image and its
// symbol's messages are checked in tessaline_util_test.cpp (Rendering).
TEST(SVGFile, ResponsesByKey) {
  for (const auto& [text, key] : {std::pair{"not xml", "a"},
                                  {"<svg><symbol id='a'></svg>", "a"},
                                  {"<svg><symbol id='a' viewBox='0 0 24 24'/></svg>", "A"}}) {
    SCOPED_TRACE(text);
    const TessalineResponse response = SVGFile(text).getUIImageForKey(key);
    EXPECT_EQ(response.key(), key);
    EXPECT_FALSE(response.bitmap().has_value());
    EXPECT_EQ(response.errors(), (Messages{"No SVG Definition found for key"}));
  }
}

// A polygon that stops the process stops only a document known to be well formed: one found
// malformed after the polygon was met never builds anything, so it never gets that far.
TEST(SVGFileReading, APolygonThatStopsTheProcessStopsOnlyAWellFormedDocument) {
  // Inside a clip path the polygon is built while the document is read.
  const std::string polygon = "<defs><clipPath id='c'><polygon points='1 2 3'/></clipPath></defs>";
  EXPECT_DEATH(SVGFile("<svg><symbol id='a'>" + polygon + "</symbol><symbol id='b'/></svg>"),
               "polygon point list read past its end");
  for (const std::string& text : {"<svg><symbol id='a'>" + polygon + "</symbol>",
                                  "<svg><symbol id='a'>" + polygon + "</symbol><a></b></svg>"}) {
    EXPECT_TRUE(SVGFile(text).symbolDefinitions.empty()) << text;
  }
  // Polygons that do not stop are built wherever they stand.
  const SVGFile file(
      "<svg><symbol id='a'><polygon points='1,2 3'/>"
      "<clipPath id='c'><polygon points='1,2,3,4'/></clipPath></symbol></svg>");
  EXPECT_EQ(describe(definitionOf(file, "a")), "polygon p=1,3; clip#c(polygon p=1,2 p=3,4)");
}

// The same attribute texts over and over, over two different sets, with more distinct texts than
// any reader could keep at hand: met again, a text gives the very set it gave the first time.
TEST(SVGFileReading, StylingMetAgainGivesWhatItGaveTheFirstTime) {
  std::string body;
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 100; ++i) {
      const std::string styling = "stroke='s" + std::to_string(i) + "'";
      body += "<path d='M0 0' " + styling + "/><g fill='g'><path d='M1 1' " + styling + "/></g>";
    }
    body += "<path d='M2 2' style='fill: red;x'/>";
  }
  const SVGFile file("<svg><symbol id='a' fill='f'>" + body + "</symbol></svg>");
  const SVGDefinition& a = definitionOf(file, "a");
  ASSERT_EQ(a.svgComponents.size(), 3u * 201);
  // A malformed style is applied as far as it goes yet reported, every time it is met.
  EXPECT_EQ(a.errorMessages, Messages(3, "Encountered unknown attribute for path: style"));
  for (std::size_t at = 0; at < a.svgComponents.size(); ++at) {
    const std::size_t i = at % 201;
    const PresentationAttributes& styling = attributesOf(a, at);
    // The symbol's fill reaches only the paths before the first group closes.
    const char* fill = i == 200 ? "red" : i % 2 ? "g" : at == 0 ? "f" : nullptr;
    EXPECT_EQ(styling.fill, fill ? std::optional<std::string>(fill) : std::nullopt) << at;
    EXPECT_EQ(styling.stroke, i < 200 ? std::optional("s" + std::to_string(i / 2)) : std::nullopt)
        << at;
    // Met again, the same set as the first time.
    EXPECT_TRUE(at <= 200 || i == 0 || &styling == &attributesOf(a, i)) << at;
  }
}

TEST(SVGFileReading, NamesOfAnyLengthAreMatchedOrReportedAsWritten) {
  const std::string longName(40, 'f');
  const std::string longData = "M0 0" + std::string(5000, 'h');
  const SVGFile file("<svg><symbol id='a'><path d='" + longData +
                     "' STROKE-MITERLIMIT='4' stroke-miterlimits='5' " + longName +
                     "='1' Fill-Rule='evenodd'/></symbol></svg>");
  EXPECT_EQ(definitionOf(file, "a").errorMessages,
            (Messages{"Encountered unknown attribute for path: stroke-miterlimits",
                      "Encountered unknown attribute for path: " + longName}));
  EXPECT_EQ(describe(definitionOf(file, "a")),
            "path d='" + longData + "' rule=evenodd stroke-miterlimit=4");
}

}  // namespace
}  // namespace tessaline
