// Drawing a whole definition into the box of the element that refers to it, and `use` elements,
// which draw an element of their definition's `defs` or another symbol of the document.
#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "geometry/basic_shapes.h"
#include "parse/svg_component.h"
#include "parse/svg_definition.h"
#include "render/probe_component.h"
#include "render/recording_canvas.h"
#include "render/scale_text.h"
#include "tessaline/svg_file.h"

namespace tessaline {
namespace {

using testing::definitionOf;
using testing::Probe;
using testing::probe;

constexpr Rect kBox24{0, 0, 24, 24};

PresentationAttributes styled(std::optional<std::string> fill,
                              std::optional<std::string> transform) {
  PresentationAttributes a;
  a.fill = std::move(fill);
  a.transform = std::move(transform);
  return a;
}

// The drawing definition `owner` (box 24) has `defs` holding "a" twice, "b" and a clip path
// "clip"; the document has symbols "a" (shadowed by the local one), "quiet" (no errors) and
// "sym" (box 48, two parse errors, probes answering "first", nothing, "" and "last").
struct Document {
  SVGFile file{""};
  SVGDefinition owner;
  Probe localA = probe("drew local a", "a"), localA2 = probe("second a", "a");
  Probe symbolA = probe("drew symbol a");
  Probe first = probe("first"), quiet = probe(std::nullopt), empty = probe(""),
        last = probe("last");
  std::shared_ptr<SVGDefinition> sym = definitionOf({first, quiet, empty, last});
  testing::RecordingCanvas canvas;

  Document() {
    owner.viewBox = kBox24;
    auto square = std::make_shared<RectComponent>("r", PresentationAttributes(), 0.f, 0.f, 4.f, 4.f,
                                                  0.f, 0.f);
    owner.svgSubDefinitions =
        definitionOf({localA, localA2, probe("", "b"),
                      std::make_shared<ClipPathComponent>("clip", definitionOf({square}))});
    file.symbolDefinitions["a"] = definitionOf({symbolA});
    file.symbolDefinitions["quiet"] = definitionOf({probe(std::nullopt)});
    sym->viewBox = Rect{0, 0, 48, 48};
    sym->errorMessages = {"parse one", "parse two"};
    file.symbolDefinitions["sym"] = sym;
  }

  std::optional<std::string> drawUse(std::string href, std::string hrefLink,
                                     const PresentationAttributes& own = {},
                                     const PresentationAttributes* inherited = nullptr) {
    return UseComponent("u", std::move(href), std::move(hrefLink), own)
        .draw(canvas, kBox24, file, owner, inherited);
  }
};

TEST(DefinitionDrawing, ScalesFromItsOwnBoxIntoTheOverride) {
  struct Case {
    std::optional<Rect> own, override;
    std::optional<std::string> transform;
    std::optional<std::string> expectedTransform;
  };
  const Rect box48{0, 0, 48, 48};
  const Case cases[] = {
      {box48, std::nullopt, "translate(2,3)", "translate(2,3)"},  // no override: no scale
      // Only the sizes count, as magnitudes, x first; origins play no part.
      {Rect{10, 10, -10, 20}, Rect{-5, 7, 20, 20}, "", " scale(2.0 1.0)"},
      // A zero-sized own box gives the factors as they come out.
      {Rect{0, 0, 0, 0}, Rect{0, 0, 24, 0}, "", " scale(inf nan)"},
      {std::nullopt, kBox24, std::nullopt, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.expectedTransform.value_or("-"));
    Document d;
    d.sym->viewBox = c.own;
    PresentationAttributes inherited;
    inherited.transform = c.transform;
    d.sym->draw(d.canvas, d.file, &inherited, c.override);
    ASSERT_EQ(d.last->boxes.size(), 1u);
    EXPECT_EQ(d.last->boxes[0], c.override ? c.override : c.own);
    EXPECT_EQ(d.last->styles[0]->transform, c.expectedTransform);
    EXPECT_EQ(inherited.transform, c.transform) << "the caller's styling is left alone";
  }
  // Factors print as the shortest text that reads back as the same double, always with a
  // decimal point or an exponent; whatever the sign of a NaN, it carries no meaning here.
  const std::pair<double, const char*> factors[] = {
      {1.0 / 3, "0.3333333333333333"},
      {1e20, "1e+20"},
      {1e-7, "1e-07"},
      {123456789012345678.0, "123456789012345680.0"},
      {-std::numeric_limits<double>::quiet_NaN(), "nan"}};
  for (const auto& [factor, text] : factors) EXPECT_EQ(formatScaleFactor(factor), text);
}

TEST(UseReferences, LinkKeys) {
  struct Case {
    const char *href, *hrefLink, *expected;
  };
  const Case cases[] = {
      {"#a", "#b", "drew local a"},  // href wins
      {"a", "#b", ""},               // href without "#": hrefLink ("b" answers "")
      {"#", "#a", "drew local a"},   // "#" alone names nothing
      {"#", "", "No link key found"},
      {"#\u0301b", "#a", "drew local a"},  // "#" with a combining mark is another character
      {"other.svg#a", "", "No link key found"},
      {"#missing", "#a", "No SVG found for href link"},
      {"#quiet", "", ""},  // a symbol without errors gives the empty text
      {"#clip", "", "Invalid Draw call to clip path"},  // never painted, not even through `use`
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.href) + " | " + c.hrefLink);
    Document d;
    EXPECT_EQ(d.drawUse(c.href, c.hrefLink), c.expected);
    EXPECT_TRUE(d.canvas.calls.empty());
  }
}

TEST(UseReferences, LocalDefsTakeOwnStylingOnlySymbolsAreScaledWithMergedStyling) {
  Document d;
  const PresentationAttributes own = styled("#ff0000", std::nullopt);
  const PresentationAttributes inherited = styled("#00ff00", "translate(3 3)");
  EXPECT_EQ(d.drawUse("#a", "", own, &inherited), "drew local a");
  // The first component with the id, not the symbol of the same name, nor the later duplicate.
  EXPECT_TRUE(d.symbolA->boxes.empty());
  EXPECT_TRUE(d.localA2->boxes.empty());
  ASSERT_EQ(d.localA->boxes.size(), 1u);
  EXPECT_EQ(d.localA->boxes[0], kBox24);
  EXPECT_EQ(d.localA->owners[0], &d.owner);
  EXPECT_EQ(d.localA->styles[0], own) << "inherited styling does not pass a local reference";

  // Parse errors first, then the drawing errors that are not empty; repeated on every draw.
  for (int draw = 0; draw < 2; ++draw) {
    EXPECT_EQ(d.drawUse("#sym", "", own, &inherited), "parse one, parse two, first, last");
  }
  ASSERT_EQ(d.last->boxes.size(), 2u);
  EXPECT_EQ(d.last->boxes[0], kBox24) << "drawn into the caller's box";
  EXPECT_EQ(d.last->owners[0], d.sym.get());
  EXPECT_EQ(d.last->styles[0], styled("#ff0000", "translate(3 3) scale(0.5 0.5)"));
}

// Scaling is appended to a transform and never invents one.
TEST(DefinitionDrawingDeathTest, ScalingWithoutATransformStops) {
  Document d;
  EXPECT_DEATH(d.drawUse("#sym", "", styled("#fff", std::nullopt)), "fatal error");
}

}  // namespace
}  // namespace tessaline
