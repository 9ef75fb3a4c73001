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

// Straight-alpha channels come back from 8-bit premultiplied pixels: allow one step of rounding.
constexpr int kChannelTolerance = 1;

void expectPixel(const Image& image, int x, int y, Rgba expected) {
  SCOPED_TRACE(::testing::Message() << "pixel (" << x << ", " << y << ")");
  const Rgba actual = image.pixel(x, y);
  EXPECT_LE(std::abs(actual.r - expected.r), kChannelTolerance) << int(actual.r);
  EXPECT_LE(std::abs(actual.g - expected.g), kChannelTolerance) << int(actual.g);
  EXPECT_LE(std::abs(actual.b - expected.b), kChannelTolerance) << int(actual.b);
  EXPECT_LE(std::abs(actual.a - expected.a), kChannelTolerance) << int(actual.a);
}

constexpr Rgba kTransparent{0, 0, 0, 0};

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
  ASSERT_TRUE(response.bitmap().has_value());
  EXPECT_EQ(response.bitmap()->width(), 256);
  EXPECT_EQ(response.bitmap()->height(), 256);
  EXPECT_EQ(*response.bitmap(), Image(256, 256)) << "probes draw nothing";
  EXPECT_EQ(response.errors(), (Texts{"parse error", "drawing error", "another"}));
  for (const auto& probe : {first, quiet, empty, last}) {
    ASSERT_EQ(probe->boxes.size(), 1u);
    EXPECT_EQ(probe->boxes[0], svg->viewBox);
    EXPECT_EQ(probe->owners[0], svg.get());
    EXPECT_EQ(probe->styles[0], PresentationAttributes()) << "an empty set, not none";
  }
  EXPECT_TRUE(hidden->boxes.empty());
}

TEST(TessalineUtil, EmptyDefinitionGivesABlankImageAndItsParseErrors) {
  const SVGFile file("");
  auto svg = std::make_shared<SVGDefinition>();
  svg->errorMessages = {"a", "b"};
  const TessalineResponse response =
      TessalineUtil::loadSVGImage(TessalineRequest(file, svg, std::nullopt, 256, 256));
  EXPECT_EQ(response.key(), std::nullopt);
  ASSERT_TRUE(response.bitmap().has_value());
  EXPECT_EQ(*response.bitmap(), Image(256, 256));
  EXPECT_EQ(response.errors(), (Texts{"a", "b"}));
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

constexpr RasterBackend kBackends[] = {RasterBackend::Native, RasterBackend::Cairo};

TEST(Rendering, PaintsColoursAndOpacities) {
  const SVGFile file(kDocument);
  for (const RasterBackend backend : kBackends) {
    SCOPED_TRACE(backend == RasterBackend::Native ? "native" : "cairo");
    const TessalineResponse response = file.getUIImageForKey("paints", backend);
    ASSERT_TRUE(response.bitmap().has_value());
    EXPECT_EQ(response.errors(), Texts{});
    const Image& image = *response.bitmap();
    expectPixel(image, 60, 60, {255, 128, 0, 255});
    // 0.5 * 255 truncates to 127; the colour stays at full intensity (straight alpha).
    expectPixel(image, 160, 60, {0, 0, 255, 127});
    // fill-opacity replaces opacity for the fill.
    expectPixel(image, 60, 160, {0, 255, 0, 63});
    // A stroke and no fill: the shape is not filled. The 20-pixel stroke is centred on x = 120.
    expectPixel(image, 120, 160, {255, 0, 0, 255});
    expectPixel(image, 160, 160, kTransparent);
    expectPixel(image, 5, 5, kTransparent);
    expectPixel(image, 250, 250, kTransparent);
  }
}

TEST(Rendering, ClipsByReferenceFromGroupsAndUses) {
  const SVGFile file(kDocument);
  for (const RasterBackend backend : kBackends) {
    SCOPED_TRACE(backend == RasterBackend::Native ? "native" : "cairo");
    const TessalineResponse response = file.getUIImageForKey("clipped", backend);
    ASSERT_TRUE(response.bitmap().has_value());
    EXPECT_EQ(response.errors(), Texts{});
    const Image& image = *response.bitmap();
    const Rgba black{0, 0, 0, 255};
    expectPixel(image, 64, 64, black);
    expectPixel(image, 192, 64, kTransparent);
    // The use's clip applies to the defs shape it draws, through the use's transform.
    expectPixel(image, 64, 192, black);
    expectPixel(image, 192, 192, kTransparent);
  }
}

TEST(Rendering, UsedSymbolIsPlacedByTheUseTransform) {
  const SVGFile file(kDocument);
  const TessalineResponse response = file.getUIImageForKey("uses-paints");
  ASSERT_TRUE(response.bitmap().has_value());
  EXPECT_EQ(response.errors(), Texts{});
  // Same boxes: scale 1, then moved 64 units (128 pixels) to the right.
  expectPixel(*response.bitmap(), 60 + 128, 60, {255, 128, 0, 255});
  expectPixel(*response.bitmap(), 60, 60, kTransparent);
}

TEST(Rendering, ClipInheritedIntoAnotherSymbolIsLookedUpThere) {
  // The clip path is looked up in the symbol being drawn, which has no defs: the shape fails.
  const SVGFile file(kDocument);
  const TessalineResponse response = file.getUIImageForKey("clip-through-symbol");
  ASSERT_TRUE(response.bitmap().has_value());
  EXPECT_EQ(response.errors(), Texts{"Unable to find clip path for key"});
  EXPECT_EQ(*response.bitmap(), Image(256, 256));
}

TEST(Rendering, AnEmptyTransformAllowsScalingButNotParsing) {
  // The scale is appended after a blank, and a list may not start with one.
  const SVGFile file(kDocument);
  const TessalineResponse response = file.getUIImageForKey("empty-transform-use");
  ASSERT_TRUE(response.bitmap().has_value());
  EXPECT_EQ(response.errors(), Texts{"Invalid transform function $functionName"});
  EXPECT_EQ(*response.bitmap(), Image(256, 256));
}

TEST(Rendering, UnknownKey) {
  const SVGFile file(kDocument);
  const TessalineResponse response = file.getUIImageForKey("Paints");
  EXPECT_EQ(response.key(), "Paints");
  EXPECT_FALSE(response.bitmap().has_value());
  EXPECT_EQ(response.errors(), Texts{"No SVG Definition found for key"});
}

}  // namespace
}  // namespace tessaline
