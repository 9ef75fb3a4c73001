#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "parse/svg_component.h"
#include "parse/svg_definition.h"
#include "render/probe_component.h"
#include "render/recording_canvas.h"
#include "tessaline/svg_file.h"

namespace tessaline {
namespace {

using testing::ProbeComponent;

constexpr Rect kBox24{0, 0, 24, 24};

// A document whose drawing definition has `defs` holding probes "a", "b" and a clip path "clip",
// plus document symbols "a" (a shadowed one) and "sym" (box 48 x 48, two parse errors).
struct Document {
  SVGFile file{""};
  std::shared_ptr<SVGDefinition> owner = std::make_shared<SVGDefinition>();
  std::shared_ptr<ProbeComponent> localA = std::make_shared<ProbeComponent>("drew local a", "a");
  std::shared_ptr<ProbeComponent> localA2 = std::make_shared<ProbeComponent>("second a", "a");
  std::shared_ptr<ProbeComponent> localB = std::make_shared<ProbeComponent>("", "b");
  std::shared_ptr<ProbeComponent> symbolA = std::make_shared<ProbeComponent>("drew symbol a");
  std::shared_ptr<ProbeComponent> inSym = std::make_shared<ProbeComponent>("y");
  std::shared_ptr<ProbeComponent> alsoInSym = std::make_shared<ProbeComponent>("z");
  testing::RecordingCanvas canvas;

  Document() {
    owner->viewBox = kBox24;
    owner->svgSubDefinitions = std::make_shared<SVGDefinition>();
    owner->svgSubDefinitions->svgComponents = {
        localA, localA2, localB,
        std::make_shared<ClipPathComponent>("clip", std::make_shared<SVGDefinition>())};
    auto a = std::make_shared<SVGDefinition>();
    a->svgComponents = {symbolA};
    file.symbolDefinitions["a"] = a;
    auto sym = std::make_shared<SVGDefinition>();
    sym->viewBox = Rect{0, 0, 48, 48};
    sym->errorMessages = {"x"};
    sym->svgComponents = {inSym, alsoInSym};
    file.symbolDefinitions["sym"] = sym;
  }

  std::optional<std::string> drawUse(const UseComponent& use,
                                     const PresentationAttributes* inherited = nullptr) {
    return use.draw(canvas, kBox24, file, *owner, inherited);
  }
};

PresentationAttributes styled(std::optional<std::string> fill,
                              std::optional<std::string> transform) {
  PresentationAttributes a;
  a.fill = std::move(fill);
  a.transform = std::move(transform);
  return a;
}

TEST(UseReferences, LinkKeys) {
  struct Case {
    const char* href;
    const char* hrefLink;
    const char* expected;
  };
  const Case cases[] = {
      {"#a", "#b", "drew local a"},  // href wins
      {"a", "#b", ""},               // href without "#": hrefLink ("b" answers "")
      {"#", "#a", "drew local a"},   // "#" alone names nothing
      {"", "#a", "drew local a"},
      {"#", "", "No link key found"},
      {"", "#", "No link key found"},
      {"other.svg#a", "", "No link key found"},
      {"#missing", "#a", "No SVG found for href link"},
      {"#A", "", "No SVG found for href link"},  // keys match exactly
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.href) + " | " + c.hrefLink);
    Document d;
    const UseComponent use("u", c.href, c.hrefLink, PresentationAttributes());
    EXPECT_EQ(d.drawUse(use), c.expected);
    EXPECT_TRUE(d.canvas.calls.empty());
  }
}

TEST(UseReferences, LocalDefsComeFirstWithOnlyTheUseElementsOwnStyling) {
  Document d;
  const PresentationAttributes own = styled("#ff0000", std::nullopt);
  const PresentationAttributes inherited = styled("#00ff00", "translate(3 3)");
  const UseComponent use("u", "#a", "", own);
  EXPECT_EQ(d.drawUse(use, &inherited), "drew local a");
  // The first component with the id, not the symbol of the same name, nor the later duplicate.
  EXPECT_TRUE(d.symbolA->boxes.empty());
  EXPECT_TRUE(d.localA2->boxes.empty());
  ASSERT_EQ(d.localA->boxes.size(), 1u);
  EXPECT_EQ(d.localA->boxes[0], kBox24);
  EXPECT_EQ(d.localA->owners[0], d.owner.get());
  EXPECT_EQ(d.localA->styles[0], own) << "inherited styling does not pass a local reference";
}

TEST(UseReferences, SymbolsAreScaledWithMergedStylingAndErrorsJoined) {
  Document d;
  const PresentationAttributes own = styled("#ff0000", std::nullopt);
  const PresentationAttributes inherited = styled("#00ff00", "translate(3 3)");
  const UseComponent use("u", "#sym", "", own);
  EXPECT_EQ(d.drawUse(use, &inherited), "x, y, z");
  ASSERT_EQ(d.inSym->boxes.size(), 1u);
  EXPECT_EQ(d.inSym->boxes[0], kBox24) << "drawn into the caller's box";
  EXPECT_EQ(d.inSym->owners[0], d.file.symbolDefinitions["sym"].get());
  EXPECT_EQ(d.inSym->styles[0], styled("#ff0000", "translate(3 3) scale(0.5 0.5)"));
}

TEST(UseReferences, SymbolWithoutErrorsGivesTheEmptyText) {
  Document d;
  auto quiet = std::make_shared<SVGDefinition>();
  quiet->svgComponents = {std::make_shared<ProbeComponent>(std::nullopt)};
  d.file.symbolDefinitions["quiet"] = quiet;
  const UseComponent use("u", "#quiet", "", PresentationAttributes());
  EXPECT_EQ(d.drawUse(use), "");
}

TEST(UseReferences, AClipPathCannotBeUsed) {
  Document d;
  const UseComponent use("u", "#clip", "", PresentationAttributes());
  EXPECT_EQ(d.drawUse(use), "Invalid Draw call to clip path");
}

TEST(UseReferencesDeathTest, ScalingASymbolNeedsATransform) {
  Document d;
  const UseComponent use("u", "#sym", "", PresentationAttributes());
  EXPECT_DEATH(d.drawUse(use), "fatal error");
}

}  // namespace
}  // namespace tessaline
