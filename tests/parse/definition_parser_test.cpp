#include <gtest/gtest.h>

#include "parse/parse_test_helpers.h"

namespace tessaline {
namespace {

using testing::describe;
using testing::Messages;
using testing::parseSymbolBody;

// An event source that hands out a scripted list, for sequences that well-formed XML cannot
// produce (stray end tags, events after the end of the document).
class ScriptedEvents final : public SVGXMLParserProtocol {
 public:
  explicit ScriptedEvents(std::vector<SVGEvent> events) : events_(std::move(events)) {}
  const SVGEvent* nextEvent() override {
    return next_ < events_.size() ? &events_[next_++] : nullptr;
  }
  std::size_t consumed() const { return next_; }

 private:
  std::vector<SVGEvent> events_;
  std::size_t next_ = 0;
};

SVGEvent startTag(std::string name, SVGEvent::Attributes attributes = {}) {
  return {EventType::StartTag, std::move(name), std::move(attributes)};
}
SVGEvent endTag(std::string name) {
  return {EventType::EndTag, std::move(name), {}};
}

PresentationAttributes symbolFill(const char* fill) {
  PresentationAttributes attributes;
  attributes.fill = fill;
  return attributes;
}

const SVGDefinition& clipContent(const SVGDefinition& definition, std::size_t index) {
  return dynamic_cast<const ClipPathComponent&>(*definition.svgComponents.at(index)).definitions();
}

TEST(DefinitionParser, GroupsPassAttributesDownAndClosingTheOutermostResetsInheritance) {
  const PresentationAttributes symbol = symbolFill("blue");
  auto definition = parseSymbolBody(
      "<path d='M9 9'/><g fill='red'><path d='M0 0L1 1'/><g stroke='black'><path d='M5 5'/></g>"
      "<path d='M6 6'/></g><path d='M2 2L3 3'/>",
      &symbol);
  EXPECT_TRUE(definition->errorMessages.empty());
  // Before any group the symbol's own; after the inner group the enclosing group's set comes
  // back; after the outermost not even the symbol's fill.
  EXPECT_EQ(describe(*definition),
            "path d='M9 9' fill=blue; path d='M0 0L1 1' fill=red; "
            "path d='M5 5' fill=red stroke=black; path d='M6 6' fill=red; path d='M2 2L3 3'");
}

TEST(DefinitionParser, TransformsAccumulateThroughGroupsOutermostFirst) {
  auto definition = parseSymbolBody(
      "<g transform='translate(1,2)'><g Transform='scale(2)'>"
      "<rect width='1' height='1'/><rect width='1' height='1' transform='rotate(4)'/>"
      "</g><circle cx='0' r='1' style='transform: skewX(1)'/></g>");
  EXPECT_EQ(describe(*definition),
            "rect x=0 y=0 w=1 h=1 rx=0 ry=0 transform=translate(1,2) scale(2); "
            "rect x=0 y=0 w=1 h=1 rx=0 ry=0 transform=translate(1,2) scale(2) rotate(4); "
            "circle cx=0 cy=- r=1 transform=translate(1,2) skewX(1)");
}

TEST(DefinitionParser, UnknownElementsAreReportedButTheirChildrenParsed) {
  auto definition = parseSymbolBody(
      "<text x='1'>Hi<path d='M0 0'/><TSpan><Circle cx='1' r='1'/></TSpan></text>"
      "<x:rect width='1' height='1'/><PATH d='M1 1'/>");
  EXPECT_EQ(definition->errorMessages, (Messages{"Encountered unknown SVG component: text",
                                                 "Encountered unknown SVG component: TSpan",
                                                 "Encountered unknown SVG component: x:rect"}));
  EXPECT_EQ(describe(*definition), "path d='M0 0'; circle cx=1 cy=- r=1; path d='M1 1'");
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
  EXPECT_EQ(describe(definition), "path d='M0 0'; rect x=0 y=0 w=1 h=1 rx=0 ry=0");
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
  EXPECT_EQ(definition->errorMessages, (Messages{"Encountered unknown SVG component: foo",
                                                 "Encountered unknown attribute for clippath: fill",
                                                 "Encountered unknown SVG component: bar"}));
  // The group around the clip path is still open for what follows it.
  EXPECT_EQ(describe(*definition),
            "clip#c(rect x=0 y=0 w=1 h=1 rx=0 ry=0); path d='M0 0' fill=red");
  const SVGDefinition& inner = clipContent(*definition, 0);
  EXPECT_EQ(inner.errorMessages, (Messages{"Encountered unknown SVG component: bar"}));
  EXPECT_EQ(inner.id, "");
  EXPECT_EQ(inner.viewBox, std::nullopt);
}

TEST(DefinitionParser, OnlyTheLastDefsIsKeptButEveryDefsReportsItsErrors) {
  auto definition = parseSymbolBody(
      "<defs><a/><path d='M0 0'/></defs><b/><defs class='x'><c/><rect width='1' height='1'/>"
      "<defs><circle cx='1' r='1'/></defs></defs>");
  EXPECT_EQ(definition->errorMessages, (Messages{"Encountered unknown SVG component: a",
                                                 "Encountered unknown SVG component: b",
                                                 "Encountered unknown SVG component: c"}));
  EXPECT_EQ(describe(*definition),
            "defs{rect x=0 y=0 w=1 h=1 rx=0 ry=0; defs{circle cx=1 cy=- r=1}}");
  EXPECT_EQ(definition->svgSubDefinitions->errorMessages,
            (Messages{"Encountered unknown SVG component: c"}));
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
  EXPECT_EQ(describe(definition), "clip#c(rect x=0 y=0 w=1 h=1 rx=0 ry=0); path d='M0 0'");
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
  EXPECT_EQ(describe(definition),
            "path d='M0 0'; path d='M1 1' fill=red; path d='M2 2'; path d='M3 3'");
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
  EXPECT_EQ(describe(definition), "defs{clip#k()}");
  EXPECT_EQ(clipContent(*definition.svgSubDefinitions, 0).errorMessages,
            (Messages{"Encountered unknown SVG component: oops"}));
}

TEST(DefinitionParser, HostileNestingParsesAndFreesWithoutRecursion) {
  constexpr int kDepth = 100000;
  for (const auto& [open, close] : {std::pair{"<defs>", "</defs>"},
                                    {"<clipPath>", "</clipPath>"},
                                    {"<g fill='red'>", "</g>"},
                                    {"<x>", "</x>"}}) {
    SCOPED_TRACE(open);
    std::string body;
    body.reserve(static_cast<std::size_t>(kDepth) * 30);
    for (int i = 0; i < kDepth; ++i) body += open;
    body += "<path d='M0 0'/><bad/>";
    for (int i = 0; i < kDepth; ++i) body += close;
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
    const bool nests = open[1] == 'd' || open[1] == 'c';
    EXPECT_EQ(depth, nests ? kDepth : 0);
    ASSERT_EQ(innermost->svgComponents.size(), 1u);
    EXPECT_NE(dynamic_cast<const PathComponent*>(innermost->svgComponents[0].get()), nullptr);
    // The one message travels up through every level.
    EXPECT_EQ(definition->errorMessages.back(), "Encountered unknown SVG component: bad");
    EXPECT_EQ(definition->errorMessages.size(), open[1] == 'x' ? kDepth + 1u : 1u);
    definition.reset();  // freeing must not recurse either
  }
}

}  // namespace
}  // namespace tessaline
