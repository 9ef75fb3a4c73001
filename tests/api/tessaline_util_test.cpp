#include "tessaline/tessaline_util.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "parse/svg_definition.h"
#include "render/probe_component.h"
#include "tessaline/svg_file.h"

namespace tessaline {
namespace {

using Texts = std::vector<std::string>;
using testing::ProbeComponent;

TEST(TessalineUtil, DrawsEachTopLevelComponentWithTheDefinitionsBoxAndNoStyling) {
  const SVGFile file("");
  auto svg = std::make_shared<SVGDefinition>();
  svg->viewBox = Rect{1, 2, 30, 40};
  svg->errorMessages = {"parse error"};
  auto first = std::make_shared<ProbeComponent>("drawing error");
  auto quiet = std::make_shared<ProbeComponent>(std::nullopt);
  auto empty = std::make_shared<ProbeComponent>("");
  auto last = std::make_shared<ProbeComponent>("another");
  svg->svgComponents = {first, quiet, empty, last};
  // Sub-definitions are reached only by reference, never drawn by the top level.
  auto hidden = std::make_shared<ProbeComponent>("never");
  svg->svgSubDefinitions = std::make_shared<SVGDefinition>();
  svg->svgSubDefinitions->svgComponents = {hidden};

  // The requested size is carried, not used.
  const TessalineResponse response =
      TessalineUtil::loadSVGImage(TessalineRequest(file, svg, "key", 10, 1000));
  EXPECT_EQ(response.key(), "key");
  EXPECT_EQ(response.bitmap(), Image(256, 256)) << "probes draw nothing";
  EXPECT_EQ(response.errors(), (Texts{"parse error", "drawing error", "another"}));
  for (const auto& probe : {first, quiet, empty, last}) {
    ASSERT_EQ(probe->boxes.size(), 1u);
    EXPECT_EQ(probe->boxes[0], svg->viewBox);
    EXPECT_EQ(probe->owners[0], svg.get());
    EXPECT_EQ(probe->styles[0], PresentationAttributes()) << "an empty set, not none";
  }
  EXPECT_TRUE(hidden->boxes.empty());

  // Nothing to draw: a blank image and the parse errors.
  svg = std::make_shared<SVGDefinition>();
  svg->errorMessages = {"a", "b"};
  const TessalineResponse blank =
      TessalineUtil::loadSVGImage(TessalineRequest(file, svg, std::nullopt, 256, 256));
  EXPECT_EQ(blank.key(), std::nullopt);
  EXPECT_EQ(blank.bitmap(), Image(256, 256));
  EXPECT_EQ(blank.errors(), (Texts{"a", "b"}));
}

// 128-unit boxes: one unit is two pixels.
constexpr const char* kDocument = R"svg(<svg xmlns="http://www.w3.org/2000/svg">
  <symbol id="paints" viewBox="0 0 128 128">
    <rect x="10" y="10" width="40" height="40" fill="#ff8000"/>
    <rect x="60" y="10" width="40" height="40" fill="#0000ff" opacity="0.5"/>
    <rect x="10" y="60" width="40" height="40" fill="#00ff00" fill-opacity="0.25" opacity="1"/>
    <rect x="60" y="60" width="40" height="40" stroke="#ff0000" stroke-width="10"/>
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
  <symbol id="clip-through-symbol" viewBox="0 0 128 128">
    <defs><clipPath id="left"><rect x="0" y="0" width="64" height="128"/></clipPath></defs>
    <g clip-path="url(#left)"><use href="#plain" transform="translate(0 0)"/></g>
  </symbol>
  <symbol id="empty-transform-use" viewBox="0 0 128 128">
    <use href="#plain" transform=""/>
  </symbol>
  <symbol id="plain" viewBox="0 0 64 64">
    <rect x="0" y="0" width="64" height="64" fill="#000000"/>
  </symbol>
</svg>)svg";

constexpr Rgba kClear{0, 0, 0, 0}, kBlack{0, 0, 0, 255}, kOrange{255, 128, 0, 255};

// paints: 0.5 * 255 truncates to 127 and the colour stays at full intensity (straight alpha);
// fill-opacity replaces opacity for the fill; a stroke alone does not fill the shape, and the
// 20-pixel stroke is centred on x = 120.
// clipped: the use's clip applies to the defs shape it draws, through the use's transform.
// uses-paints: same boxes, so scale 1, then moved 64 units (128 pixels) to the right.
// clip-through-symbol: the clip path is looked up in the symbol being drawn, which has no defs,
// so the shape fails.
// empty-transform-use: the scale is appended after a blank, and a list may not start with one.
TEST(Rendering, PixelsAndErrorsOnBothBackends) {
  struct Pixel {
    int x, y;
    Rgba rgba;
  };
  struct Case {
    const char* key;
    Texts errors;
    std::vector<Pixel> pixels;  // none: the image must be blank
  };
  const Case cases[] = {
      {"paints",
       {},
       {{60, 60, kOrange},
        {160, 60, {0, 0, 255, 127}},
        {60, 160, {0, 255, 0, 63}},
        {120, 160, {255, 0, 0, 255}},
        {160, 160, kClear},
        {5, 5, kClear},
        {250, 250, kClear}}},
      {"clipped", {}, {{64, 64, kBlack}, {192, 64, kClear}, {64, 192, kBlack}, {192, 192, kClear}}},
      {"uses-paints", {}, {{60 + 128, 60, kOrange}, {60, 60, kClear}}},
      {"clip-through-symbol", {"Unable to find clip path for key"}, {}},
      {"empty-transform-use", {"Invalid transform function $functionName"}, {}},
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
      for (const auto& [x, y, expected] : c.pixels) {
        // Straight-alpha channels come back from 8-bit premultiplied pixels: allow one step.
        const Rgba actual = response.bitmap()->pixel(x, y);
        for (const auto& [got, want] : {std::pair{actual.r, expected.r},
                                        {actual.g, expected.g},
                                        {actual.b, expected.b},
                                        {actual.a, expected.a}}) {
          EXPECT_LE(std::abs(got - want), 1) << int(got) << " at pixel (" << x << ", " << y << ")";
        }
      }
    }
  }
}

}  // namespace
}  // namespace tessaline
