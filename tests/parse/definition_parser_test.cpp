#include <gtest/gtest.h>

#include "geometry/basic_shapes.h"
#include "parse/parse_test_helpers.h"

namespace tessaline {
namespace {

using testing::componentAs;
using testing::endTag;
using testing::Messages;
using testing::parseSymbolBody;
using testing::ScriptedEvents;
using testing::startTag;

PresentationAttributes symbolFill(const char* fill) {
  PresentationAttributes attributes;
  attributes.fill = fill;
  return attributes;
}

std::optional<std::string> fillOf(const SVGDefinition& definition, std::size_t index) {
  const auto* shape = dynamic_cast<const PresentationAttributeSVGComponent*>(
      definition.svgComponents.at(index).get());
  return shape ? shape->attributes.fill : std::nullopt;
}

TEST(DefinitionParser, GroupsPassAttributesDownAndClosingTheOutermostResetsInheritance) {
  const PresentationAttributes symbol = symbolFill("blue");
  auto definition = parseSymbolBody(
      "<path d='M9 9'/>"
      "<g fill='red'><path d='M0 0L1 1'/>"
      "<g stroke='black'><path d='M5 5'/></g>"
      "<path d='M6 6'/></g>"
      "<path d='M2 2L3 3'/>",
      &symbol);
  ASSERT_EQ(definition->svgComponents.size(), 5u);
  EXPECT_TRUE(definition->errorMessages.empty());
  EXPECT_EQ(fillOf(*definition, 0), "blue");  // before any group: the symbol's own
  EXPECT_EQ(fillOf(*definition, 1), "red");
  auto* inner = componentAs<PathComponent>(*definition, 2);
  ASSERT_NE(inner, nullptr);
  EXPECT_EQ(inner->attributes.fill, "red");
  EXPECT_EQ(inner->attributes.stroke, "black");
  auto* afterInner = componentAs<PathComponent>(*definition, 3);
  ASSERT_NE(afterInner, nullptr);
  EXPECT_EQ(afterInner->attributes.fill, "red");  // the enclosing group's set comes back
  EXPECT_EQ(afterInner->attributes.stroke, std::nullopt);
  EXPECT_EQ(fillOf(*definition, 4), std::nullopt);  // not even the symbol's fill
}

TEST(DefinitionParser, TransformsAccumulateThroughGroupsOutermostFirst) {
  auto definition = parseSymbolBody(
      "<g transform='translate(1,2)'><g Transform='scale(2)'>"
      "<rect width='1' height='1'/><rect width='1' height='1' transform='rotate(4)'/>"
      "</g><circle cx='0' r='1' style='transform: skewX(1)'/></g>");
  ASSERT_EQ(definition->svgComponents.size(), 3u);
  auto transformOf = [&](std::size_t i) {
    return dynamic_cast<const PresentationAttributeSVGComponent&>(*definition->svgComponents[i])
        .attributes.transform;
  };
  EXPECT_EQ(transformOf(0), "translate(1,2) scale(2)");
  EXPECT_EQ(transformOf(1), "translate(1,2) scale(2) rotate(4)");
  EXPECT_EQ(transformOf(2), "translate(1,2) skewX(1)");
}

TEST(DefinitionParser, UnknownElementsAreReportedButTheirChildrenParsed) {
  auto definition = parseSymbolBody(
      "<text x='1'>Hi<path d='M0 0'/><TSpan><Circle cx='1' r='1'/></TSpan></text>"
      "<x:rect width='1' height='1'/><PATH d='M1 1'/>");
  EXPECT_EQ(definition->errorMessages, (Messages{"Encountered unknown SVG component: text",
                                                 "Encountered unknown SVG component: TSpan",
                                                 "Encountered unknown SVG component: x:rect"}));
  ASSERT_EQ(definition->svgComponents.size(), 3u);
  EXPECT_NE(componentAs<PathComponent>(*definition, 0), nullptr);
  EXPECT_NE(componentAs<CircleComponent>(*definition, 1), nullptr);
  EXPECT_NE(componentAs<PathComponent>(*definition, 2), nullptr);
}

TEST(DefinitionParser, ANestedSymbolEndTagEndsTheDefinitionEarly) {
  SVGXMLParser parser(
      "<symbol id='a'><path d='M0 0'/><symbol><rect width='1' height='1'/></symbol>"
      "<circle cx='1' r='1'/></symbol>");
  parser.nextEvent();
  parser.nextEvent();
  SVGDefinition definition;
  definition.parseData(parser, nullptr);
  EXPECT_EQ(definition.errorMessages, (Messages{"Encountered unknown SVG component: symbol"}));
  ASSERT_EQ(definition.svgComponents.size(), 2u);
  EXPECT_NE(componentAs<RectComponent>(definition, 1), nullptr);
  // The parser is left just after the end tag that closed the definition.
  const SVGEvent* next = parser.nextEvent();
  ASSERT_NE(next, nullptr);
  EXPECT_EQ(next->eventType, EventType::StartTag);
  EXPECT_EQ(next->name, "circle");
}

TEST(DefinitionParser, ClipPathContentInheritsNothingAndItsErrorsPropagate) {
  const PresentationAttributes symbol = symbolFill("blue");
  auto definition = parseSymbolBody(
      "<foo/><g fill='red'><CLIPPATH id='c' fill='x'><rect width='1' height='1'/>"
      "<bar/></CLIPPATH><path d='M0 0'/></g>",
      &symbol);
  const Messages expected{"Encountered unknown SVG component: foo",
                          "Encountered unknown attribute for clippath: fill",
                          "Encountered unknown SVG component: bar"};
  EXPECT_EQ(definition->errorMessages, expected);
  ASSERT_EQ(definition->svgComponents.size(), 2u);
  auto* clip = componentAs<ClipPathComponent>(*definition, 0);
  ASSERT_NE(clip, nullptr);
  EXPECT_EQ(clip->id, "c");
  const SVGDefinition& inner = clip->definitions();
  EXPECT_EQ(inner.errorMessages, (Messages{"Encountered unknown SVG component: bar"}));
  EXPECT_EQ(inner.id, "");
  EXPECT_EQ(inner.viewBox, std::nullopt);
  ASSERT_EQ(inner.svgComponents.size(), 1u);
  EXPECT_EQ(fillOf(inner, 0), std::nullopt);
  // The group around the clip path is still open for what follows it.
  EXPECT_EQ(fillOf(*definition, 1), "red");
}

TEST(DefinitionParser, OnlyTheLastDefsIsKeptButEveryDefsReportsItsErrors) {
  auto definition = parseSymbolBody(
      "<defs><a/><path d='M0 0'/></defs><b/><defs class='x'><c/><rect width='1' height='1'/>"
      "<defs><circle cx='1' r='1'/></defs></defs>");
  EXPECT_EQ(definition->errorMessages, (Messages{"Encountered unknown SVG component: a",
                                                 "Encountered unknown SVG component: b",
                                                 "Encountered unknown SVG component: c"}));
  EXPECT_TRUE(definition->svgComponents.empty());
  ASSERT_NE(definition->svgSubDefinitions, nullptr);
  const SVGDefinition& defs = *definition->svgSubDefinitions;
  EXPECT_EQ(defs.errorMessages, (Messages{"Encountered unknown SVG component: c"}));
  ASSERT_EQ(defs.svgComponents.size(), 1u);
  EXPECT_NE(componentAs<RectComponent>(defs, 0), nullptr);
  ASSERT_NE(defs.svgSubDefinitions, nullptr);
  EXPECT_NE(componentAs<CircleComponent>(*defs.svgSubDefinitions, 0), nullptr);
}

TEST(DefinitionParser, AnyTerminatingEndTagEndsTheInnermostDefinition) {
  ScriptedEvents events({
      startTag("clipPath", {{"id", "c"}}),
      startTag("rect", {{"width", "1"}, {"height", "1"}}),
      endTag("DEFS"),  // ends the clip path although a defs did not open it
      startTag("path", {{"d", "M0 0"}}),
      endTag("rect"),  // other end tags mean nothing
      endTag("Symbol"),
      startTag("circle", {{"cx", "1"}, {"r", "1"}}),
  });
  SVGDefinition definition;
  definition.parseData(events, nullptr);
  EXPECT_EQ(events.consumed(), 6u);
  ASSERT_EQ(definition.svgComponents.size(), 2u);
  auto* clip = componentAs<ClipPathComponent>(definition, 0);
  ASSERT_NE(clip, nullptr);
  EXPECT_EQ(clip->definitions().svgComponents.size(), 1u);
  EXPECT_NE(componentAs<PathComponent>(definition, 1), nullptr);
}

TEST(DefinitionParser, StrayGroupEndsDriveTheLevelNegative) {
  const PresentationAttributes symbol = symbolFill("blue");
  ScriptedEvents events({
      endTag("g"),  // level -2: the symbol's attributes are gone
      startTag("path", {{"d", "M0 0"}}),
      startTag("g", {{"fill", "red"}}),  // stored under level -1
      startTag("path", {{"d", "M1 1"}}),
      startTag("g", {{"stroke", "green"}}),  // level 0
      endTag("g"),                           // back to -1: a negative level restores nothing
      startTag("path", {{"d", "M2 2"}}),
      endTag("g"),
      startTag("path", {{"d", "M3 3"}}),
      endTag("symbol"),
  });
  SVGDefinition definition;
  definition.parseData(events, &symbol);
  ASSERT_EQ(definition.svgComponents.size(), 4u);
  EXPECT_EQ(fillOf(definition, 0), std::nullopt);
  EXPECT_EQ(fillOf(definition, 1), "red");
  EXPECT_EQ(fillOf(definition, 2), std::nullopt);
  EXPECT_EQ(fillOf(definition, 3), std::nullopt);
}

TEST(DefinitionParser, RunningOutOfEventsCompletesEveryOpenDefinition) {
  ScriptedEvents events({
      startTag("defs"),
      startTag("clipPath", {{"id", "k"}}),
      startTag("oops"),
      {EventType::EndOfDocument, "", {}},
      startTag("late"),  // read by the defs once the clip path has ended
  });
  SVGDefinition definition;
  definition.parseData(events, nullptr);
  EXPECT_EQ(definition.errorMessages, (Messages{"Encountered unknown SVG component: oops",
                                                "Encountered unknown SVG component: late"}));
  ASSERT_NE(definition.svgSubDefinitions, nullptr);
  auto* clip = componentAs<ClipPathComponent>(*definition.svgSubDefinitions, 0);
  ASSERT_NE(clip, nullptr);
  EXPECT_EQ(clip->id, "k");
  EXPECT_EQ(clip->definitions().errorMessages,
            (Messages{"Encountered unknown SVG component: oops"}));
}

TEST(DefinitionParser, HostileNestingParsesAndFreesWithoutRecursion) {
  constexpr int kDepth = 100000;
  struct Case {
    const char* open;
    const char* close;
  };
  for (const Case& c : {Case{"<defs>", "</defs>"}, Case{"<clipPath>", "</clipPath>"},
                        Case{"<g fill='red'>", "</g>"}, Case{"<x>", "</x>"}}) {
    SCOPED_TRACE(c.open);
    std::string body;
    body.reserve(static_cast<std::size_t>(kDepth) * 30);
    for (int i = 0; i < kDepth; ++i) body += c.open;
    body += "<path d='M0 0'/><bad/>";
    for (int i = 0; i < kDepth; ++i) body += c.close;
    auto definition = parseSymbolBody(body);

    // Walk down to the innermost definition iteratively.
    const SVGDefinition* innermost = definition.get();
    int depth = 0;
    while (true) {
      const SVGDefinition* next = innermost->svgSubDefinitions.get();
      if (next == nullptr && innermost->svgComponents.size() == 1) {
        if (auto* clip =
                dynamic_cast<const ClipPathComponent*>(innermost->svgComponents[0].get())) {
          next = &clip->definitions();
        }
      }
      if (next == nullptr) break;
      innermost = next;
      ++depth;
    }
    const bool nests = c.open[1] == 'd' || c.open[1] == 'c';
    EXPECT_EQ(depth, nests ? kDepth : 0);
    ASSERT_EQ(innermost->svgComponents.size(), 1u);
    EXPECT_NE(componentAs<PathComponent>(*innermost, 0), nullptr);
    // The one message travels up through every level.
    EXPECT_EQ(definition->errorMessages.back(), "Encountered unknown SVG component: bad");
    EXPECT_EQ(definition->errorMessages.size(), c.open[1] == 'x' ? kDepth + 1u : 1u);
    definition.reset();  // freeing must not recurse either
  }
}

}  // namespace
}  // namespace tessaline
