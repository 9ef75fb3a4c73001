#include "tessaline/tessaline_util.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

#include "parse/svg_definition.h"
#include "render/probe_component.h"
#include "tessaline/svg_file.h"

namespace tessaline {
namespace {

using Texts = std::vector<std::string>;
using testing::Probe;
using testing::probe;

TEST(TessalineUtil, DrawsEachTopLevelComponentWithTheDefinitionsBoxAndNoStyling) {
  const Probe probes[] = {probe("drawing error"), probe(std::nullopt), probe(""), probe("another")};
  const auto svg = testing::definitionOf({std::begin(probes), std::end(probes)});
  svg->viewBox = Rect{1, 2, 30, 40};
  svg->errorMessages = {"parse error"};
  // Sub-definitions are reached only by reference, never drawn by the top level.
  const Probe hidden = probe("never");
  svg->svgSubDefinitions = testing::definitionOf({hidden});

  // The requested size is carried, not used.
  const TessalineResponse response =
      TessalineUtil::loadSVGImage(TessalineRequest(SVGFile(""), svg, "key", 10, 1000));
  EXPECT_EQ(response.key(), "key");
  EXPECT_EQ(response.bitmap(), Image(256, 256)) << "probes draw nothing";
  EXPECT_EQ(response.errors(), (Texts{"parse error", "drawing error", "another"}));
  for (const auto& probe : probes) {
    ASSERT_EQ(probe->boxes.size(), 1u);
    EXPECT_EQ(probe->boxes[0], svg->viewBox);
    EXPECT_EQ(probe->owners[0], svg.get());
    EXPECT_EQ(probe->styles[0], PresentationAttributes()) << "an empty set, not none";
  }
  EXPECT_TRUE(hidden->boxes.empty());
}

// 128-unit boxes: one unit is two pixels.
constexpr const char* kDocument = R"svg(<svg xmlns="http://www.w3.org/2000/svg">
  <symbol id="paints" viewBox="0 0 128 128" foo="1">
    <rect x="10" y="10" width="40" height="40" fill="#ff8000"/>
    <rect x="60" y="10" width="40" height="40" fill="#0000ff" opacity="0.5"/>
  </symbol>
  <symbol id="clipped" viewBox="0 0 128 128">
    <defs>
      <clipPath id="left"><rect x="0" y="0" width="64" height="128"/></clipPath>
      <rect id="full" x="0" y="0" width="128" height="128" fill="#000000"/>
    </defs>
    <g clip-path="url(#left)"><rect x="0" y="0" width="128" height="64"/></g>
    <use href="#full" clip-path="url(#left)" transform="translate(0 64)"/>
  </symbol>
  <symbol id="uses-paints" viewBox="0 0 128 128">
    <use href="#paints" transform="translate(64 0)"/>
  </symbol>
  <symbol id="quirks" viewBox="0 0 128 128">
    <defs><clipPath id="left"><rect x="0" y="0" width="64" height="128"/></clipPath></defs>
    <g clip-path="url(#left)"><use href="#plain" transform="translate(0 0)"/></g>
    <use href="#plain" transform=""/>
  </symbol>
  <symbol id="plain" viewBox="0 0 64 64">
    <rect x="0" y="0" width="64" height="64" fill="#000000"/>
  </symbol>
</svg>)svg";

constexpr Rgba kClear{0, 0, 0, 0}, kBlack{0, 0, 0, 255}, kOrange{255, 128, 0, 255};

// paints: the symbol's own messages come first; 0.5 * 255 truncates to 127 and the colour stays at
// full intensity (straight alpha). clipped: the use's clip applies to the defs shape it draws,
// through the use's transform. uses-paints: same boxes, so scale 1, then moved 64 units (128
// pixels) to the right. quirks: the clip path is looked up in the symbol being drawn, which has no
// defs, so the shape fails; and a scale appended to an empty transform leaves a list starting with
// a blank.
TEST(Rendering, PixelsAndErrorsOnBothBackends) {
  struct Case {
    const char* key;
    Texts errors;
    std::vector<std::tuple<int, int, Rgba>> pixels;  // none: the image must be blank
  };
  const Case cases[] = {
      {"paints",
       {"Encountered unknown attribute for symbol: $attrName"},
       {{60, 60, kOrange}, {160, 60, {0, 0, 255, 127}}, {160, 160, kClear}}},
      {"clipped", {}, {{64, 64, kBlack}, {192, 64, kClear}, {64, 192, kBlack}, {192, 192, kClear}}},
      {"uses-paints",
       {"Encountered unknown attribute for symbol: $attrName"},
       {{60 + 128, 60, kOrange}, {60, 60, kClear}}},
      {"quirks",
       {"Unable to find clip path for key", "Invalid transform function $functionName"},
       {}},
  };
  const SVGFile file(kDocument);
  for (const RasterBackend backend : {RasterBackend::Native, RasterBackend::Cairo}) {
    for (const Case& c : cases) {
      SCOPED_TRACE(std::string(c.key) + (backend == RasterBackend::Native ? " native" : " cairo"));
      const TessalineResponse response = file.getUIImageForKey(c.key, backend);
      EXPECT_EQ(response.key(), c.key);
      ASSERT_TRUE(response.bitmap().has_value());
      EXPECT_EQ(response.errors(), c.errors);
      if (c.pixels.empty()) {
        EXPECT_EQ(*response.bitmap(), Image(256, 256));
      }
      for (const auto& [x, y, want] : c.pixels) {
        // Straight-alpha channels come back from 8-bit premultiplied pixels: allow one step.
        const Rgba got = response.bitmap()->pixel(x, y);
        for (const auto& [g, w] :
             {std::pair{got.r, want.r}, {got.g, want.g}, {got.b, want.b}, {got.a, want.a}}) {
          EXPECT_LE(std::abs(g - w), 1) << "pixel (" << x << ", " << y << ")";
        }
      }
    }
  }
}

}  // namespace
}  // namespace tessaline
