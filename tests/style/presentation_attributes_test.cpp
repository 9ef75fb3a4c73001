#include "style/presentation_attributes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "style/style_test_helpers.h"

namespace tessaline {
namespace {

using Names = std::vector<std::string>;
using A = PresentationAttributes;
using testing::tag;

using Fields = std::vector<std::optional<std::string>>;

// One value per field, in declaration order.
Fields fieldsOf(const A& a) {
  return {a.fill,        a.opacity,          a.fillOpacity,   a.transform,      a.stroke,
          a.strokeWidth, a.strokeMiterLimit, a.strokeLineCap, a.strokeLineJoin, a.clipPath};
}

// Names fold as Unicode lower-casing does: the Kelvin sign (U+212A) becomes "k".
TEST(PresentationAttributes, RoutesEachNameToItsFieldWhateverTheCaseAndKeepsValuesAsWritten) {
  A attributes;
  const Names consumed = attributes.parse(
      tag("FILL=Red|Opacity=0.5|fill-opacity= 0.25 |transform=s(2)|STRO\u212AE=blue|Stroke-Width=2|"
          "stroke-miterlimit=4|stroke-linecap=Round|stroke-linejoin=bevel|CLIP-PATH=url(#c)|"
          "d=M0 0|fillx=1|id=x"));
  EXPECT_EQ(consumed,
            (Names{"fill", "opacity", "fill-opacity", "transform", "stroke", "stroke-width",
                   "stroke-miterlimit", "stroke-linecap", "stroke-linejoin", "clip-path"}));
  EXPECT_EQ(fieldsOf(attributes), (Fields{"Red", "0.5", " 0.25 ", "s(2)", "blue", "2", "4", "Round",
                                          "bevel", "url(#c)"}));
}

TEST(PresentationAttributes, LaterValuesReplaceEarlierOnesExceptTransformsWhichAccumulate) {
  A attributes;
  attributes.parse(
      tag("fill=red|transform=translate(1,2)|Fill=blue|"
          "style=transform: scale(2); fill: green|TRANSFORM=rotate(3)"));
  EXPECT_EQ(attributes.fill, "green");
  EXPECT_EQ(attributes.transform, "translate(1,2) scale(2) rotate(3)");

  // An inherited transform is extended, not replaced; an empty one still takes the blank.
  A inherited;
  inherited.transform = "";
  A child(&inherited);
  child.parse(tag("transform=scale(3)"));
  EXPECT_EQ(child.transform, " scale(3)");
  EXPECT_EQ(inherited.transform, "");
}

TEST(PresentationAttributes, StyleDeclarationsAreTrimmedAndReportedOnlyWhenAllAreWellFormed) {
  struct Case {
    const char* style;
    bool consumed;
    std::optional<std::string> fill, stroke;
  };
  const Case cases[] = {
      {"fill: red ; stroke:blue", true, "red", "blue"},
      {"fill:red;bogus", false, "red", std::nullopt},
      {"foo:bar;;", true, std::nullopt, std::nullopt},
      {"fill:red; ", false, "red", std::nullopt},
      {"fill::red", true, "red", std::nullopt},
      {"fill:a:b", false, std::nullopt, std::nullopt},
      {":red", false, std::nullopt, std::nullopt},
      {"\tFILL\t:\tRed \t", true, "Red", std::nullopt},
      {"fill: \n red", true, "\n red", std::nullopt},  // line breaks are not trimmed
      {"fill: ;stroke:x", true, "", "x"},  // a value of blanks is a part, trimmed to nothing
      // A separator carrying a combining mark separates nothing.
      {"fill:#f00;\u0301stroke:#00f", false, std::nullopt, std::nullopt},
      {"fill:\u0301#f00", false, std::nullopt, std::nullopt},
      {"fill: \u0301#f00", true, "\u0301#f00", std::nullopt},  // trimmed below the character
      // Every space separator is trimmed (no-break, ideographic, thin), other marks are not.
      {"fill:\u00a0#f00\u3000;\u2009stroke\u00a0:x", true, "#f00", "x"},
      {"fill:\u200b#f00\u2028", true, "\u200b#f00\u2028", std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.style);
    A attributes;
    EXPECT_EQ(attributes.parse(tag(std::string("Style=") + c.style)),
              c.consumed ? Names{"style"} : Names{});
    EXPECT_EQ(attributes.fill, c.fill);
    EXPECT_EQ(attributes.stroke, c.stroke);
  }
}

// Inherited values fill only the gaps of the base, every one of the ten fields alike; an empty
// value blocks inheritance, and transforms are never concatenated nor opacities multiplied.
TEST(PresentationAttributes, JoinFillsOnlyTheGapsOfTheBase) {
  A base, inherited;
  base.fill = "";
  base.transform = "scale(2)";
  base.opacity = "0.5";
  inherited.parse(
      tag("fill=1|opacity=2|fill-opacity=3|transform=4|stroke=5|stroke-width=6|"
          "stroke-miterlimit=7|stroke-linecap=8|stroke-linejoin=9|clip-path=10"));
  EXPECT_EQ(fieldsOf(A::join(&base, &inherited)),
            (Fields{"", "0.5", "3", "scale(2)", "5", "6", "7", "8", "9", "10"}));
  EXPECT_EQ(A::join(&base, nullptr), base);
  EXPECT_EQ(A::join(nullptr, &inherited), inherited);
}

}  // namespace
}  // namespace tessaline
