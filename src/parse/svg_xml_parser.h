#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "parse/svg_event.h"

namespace tessaline {

// A forward-only source of XML events.
class SVGXMLParserProtocol {
 public:
  virtual ~SVGXMLParserProtocol() = default;
  // The next event, or nullptr once the events are exhausted or the document failed to parse.
  // The event stays owned by the source.
  virtual const SVGEvent* nextEvent() = 0;
};

// Reads the whole document once, when constructed, recording StartOfDocument, every element start
// and end, and EndOfDocument. A document that is not well-formed yields no events at all.
class SVGXMLParser final : public SVGXMLParserProtocol {
 public:
  explicit SVGXMLParser(std::string_view svgXml);

  const SVGEvent* nextEvent() override;

 private:
  bool successfulParse_ = false;
  std::vector<SVGEvent> parsedEvents_;
  std::size_t parsedEventIndex_ = 0;
};

}  // namespace tessaline
