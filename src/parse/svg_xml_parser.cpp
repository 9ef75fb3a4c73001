#include "parse/svg_xml_parser.h"

#include <utility>

#include "platform/xml_reader.h"

namespace tessaline {
namespace {

// Appends one recorded event per element start and end.
class EventRecorder final : public XmlReaderCallbacks {
 public:
  explicit EventRecorder(std::vector<SVGEvent>& events) : events_(events) {}

  void start(std::string_view name, Attributes attributes) override {
    events_.push_back({EventType::StartTag, std::string(name), std::move(attributes)});
  }
  void end(std::string_view name) override {
    events_.push_back({EventType::EndTag, std::string(name), {}});
  }

 private:
  std::vector<SVGEvent>& events_;
};

}  // namespace

SVGXMLParser::SVGXMLParser(std::string_view svgXml) {
  parsedEvents_.push_back({EventType::StartOfDocument, "", {}});
  EventRecorder recorder(parsedEvents_);
  successfulParse_ = readXml(svgXml, recorder);
  // Recorded even after a failure; nextEvent then hands out nothing at all.
  parsedEvents_.push_back({EventType::EndOfDocument, "", {}});
}

const SVGEvent* SVGXMLParser::nextEvent() {
  if (!successfulParse_) return nullptr;
  if (parsedEventIndex_ >= parsedEvents_.size()) return nullptr;
  return &parsedEvents_[parsedEventIndex_++];
}

}  // namespace tessaline
