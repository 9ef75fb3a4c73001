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
