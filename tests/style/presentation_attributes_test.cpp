#include "style/presentation_attributes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessaline {
namespace {

using Names = std::vector<std::string>;

SVGEvent tag(SVGEvent::Attributes attributes) {
  return {EventType::StartTag, "path", std::move(attributes)};
}

TEST(PresentationAttributes, RoutesEachNameToItsFieldWhateverTheCase) {
  PresentationAttributes attributes;
  const Names consumed = attributes.parse(tag({
      {"FILL", "Red"},
      {"Opacity", "0.5"},
      {"fill-opacity", " 0.25 "},
      {"stroke", "blue"},
      {"Stroke-Width", "2"},
      {"stroke-miterlimit", "4"},
      {"stroke-linecap", "Round"},
      {"stroke-linejoin", "bevel"},
      {"CLIP-PATH", "url(#c)"},
      {"transform", "scale(2)"},
      {"d", "M0 0"},
      {"fillx", "1"},
      {"id", "x"},
  }));
  EXPECT_EQ(consumed,
            (Names{"fill", "opacity", "fill-opacity", "stroke", "stroke-width", "stroke-miterlimit",
                   "stroke-linecap", "stroke-linejoin", "clip-path", "transform"}));
  EXPECT_EQ(attributes.fill, "Red");
  EXPECT_EQ(attributes.opacity, "0.5");
  EXPECT_EQ(attributes.fillOpacity, " 0.25 ");  // values as written, untrimmed
  EXPECT_EQ(attributes.stroke, "blue");
  EXPECT_EQ(attributes.strokeWidth, "2");
  EXPECT_EQ(attributes.strokeMiterLimit, "4");
  EXPECT_EQ(attributes.strokeLineCap, "Round");
  EXPECT_EQ(attributes.strokeLineJoin, "bevel");
  EXPECT_EQ(attributes.clipPath, "url(#c)");
  EXPECT_EQ(attributes.transform, "scale(2)");
}

TEST(PresentationAttributes, LaterValuesReplaceEarlierOnesExceptTransformsWhichAccumulate) {
  PresentationAttributes attributes;
  attributes.parse(tag({{"fill", "red"},
                        {"transform", "translate(1,2)"},
                        {"Fill", "blue"},
                        {"style", "transform: scale(2); fill: green"},
                        {"TRANSFORM", "rotate(3)"}}));
  EXPECT_EQ(attributes.fill, "green");
  EXPECT_EQ(attributes.transform, "translate(1,2) scale(2) rotate(3)");

  // An inherited transform is extended, not replaced; an empty one still takes the blank.
  PresentationAttributes inherited;
  inherited.transform = "";
  PresentationAttributes child(&inherited);
  child.parse(tag({{"transform", "scale(3)"}}));
  EXPECT_EQ(child.transform, " scale(3)");
  EXPECT_EQ(inherited.transform, "");
}

TEST(PresentationAttributes, StyleDeclarationsAreTrimmedAndReportedOnlyWhenAllAreWellFormed) {
  struct Case {
    const char* style;
    bool consumed;
    std::optional<std::string> fill;
    std::optional<std::string> stroke;
  };
  const Case cases[] = {
      {"fill: red ; stroke:blue", true, "red", "blue"},
      {"fill:red;bogus", false, "red", std::nullopt},
      {"foo:bar", true, std::nullopt, std::nullopt},
      {"fill:red;", true, "red", std::nullopt},
      {"fill:red; ", false, "red", std::nullopt},
      {"", true, std::nullopt, std::nullopt},
      {";;;", true, std::nullopt, std::nullopt},
      {"fill::red", true, "red", std::nullopt},
      {"fill:a:b", false, std::nullopt, std::nullopt},
      {":red", false, std::nullopt, std::nullopt},
      {"\tFILL\t:\tRed \t", true, "Red", std::nullopt},
      {"fill: \n red", true, "\n red", std::nullopt},  // line breaks are not trimmed
      {"fill: ;stroke:x", true, "", "x"},  // a value of blanks is a part, trimmed to nothing
      {"style: fill", true, std::nullopt, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.style);
    PresentationAttributes attributes;
    const Names consumed = attributes.parse(tag({{"Style", c.style}}));
    EXPECT_EQ(consumed, c.consumed ? Names{"style"} : Names{});
    EXPECT_EQ(attributes.fill, c.fill);
    EXPECT_EQ(attributes.stroke, c.stroke);
  }
}

TEST(PresentationAttributes, CopiesAreIndependent) {
  PresentationAttributes original;
  original.fill = "red";
  original.clipPath = "";
  PresentationAttributes copy(&original);
  EXPECT_EQ(copy, original);
  copy.fill = "blue";
  EXPECT_EQ(original.fill, "red");
  EXPECT_EQ(PresentationAttributes(nullptr), PresentationAttributes());
}

TEST(PresentationAttributes, JoinFillsOnlyTheGapsOfTheBase) {
  PresentationAttributes base;
  base.fill = "";
  base.transform = "scale(2)";
  base.opacity = "0.5";
  PresentationAttributes inherited;
  inherited.fill = "red";
  inherited.transform = "translate(1,1)";
  inherited.opacity = "0.5";
  inherited.stroke = "blue";
  inherited.clipPath = "url(#c)";

  const PresentationAttributes joined = PresentationAttributes::join(&base, &inherited);
  EXPECT_EQ(joined.fill, "");               // an empty value blocks inheritance
  EXPECT_EQ(joined.transform, "scale(2)");  // never concatenated
  EXPECT_EQ(joined.opacity, "0.5");         // never multiplied
  EXPECT_EQ(joined.stroke, "blue");
  EXPECT_EQ(joined.clipPath, "url(#c)");
  EXPECT_EQ(joined.strokeWidth, std::nullopt);

  EXPECT_EQ(PresentationAttributes::join(&base, nullptr), base);
  EXPECT_EQ(PresentationAttributes::join(nullptr, &inherited), inherited);
  EXPECT_EQ(PresentationAttributes::join(nullptr, nullptr), PresentationAttributes());

  // Every one of the ten fields is inherited.
  PresentationAttributes full;
  full.parse(tag({{"fill", "1"},
                  {"opacity", "2"},
                  {"fill-opacity", "3"},
                  {"transform", "4"},
                  {"stroke", "5"},
                  {"stroke-width", "6"},
                  {"stroke-miterlimit", "7"},
                  {"stroke-linecap", "8"},
                  {"stroke-linejoin", "9"},
                  {"clip-path", "10"}}));
  PresentationAttributes empty;
  EXPECT_EQ(PresentationAttributes::join(&empty, &full), full);
}

}  // namespace
}  // namespace tessaline
