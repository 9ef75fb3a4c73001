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

const std::string kUnknown = "Encountered unknown SVG component: ";

// The messages a nested definition keeps for itself (they are repeated whenever it is drawn):
// those of the kept defs, else of the first clip path.
Messages nestedMessages(const SVGDefinition& definition) {
  if (definition.svgSubDefinitions) return definition.svgSubDefinitions->errorMessages;
  for (const auto& component : definition.svgComponents) {
    if (auto* clip = dynamic_cast<const ClipPathComponent*>(component.get())) {
      return clip->definitions().errorMessages;
    }
  }
  return {};
}

// Each body is read inside a symbol whose own fill is blue.
TEST(DefinitionParser, Bodies) {
  struct Case {
    const char* body;
    Messages messages;
    const char* components;
    Messages nested = {};
  };
  const Case cases[] = {
      // Before any group the symbol's own; after an inner group the enclosing group's set comes
      // back; after the outermost not even the symbol's fill.
      {"<path d='M9 9'/><g fill='red'><path d='M0 0'/><g stroke='black'><path d='M5 5'/></g>"
       "<path d='M6 6'/></g><path d='M2 2'/>",
       {},
       "path d='M9 9' fill=blue; path d='M0 0' fill=red; path d='M5 5' fill=red stroke=black; "
       "path d='M6 6' fill=red; path d='M2 2'"},
      // Transforms accumulate through groups, outermost first.
      {"<g transform='translate(1,2)'><g Transform='scale(2)'><rect width='1' height='1' "
       "transform='rotate(4)'/></g><circle cx='0' r='1' style='transform: skewX(1)'/></g>",
       {},
       "rect x=0 y=0 w=1 h=1 rx=0 ry=0 fill=blue transform=translate(1,2) scale(2) rotate(4); "
       "circle cx=0 cy=- r=1 fill=blue transform=translate(1,2) skewX(1)"},
      // Only the unknown element itself is dropped: its children are parsed.
      {"<text x='1'>Hi<TSpan><Circle cx='1' r='1'/></TSpan></text><x:rect width='1' height='1'/>",
       {kUnknown + "text", kUnknown + "TSpan", kUnknown + "x:rect"},
       "circle cx=1 cy=- r=1 fill=blue"},
      // Clip path content inherits nothing; the group around it stays open for what follows.
      {"<foo/><g fill='red'><CLIPPATH id='c' fill='x'><rect width='1' height='1'/><bar/>"
       "</CLIPPATH><path d='M0 0'/></g>",
       {kUnknown + "foo", "Encountered unknown attribute for clippath: fill", kUnknown + "bar"},
       "clip#c(rect x=0 y=0 w=1 h=1 rx=0 ry=0); path d='M0 0' fill=red",
       {kUnknown + "bar"}},
      // Only the last defs is kept, but every defs reports its errors.
      {"<defs><a/><path d='M0 0'/></defs><b/><defs class='x'><c/><rect width='1' height='1'/>"
       "<defs><circle cx='1' r='1'/></defs></defs>",
       {kUnknown + "a", kUnknown + "b", kUnknown + "c"},
       "defs{rect x=0 y=0 w=1 h=1 rx=0 ry=0; defs{circle cx=1 cy=- r=1}}",
       {kUnknown + "c"}},
  };
  PresentationAttributes symbol;
  symbol.fill = "blue";
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    auto definition = parseSymbolBody(c.body, &symbol);
    EXPECT_EQ(definition->errorMessages, c.messages);
    EXPECT_EQ(describe(*definition), c.components);
    EXPECT_EQ(nestedMessages(*definition), c.nested);
  }
}

TEST(DefinitionParser, ScriptedEvents) {
  struct Case {
    std::vector<SVGEvent> events;
    std::size_t consumed;
    Messages messages;
    const char* components;
  };
  const Case cases[] = {
      // Any terminating end tag ends the innermost definition, whichever element opened it; a
      // nested symbol is unknown and its end tag ends the definition early.
      {{startTag("clipPath", {{"id", "c"}}), startTag("rect", {{"width", "1"}, {"height", "1"}}),
        endTag("DEFS"), startTag("symbol"), startTag("path", {{"d", "M0 0"}}), endTag("rect"),
        endTag("Symbol"), startTag("circle", {{"cx", "1"}, {"r", "1"}})},
       7,
       {kUnknown + "symbol"},
       "clip#c(rect x=0 y=0 w=1 h=1 rx=0 ry=0); path d='M0 0' fill=blue"},
      // Stray group ends drive the level negative: the symbol's attributes are gone, a group
      // opened there is stored under -1, and closing back to a negative level restores nothing.
      {{endTag("g"), startTag("path", {{"d", "M0 0"}}), startTag("g", {{"fill", "red"}}),
        startTag("path", {{"d", "M1 1"}}), startTag("g", {{"stroke", "green"}}), endTag("g"),
        startTag("path", {{"d", "M2 2"}}), endTag("g"), startTag("path", {{"d", "M3 3"}}),
        endTag("symbol")},
       10,
       {},
       "path d='M0 0'; path d='M1 1' fill=red; path d='M2 2'; path d='M3 3'"},
      // Running out of events completes every open definition; the enclosing one reads on.
      {{startTag("defs"),
        startTag("clipPath", {{"id", "k"}}),
        startTag("oops"),
        {EventType::EndOfDocument, "", {}},
        startTag("late")},
       5,
       {kUnknown + "oops", kUnknown + "late"},
       "defs{clip#k()}"},
  };
  PresentationAttributes symbol;
  symbol.fill = "blue";
  for (const Case& c : cases) {
    SCOPED_TRACE(c.components);
    ScriptedEvents events(c.events);
    SVGDefinition definition;
    definition.parseData(events, &symbol);
    EXPECT_EQ(events.consumed(), c.consumed);
    EXPECT_EQ(definition.errorMessages, c.messages);
    EXPECT_EQ(describe(definition), c.components);
  }
}

}  // namespace
}  // namespace tessaline
