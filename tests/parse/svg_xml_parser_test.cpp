#include "parse/svg_xml_parser.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessaline {
namespace {

using Events = std::vector<std::string>;

// Each event as its type's sign (EventType order: "?" unknown, "S" start of document, "+" start
// tag, "-" end tag, "E" end of document), its name, and its attributes as delivered.
Events drain(SVGXMLParser& parser) {
  Events out;
  while (const SVGEvent* event = parser.nextEvent()) {
    std::string text = "?S+-E"[static_cast<int>(event->eventType)] + event->name;
    for (const auto& [name, value] : event->attributes) text += " " + name + "=" + value;
    out.push_back(text);
  }
  return out;
}

// Every element between the document events, attributes in document order; a malformed document
// yields no events at all. Either way the cursor stays at the end.
TEST(SVGXMLParser, Events) {
  const std::pair<const char*, Events> cases[] = {
      {"<svg/>", {"S", "+svg", "-svg", "E"}},
      {"<svg><x:rect/>Hello<g><Path></Path></g></svg>",
       {"S", "+svg", "+x:rect", "-x:rect", "+g", "+Path", "-Path", "-g", "-svg", "E"}},
      {"<symbol id=\"a\" ViewBox=\"0 0 1 1\" fill=\"red\"/>",
       {"S", "+symbol id=a ViewBox=0 0 1 1 fill=red", "-symbol", "E"}},
      {"<svg><g>", {}},
      {"", {}},
      {"<a></b>", {}},
      {"<a/><b/>", {}},
  };
  for (const auto& [text, events] : cases) {
    SCOPED_TRACE(text);
    SVGXMLParser parser(text);
    EXPECT_EQ(drain(parser), events);
    EXPECT_EQ(parser.nextEvent(), nullptr);
    EXPECT_EQ(parser.nextEvent(), nullptr);
  }
}

}  // namespace
}  // namespace tessaline
