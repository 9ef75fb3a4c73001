// How SVGFile reads a document as the XML reader delivers it: what it must hold back until the
// whole document is known to be well formed, and what it shares between elements.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "geometry/basic_shapes.h"
#include "parse/svg_definition.h"
#include "tessaline/svg_file.h"

namespace tessaline {
namespace {

constexpr const char* kStop = "polygon point list read past its end";

const SVGDefinition& definitionOf(const SVGFile& file, const std::string& key) {
  static const SVGDefinition kNone;
  auto it = file.symbolDefinitions.find(key);
  if (it == file.symbolDefinitions.end()) {
    ADD_FAILURE() << "no symbol " << key;
    return kNone;
  }
  return *it->second;
}

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
  EXPECT_EQ(a.errorMessages,
            (std::vector<std::string>{"Encountered invalid parameters for polygon"}));
  ASSERT_EQ(a.svgComponents.size(), 3u);
  EXPECT_EQ(dynamic_cast<const PolygonComponent&>(*a.svgComponents[0]).points,
            (std::vector<Point>{{1, 3}}));
  EXPECT_EQ(dynamic_cast<const PolygonComponent&>(*a.svgComponents[1]).points,
            (std::vector<Point>{{0, 0}}));
  const auto& clip = dynamic_cast<const ClipPathComponent&>(*a.svgComponents[2]);
  ASSERT_EQ(clip.definitions().svgComponents.size(), 1u);
  EXPECT_EQ(dynamic_cast<const PolygonComponent&>(*clip.definitions().svgComponents[0]).points,
            (std::vector<Point>{{1, 2}, {3, 4}}));
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
  ASSERT_EQ(a.svgComponents.size(), 6u);
  ASSERT_EQ(b.svgComponents.size(), 3u);
  ASSERT_EQ(c.svgComponents.size(), 2u);

  // The symbol's own set, however the symbol spelled it.
  const PresentationAttributes& symbolSet = attributesOf(a, 0);
  EXPECT_EQ(symbolSet.fill, "none");
  EXPECT_EQ(symbolSet.stroke, "red");
  EXPECT_EQ(&attributesOf(b, 0), &symbolSet);
  EXPECT_EQ(&attributesOf(c, 1), &symbolSet);

  // The same change to it, in different symbols.
  const PresentationAttributes& unstroked = attributesOf(a, 1);
  EXPECT_EQ(unstroked.stroke, "none");
  EXPECT_EQ(unstroked.fill, "none");
  EXPECT_EQ(&attributesOf(b, 1), &unstroked);

  // A group's set reaches its elements, nested groups included, and no further.
  const PresentationAttributes& groupSet = attributesOf(a, 2);
  EXPECT_EQ(groupSet.fill, "blue");
  EXPECT_EQ(groupSet.stroke, "red");
  EXPECT_EQ(&attributesOf(a, 3), &groupSet);
  EXPECT_EQ(&attributesOf(a, 4), &groupSet);
  EXPECT_EQ(&attributesOf(b, 2), &groupSet);

  // After the outermost group closes, nothing is inherited: the set of an unstyled symbol.
  const PresentationAttributes& empty = attributesOf(a, 5);
  EXPECT_EQ(empty, PresentationAttributes());
  EXPECT_EQ(&attributesOf(c, 0), &empty);
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
  EXPECT_EQ(a.errorMessages,
            std::vector<std::string>(3, "Encountered unknown attribute for path: style"));
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
  EXPECT_EQ(a.errorMessages,
            (std::vector<std::string>{"Encountered unknown attribute for path: stroke-miterlimits",
                                      "Encountered unknown attribute for path: " + longName}));
  ASSERT_EQ(a.svgComponents.size(), 1u);
  const auto& path = dynamic_cast<const PathComponent&>(*a.svgComponents[0]);
  EXPECT_EQ(path.d, longData);
  EXPECT_EQ(path.fillRule, "evenodd");
  EXPECT_EQ(path.attributes.strokeMiterLimit, "4");
}

}  // namespace
}  // namespace tessaline
