#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

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
// SVGFile itself records nothing: it hands the XML reader's tags straight to a DefinitionBuilder.
//
// The recording is compact: names and values go into large text chunks and each event or
// attribute is a small fixed-size record, rather than strings and vectors per element. What has
// been handed out is released as reading goes on, so the recording and the definitions built
// from it are never both held in full: a parsed sprite costs a few times its text, not ten.
class SVGXMLParser final : public SVGXMLParserProtocol {
 public:
  explicit SVGXMLParser(std::string_view svgXml);

  const SVGEvent* nextEvent() override;

  // Recording, for the XML reader's callbacks.
  void recordStart(std::string_view name, const char* const* attributes);
  void recordEnd(std::string_view name);

 private:
  // Where a recorded text starts: a chunk (counted from the first ever made) and an offset in it.
  struct TextRef {
    std::uint32_t chunk;
    std::uint32_t offset;
  };
  struct RecordedEvent {
    TextRef name;
    std::uint32_t nameLength;
    std::uint32_t attributeCount;
    EventType eventType;
  };
  // A name and its value, stored one right after the other.
  struct RecordedAttribute {
    TextRef text;
    std::uint32_t nameLength;
    std::uint32_t valueLength;
  };

  TextRef append(std::string_view first, std::string_view second = {});
  std::string_view textAt(TextRef ref, std::size_t length) const;
  std::uint32_t narrow(std::size_t length);
  void releaseChunksBefore(std::uint32_t chunk);

  bool successfulParse_ = false;
  bool oversized_ = false;
  std::deque<std::string> chunks_;
  std::uint32_t firstChunk_ = 0;  // the number of chunks already released
  std::deque<RecordedEvent> parsedEvents_;
  std::deque<RecordedAttribute> attributes_;
  // The event handed out last, rebuilt in place so its buffers are reused.
  SVGEvent current_;
};

}  // namespace tessaline
