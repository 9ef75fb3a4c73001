#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "parse/svg_component.h"
#include "parse/svg_definition.h"
#include "render/probe_component.h"
#include "render/recording_canvas.h"
#include "render/scale_text.h"
#include "tessaline/svg_file.h"

namespace tessaline {
namespace {

using Texts = std::vector<std::string>;

using testing::ProbeComponent;

TEST(ScaleFactorText, ShortestRoundTripWithAPointOrExponent) {
  EXPECT_EQ(formatScaleFactor(1.0), "1.0");
  EXPECT_EQ(formatScaleFactor(0.5), "0.5");
  EXPECT_EQ(formatScaleFactor(2.0), "2.0");
  EXPECT_EQ(formatScaleFactor(0.1), "0.1");
  EXPECT_EQ(formatScaleFactor(1e20), "1e+20");
  EXPECT_EQ(formatScaleFactor(std::numeric_limits<double>::infinity()), "inf");
  EXPECT_EQ(formatScaleFactor(std::numeric_limits<double>::quiet_NaN()), "nan");
  EXPECT_EQ(formatScaleFactor(-std::numeric_limits<double>::quiet_NaN()), "nan");
  for (double value : {1.0 / 3.0, 2.0 / 3.0, 24.0 / 7.0, 123456789012345678.0, 1e-7, 1234.5}) {
    SCOPED_TRACE(value);
    const std::string text = formatScaleFactor(value);
    EXPECT_EQ(std::strtod(text.c_str(), nullptr), value);
    EXPECT_NE(text.find_first_of(".e"), std::string::npos);
  }
}

struct Fixture {
  SVGFile file{""};
  SVGDefinition definition;
  std::shared_ptr<ProbeComponent> first = std::make_shared<ProbeComponent>("first");
  std::shared_ptr<ProbeComponent> quiet = std::make_shared<ProbeComponent>(std::nullopt);
  std::shared_ptr<ProbeComponent> empty = std::make_shared<ProbeComponent>("");
  std::shared_ptr<ProbeComponent> last = std::make_shared<ProbeComponent>("last");
  testing::RecordingCanvas canvas;

  Fixture() {
    definition.errorMessages = {"parse one", "parse two"};
    definition.svgComponents = {first, quiet, empty, last};
  }
};

TEST(DefinitionDrawing, ParseErrorsFirstThenNonEmptyDrawingErrorsInOrder) {
  Fixture f;
  PresentationAttributes inherited;
  inherited.transform = "translate(1 2)";
  EXPECT_EQ(f.definition.draw(f.canvas, f.file, &inherited, std::nullopt),
            (Texts{"parse one", "parse two", "first", "last"}));
  // Repeated on every draw.
  EXPECT_EQ(f.definition.draw(f.canvas, f.file, nullptr, std::nullopt).size(), 4u);
  for (const auto& probe : {f.first, f.quiet, f.empty, f.last}) {
    ASSERT_EQ(probe->owners.size(), 2u);
    EXPECT_EQ(probe->owners[0], &f.definition);
  }
  ASSERT_TRUE(f.first->styles[0] && f.first->styles[1]) << "always a set, empty when none given";
  EXPECT_EQ(f.first->styles[0]->transform, "translate(1 2)");
  EXPECT_EQ(f.first->styles[1]->transform, std::nullopt);
  EXPECT_EQ(inherited.transform, "translate(1 2)") << "the caller's set is not changed";
}

TEST(DefinitionDrawing, NoComponentsGiveExactlyTheParseErrors) {
  Fixture f;
  f.definition.svgComponents.clear();
  EXPECT_EQ(f.definition.draw(f.canvas, f.file, nullptr, Rect{0, 0, 24, 24}),
            (Texts{"parse one", "parse two"}));
  EXPECT_TRUE(f.canvas.calls.empty());
}

TEST(DefinitionDrawing, ScalesFromItsOwnBoxIntoTheOverride) {
  struct Case {
    const char* name;
    std::optional<Rect> own;
    std::optional<Rect> override;
    std::optional<std::string> transform;
    std::optional<Rect> expectedBox;
    std::optional<std::string> expectedTransform;
  };
  const Rect box48{0, 0, 48, 48};
  const Rect box24{0, 0, 24, 24};
  const Case cases[] = {
      {"no override", box48, std::nullopt, "translate(2,3)", box48, "translate(2,3)"},
      {"both boxes", box48, box24, "translate(2,3)", box24, "translate(2,3) scale(0.5 0.5)"},
      {"empty transform", box24, box48, "", box48, " scale(2.0 2.0)"},
      {"10 x 20 into 20 x 20", Rect{0, 0, 10, 20}, Rect{0, 0, 20, 20}, "", Rect{0, 0, 20, 20},
       " scale(2.0 1.0)"},
      {"origins play no part", Rect{10, 10, 24, 24}, Rect{-5, 7, 24, 24}, "", Rect{-5, 7, 24, 24},
       " scale(1.0 1.0)"},
      {"magnitudes only", Rect{0, 0, -12, 24}, box24, "", box24, " scale(2.0 1.0)"},
      {"zero-sized own box", Rect{0, 0, 0, 24}, box24, "", box24, " scale(inf 1.0)"},
      {"override without own box", std::nullopt, box24, std::nullopt, box24, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Fixture f;
    f.definition.viewBox = c.own;
    PresentationAttributes inherited;
    inherited.transform = c.transform;
    f.definition.draw(f.canvas, f.file, &inherited, c.override);
    ASSERT_EQ(f.last->boxes.size(), 1u);
    EXPECT_EQ(f.last->boxes[0], c.expectedBox);
    EXPECT_EQ(f.last->styles[0]->transform, c.expectedTransform);
    EXPECT_EQ(inherited.transform, c.transform);
  }
}

TEST(DefinitionDrawingDeathTest, ScalingWithoutATransformStops) {
  Fixture f;
  f.definition.viewBox = Rect{0, 0, 48, 48};
  EXPECT_DEATH(f.definition.draw(f.canvas, f.file, nullptr, Rect{0, 0, 24, 24}), "fatal error");
  PresentationAttributes noTransform;
  noTransform.fill = "#fff";
  EXPECT_DEATH(f.definition.draw(f.canvas, f.file, &noTransform, Rect{0, 0, 24, 24}),
               "fatal error");
}

}  // namespace
}  // namespace tessaline
