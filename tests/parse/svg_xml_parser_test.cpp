#include "parse/svg_xml_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessaline {
namespace {

// "S" start of document, "E" end of document, "+name" start tag, "-name" end tag.
std::vector<std::string> drain(SVGXMLParser& parser) {
  std::vector<std::string> out;
  while (const SVGEvent* event = parser.nextEvent()) {
    switch (event->eventType) {
      case EventType::StartOfDocument:
        out.push_back("S" + event->name);
        break;
      case EventType::EndOfDocument:
        out.push_back("E" + event->name);
        break;
      case EventType::StartTag:
        out.push_back("+" + event->name);
        break;
      case EventType::EndTag:
        EXPECT_TRUE(event->attributes.empty());
        out.push_back("-" + event->name);
        break;
      case EventType::Unknown:
        out.push_back("?");
        break;
    }
  }
  return out;
}

using Events = std::vector<std::string>;

TEST(SVGXMLParser, RecordsEveryElementBetweenTheDocumentEvents) {
  struct Case {
    const char* text;
    Events events;
  };
  const Case cases[] = {
      {"<svg/>", {"S", "+svg", "-svg", "E"}},
      {"<svg><x:rect/>Hello<g><Path></Path></g></svg>",
       {"S", "+svg", "+x:rect", "-x:rect", "+g", "+Path", "-Path", "-g", "-svg", "E"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    SVGXMLParser parser(c.text);
    EXPECT_EQ(drain(parser), c.events);
    // The cursor stays at the end.
    EXPECT_EQ(parser.nextEvent(), nullptr);
    EXPECT_EQ(parser.nextEvent(), nullptr);
  }
}

TEST(SVGXMLParser, KeepsAttributesInDocumentOrder) {
  SVGXMLParser parser("<symbol id=\"a\" ViewBox=\"0 0 1 1\" fill=\"red\"/>");
  ASSERT_NE(parser.nextEvent(), nullptr);
  const SVGEvent* tag = parser.nextEvent();
  ASSERT_NE(tag, nullptr);
  EXPECT_EQ(tag->eventType, EventType::StartTag);
  EXPECT_EQ(tag->attributes,
            (SVGEvent::Attributes{{"id", "a"}, {"ViewBox", "0 0 1 1"}, {"fill", "red"}}));
}

TEST(SVGXMLParser, MalformedDocumentYieldsNoEventsAtAll) {
  for (const char* text : {"<svg><g>", "", "<svg>", "<a></b>", "<a/><b/>"}) {
    SCOPED_TRACE(text);
    SVGXMLParser parser(text);
    EXPECT_EQ(parser.nextEvent(), nullptr);
    EXPECT_EQ(parser.nextEvent(), nullptr);
  }
}

}  // namespace
}  // namespace tessaline
