#include "parse/svg_xml_parser.h"

#include <cstring>

#include "platform/xml_reader.h"

namespace tessaline {
namespace {

class EventRecorder final : public XmlReaderCallbacks {
 public:
  explicit EventRecorder(SVGXMLParser& parser) : parser_(parser) {}

  void start(std::string_view name, Attributes attributes) override {
    parser_.recordStart(name, attributes);
  }
  void end(std::string_view name) override { parser_.recordEnd(name); }

 private:
  SVGXMLParser& parser_;
};

}  // namespace

SVGXMLParser::SVGXMLParser(std::string_view svgXml) {
  parsedEvents_.push_back({0, 0, 0, EventType::StartOfDocument});
  EventRecorder recorder(*this);
  successfulParse_ = readXml(svgXml, recorder) && !oversized_;
  // Recorded even after a failure; nextEvent then hands out nothing at all.
  parsedEvents_.push_back({0, 0, 0, EventType::EndOfDocument});
}

std::size_t SVGXMLParser::append(std::string_view text) {
  const std::size_t offset = text_.size();
  text_.append(text);
  return offset;
}

std::uint32_t SVGXMLParser::narrow(std::size_t length) {
  // A name or value of 4 GiB does not fit a record. No icon has one; such a document is treated
  // like one that is not well-formed rather than stopping the host.
  if (length > UINT32_MAX) {
    oversized_ = true;
    return 0;
  }
  return static_cast<std::uint32_t>(length);
}

std::string_view SVGXMLParser::textAt(std::size_t offset, std::size_t length) const {
  return std::string_view(text_).substr(offset, length);
}

void SVGXMLParser::recordStart(std::string_view name, const char* const* attributes) {
  const std::uint32_t nameLength = narrow(name.size());
  const std::size_t nameOffset = append(name);
  std::uint32_t count = 0;
  for (const char* const* entry = attributes; entry[0] != nullptr; entry += 2, ++count) {
    const std::string_view attributeName(entry[0]);
    const std::string_view value(entry[1]);
    attributes_.push_back(
        {append(attributeName), narrow(attributeName.size()), narrow(value.size())});
    append(value);
  }
  parsedEvents_.push_back({nameOffset, nameLength, count, EventType::StartTag});
}

void SVGXMLParser::recordEnd(std::string_view name) {
  const std::uint32_t nameLength = narrow(name.size());
  parsedEvents_.push_back({append(name), nameLength, 0, EventType::EndTag});
}

const SVGEvent* SVGXMLParser::nextEvent() {
  if (!successfulParse_) return nullptr;
  if (parsedEventIndex_ >= parsedEvents_.size()) return nullptr;
  const RecordedEvent& recorded = parsedEvents_[parsedEventIndex_++];
  current_.eventType = recorded.eventType;
  current_.name.assign(textAt(recorded.nameOffset, recorded.nameLength));
  current_.attributes.resize(recorded.attributeCount);
  for (auto& [name, value] : current_.attributes) {
    const RecordedAttribute& attribute = attributes_[nextAttribute_++];
    name.assign(textAt(attribute.offset, attribute.nameLength));
    value.assign(textAt(attribute.offset + attribute.nameLength, attribute.valueLength));
  }
  return &current_;
}

}  // namespace tessaline
