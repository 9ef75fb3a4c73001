#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "parse/svg_event.h"

namespace tessaline {

// A forward-only source of XML events.
class SVGXMLParserProtocol {
 public:
  virtual ~SVGXMLParserProtocol() = default;
  // The next event, or nullptr once the events are exhausted or the document failed to parse.
  // The event stays owned by the source and is valid until the next call.
  virtual const SVGEvent* nextEvent() = 0;
};

// Reads the whole document once, when constructed, recording StartOfDocument, every element start
// and end, and EndOfDocument. A document that is not well-formed yields no events at all.
//
// The recording is compact (one text buffer and small fixed-size records, rather than strings
// and vectors per element): it is held in full while the document's definitions are built, and
// for a sprite of many small elements it would otherwise cost several times the document.
class SVGXMLParser final : public SVGXMLParserProtocol {
 public:
  explicit SVGXMLParser(std::string_view svgXml);

  const SVGEvent* nextEvent() override;

  // Recording, for the XML reader's callbacks.
  void recordStart(std::string_view name, const char* const* attributes);
  void recordEnd(std::string_view name);

 private:
  struct RecordedEvent {
    std::size_t nameOffset;
    std::uint32_t nameLength;
    std::uint32_t attributeCount;
    EventType eventType;
  };
  // A name and its value, stored one after the other in text_.
  struct RecordedAttribute {
    std::size_t offset;
    std::uint32_t nameLength;
    std::uint32_t valueLength;
  };

  std::size_t append(std::string_view text);
  std::uint32_t narrow(std::size_t length);
  std::string_view textAt(std::size_t offset, std::size_t length) const;

  bool successfulParse_ = false;
  bool oversized_ = false;
  std::string text_;
  std::vector<RecordedEvent> parsedEvents_;
  std::vector<RecordedAttribute> attributes_;
  std::size_t parsedEventIndex_ = 0;
  std::size_t nextAttribute_ = 0;
  // The event handed out last, rebuilt in place so its buffers are reused.
  SVGEvent current_;
};

}  // namespace tessaline
