#include "tessaline/svg_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "parse/parse_test_helpers.h"

namespace tessaline {
namespace {

using Messages = std::vector<std::string>;
using testing::describe;

const SVGDefinition& definitionOf(const SVGFile& file, const std::string& key) {
  static const SVGDefinition kNone;
  auto it = file.symbolDefinitions.find(key);
  if (it == file.symbolDefinitions.end()) {
    ADD_FAILURE() << "no symbol " << key;
    return kNone;
  }
  return *it->second;
}

// Each entry as "key: components".
std::vector<std::string> entries(const SVGFile& file) {
  std::vector<std::string> out;
  for (const auto& [key, definition] : file.symbolDefinitions) {
    out.push_back(key + ": " + describe(*definition));
  }
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
    EXPECT_EQ(definitionOf(file, "a").viewBox, c.box);
    EXPECT_TRUE(definitionOf(file, "a").errorMessages.empty());
  }
}

TEST(SVGFile, ReportsUnknownSymbolAttributesWithTheFixedWording) {
  const std::string kMessage = "Encountered unknown attribute for symbol: $attrName";
  const std::pair<const char*, Messages> cases[] = {
      {"foo='1' fill='red'", {kMessage}},
      {"xmlns='http://www.w3.org/2000/svg'", {}},
      {"xmlns:xlink='http://www.w3.org/1999/xlink'", {kMessage}},
      {"Width='1' HEIGHT='2' Transform='scale(2)' style='fill:red'", {}},
      {"style='fill:red;x' data-name='n' class='c'", {kMessage, kMessage, kMessage}},
  };
  for (const auto& [attributes, messages] : cases) {
    SCOPED_TRACE(attributes);
    const SVGFile file(std::string("<svg><symbol ID='a' ") + attributes + "/></svg>");
    EXPECT_EQ(definitionOf(file, "a").errorMessages, messages);
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
  EXPECT_EQ(entries(file),
            (std::vector<std::string>{
                ": ", "Upper: ", "a: path d='M0 0' fill=red stroke=blue; path d='M1 1'",
                "b: path d='M2 2'", "deep: path d='M1 1'", "inner: "}));
  for (const auto& [key, definition] : file.symbolDefinitions) {
    SCOPED_TRACE(key);
    EXPECT_EQ(definition->id, key);
    EXPECT_TRUE(definition->errorMessages.empty());
  }
  EXPECT_EQ(definitionOf(file, "a").viewBox, (Rect{0, 0, 2, 2}));
  EXPECT_EQ(file.url, "");
}

// Keys match exactly; a malformed document gives an empty table.
TEST(SVGFile, ResponsesByKey) {
  for (const auto& [text, key] : {std::pair{"", "a"},
                                  {"<svg><symbol id='a'></svg>", "a"},
                                  {"not xml", "a"},
                                  {"<svg/><svg/>", "a"},
                                  {"<svg><symbol id='a' viewBox='0 0 24 24'/></svg>", "A"}}) {
    SCOPED_TRACE(text);
    const SVGFile file(text);
    EXPECT_EQ(file.symbolDefinitions.size(), key[0] == 'A' ? 1u : 0u);
    const TessalineResponse response = file.getUIImageForKey(key);
    EXPECT_EQ(response.key(), key);
    EXPECT_FALSE(response.bitmap().has_value());
    EXPECT_EQ(response.errors(), (Messages{"No SVG Definition found for key"}));
  }

  const TessalineResponse found =
      SVGFile("<svg><symbol id='a' foo='1' viewBox='0 0 24 24'/></svg>").getUIImageForKey("a");
  EXPECT_EQ(found.key(), "a");
  ASSERT_TRUE(found.bitmap().has_value());
  EXPECT_EQ(found.bitmap()->width(), 256);
  EXPECT_EQ(found.bitmap()->height(), 256);
  EXPECT_EQ(found.errors(), (Messages{"Encountered unknown attribute for symbol: $attrName"}));
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
  for (int i = 0; i < kSymbols; ++i) {
    const std::string n = std::to_string(i), fill = " fill=#" + std::to_string(100 + i % 900);
    SCOPED_TRACE(n);
    const SVGDefinition& definition = definitionOf(file, "icon-" + n);
    EXPECT_EQ(definition.viewBox, (Rect{0, 0, static_cast<double>(i), 24}));
    EXPECT_EQ(describe(definition), "path d='M0 0h" + n + "'" + fill + "; circle cx=" + n +
                                        " cy=- r=2" + fill + "; rect x=0 y=0 w=" + n +
                                        " h=1 rx=0 ry=0");
    EXPECT_EQ(definition.errorMessages.size(), i % 7 == 0 ? 1u : 0u);
  }
}

// How SVGFile reads a document as the XML reader delivers it: what it must hold back until the
// whole document is known to be well formed, and what it shares between elements.
constexpr const char* kStop = "polygon point list read past its end";

const PresentationAttributes& attributesOf(const SVGDefinition& definition, std::size_t index) {
  return dynamic_cast<const PresentationAttributeSVGComponent&>(*definition.svgComponents.at(index))
      .attributes;
}

TEST(SVGFileReading, APolygonThatStopsTheProcessStopsOnlyAWellFormedDocument) {
  // Blanks take precedence over commas; an odd count of components stops.
  for (const char* points : {"1 2 3", "1,2,3", "1 2 ", "5"}) {
    SCOPED_TRACE(points);
    const std::string polygon = std::string("<polygon points='") + points + "'/>";
    EXPECT_DEATH(SVGFile("<svg><symbol id='a'>" + polygon + "</symbol></svg>"), kStop);
    // Met inside nested definitions, with more symbols after it.
    EXPECT_DEATH(SVGFile("<svg><symbol id='a'><defs><clipPath id='c'>" + polygon +
                         "</clipPath></defs></symbol><symbol id='b'/></svg>"),
                 kStop);
    // A document found malformed after the polygon was met never builds anything, so it never
    // gets as far as the polygon either.
    for (const std::string& text : {"<svg><symbol id='a'>" + polygon + "</symbol>",
                                    "<svg><symbol id='a'>" + polygon + "</symbol><a></b></svg>",
                                    "<svg><symbol id='a'>" + polygon + "<path d='M0 0'/></svg>"}) {
      SCOPED_TRACE(text);
      EXPECT_TRUE(SVGFile(text).symbolDefinitions.empty());
    }
  }
}

TEST(SVGFileReading, PolygonsThatDoNotStopAreBuiltWhereverTheyStand) {
  const SVGFile file(
      "<svg><symbol id='a'><polygon points='1,2 3'/><polygon points=' '/>"
      "<polygon points=''/><clipPath id='c'><polygon points='1,2,3,4'/></clipPath></symbol></svg>");
  const SVGDefinition& a = definitionOf(file, "a");
  EXPECT_EQ(a.errorMessages, (Messages{"Encountered invalid parameters for polygon"}));
  EXPECT_EQ(describe(a), "polygon p=1,3; polygon p=0,0; clip#c(polygon p=1,2 p=3,4)");
}

TEST(SVGFileReading, EqualStylingIsOneSharedSetWhereverItComesFrom) {
  const SVGFile file(
      "<svg>"
      "<symbol id='a' fill='none' stroke='red'><path d='M0 0'/><path d='M1 1' stroke='none'/>"
      "<g fill='blue'><path d='M2 2'/><g><path d='M3 3'/></g><path d='M4 4'/></g>"
      "<path d='M5 5'/></symbol>"
      "<symbol id='b' STROKE='red' style='fill: none'><rect width='1' height='1'/>"
      "<circle cx='1' r='1' stroke='none'/><line fill='blue' stroke='red'/></symbol>"
      "<symbol id='c'><path d='M6 6'/><path d='M7 7' fill='none' stroke='red'/></symbol>"
      "</svg>");
  const SVGDefinition& a = definitionOf(file, "a");
  const SVGDefinition& b = definitionOf(file, "b");
  const SVGDefinition& c = definitionOf(file, "c");
  EXPECT_EQ(describe(a),
            "path d='M0 0' fill=none stroke=red; path d='M1 1' fill=none stroke=none; "
            "path d='M2 2' fill=blue stroke=red; path d='M3 3' fill=blue stroke=red; "
            "path d='M4 4' fill=blue stroke=red; path d='M5 5'");
  EXPECT_EQ(describe(b),
            "rect x=0 y=0 w=1 h=1 rx=0 ry=0 fill=none stroke=red; "
            "circle cx=1 cy=- r=1 fill=none stroke=none; line x1=0 y1=0 x2=0 y2=0 fill=blue "
            "stroke=red");
  EXPECT_EQ(describe(c), "path d='M6 6'; path d='M7 7' fill=none stroke=red");
  // The symbol's own set however the symbol spelled it, the same change to it, a group's set
  // (nested groups included), and after the outermost group the set of an unstyled symbol.
  using Member = std::pair<const SVGDefinition*, std::size_t>;
  for (const std::vector<Member>& shared : {std::vector<Member>{{&a, 0}, {&b, 0}, {&c, 1}},
                                            {{&a, 1}, {&b, 1}},
                                            {{&a, 2}, {&a, 3}, {&a, 4}, {&b, 2}},
                                            {{&a, 5}, {&c, 0}}}) {
    for (const auto& [definition, index] : shared) {
      EXPECT_EQ(&attributesOf(*definition, index),
                &attributesOf(*shared[0].first, shared[0].second))
          << definition->id << " " << index;
    }
  }
}

TEST(SVGFileReading, StylingMetAgainGivesWhatItGaveTheFirstTime) {
  // The same attribute texts over and over, over two different sets, with more distinct texts
  // than any reader could keep at hand.
  std::string body;
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 100; ++i) {
      const std::string styling = std::string("stroke='s").append(std::to_string(i)).append("'");
      body += "<path d='M0 0' " + styling + "/><g fill='g'><path d='M1 1' " + styling + "/></g>";
    }
    body += "<path d='M2 2' style='fill: red;x'/><path d='M3 3' Style='opacity:1'/>";
  }
  const SVGFile file("<svg><symbol id='a' fill='f'>" + body + "</symbol></svg>");
  const SVGDefinition& a = definitionOf(file, "a");
  ASSERT_EQ(a.svgComponents.size(), 3u * 202);
  // A malformed style is applied as far as it goes yet reported, every time it is met.
  EXPECT_EQ(a.errorMessages, Messages(3, "Encountered unknown attribute for path: style"));
  for (int round = 0; round < 3; ++round) {
    for (int i = 0; i < 100; ++i) {
      SCOPED_TRACE(std::to_string(round).append("/").append(std::to_string(i)));
      const std::size_t at = static_cast<std::size_t>(round * 202 + 2 * i);
      const std::string stroke = std::string("s").append(std::to_string(i));
      // The symbol's fill reaches only the paths before the first group closes.
      EXPECT_EQ(attributesOf(a, at).fill,
                round == 0 && i == 0 ? std::optional<std::string>("f") : std::nullopt);
      EXPECT_EQ(attributesOf(a, at).stroke, stroke);
      EXPECT_EQ(attributesOf(a, at + 1).fill, "g");
      EXPECT_EQ(attributesOf(a, at + 1).stroke, stroke);
      EXPECT_EQ(&attributesOf(a, at + 1), &attributesOf(a, 1 + 2 * static_cast<std::size_t>(i)));
    }
    const std::size_t last = static_cast<std::size_t>(round * 202 + 200);
    EXPECT_EQ(attributesOf(a, last).fill, "red");
    EXPECT_EQ(attributesOf(a, last + 1).opacity, "1");
  }
}

TEST(SVGFileReading, NamesOfAnyLengthAreMatchedOrReportedAsWritten) {
  const std::string longName(40, 'f');
  const std::string longData = "M0 0" + std::string(5000, 'h');
  const SVGFile file("<svg><symbol id='a'><path d='" + longData +
                     "' STROKE-MITERLIMIT='4' stroke-miterlimits='5' " + longName +
                     "='1' Fill-Rule='evenodd'/></symbol></svg>");
  const SVGDefinition& a = definitionOf(file, "a");
  EXPECT_EQ(a.errorMessages, (Messages{"Encountered unknown attribute for path: stroke-miterlimits",
                                       "Encountered unknown attribute for path: " + longName}));
  EXPECT_EQ(describe(a), "path d='" + longData + "' rule=evenodd stroke-miterlimit=4");
}

}  // namespace
}  // namespace tessaline
