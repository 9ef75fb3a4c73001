#include "parse/svg_xml_parser.h"

#include <algorithm>

#include "platform/xml_reader.h"

namespace tessaline {
namespace {

// Large enough that chunk bookkeeping is negligible, small enough to be released early.
constexpr std::size_t kChunkBytes = 256 * 1024;

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
  parsedEvents_.push_back({{0, 0}, 0, 0, EventType::StartOfDocument});
  EventRecorder recorder(*this);
  successfulParse_ = readXml(svgXml, recorder) && !oversized_;
  // Recorded even after a failure; nextEvent then hands out nothing at all.
  parsedEvents_.push_back({{0, 0}, 0, 0, EventType::EndOfDocument});
}

std::uint32_t SVGXMLParser::narrow(std::size_t length) {
  // A name or value of 4 GiB does not fit a record. No icon has one; such a document is treated
  // like one that is not well-formed rather than stopping the host.
  if (length > UINT32_MAX / 2) {
    oversized_ = true;
    return 0;
  }
  return static_cast<std::uint32_t>(length);
}

SVGXMLParser::TextRef SVGXMLParser::append(std::string_view first, std::string_view second) {
  const std::size_t size = first.size() + second.size();
  if (chunks_.empty() || chunks_.back().size() + size > chunks_.back().capacity()) {
    chunks_.emplace_back().reserve(std::max(kChunkBytes, size));
  }
  std::string& chunk = chunks_.back();
  const TextRef ref{static_cast<std::uint32_t>(firstChunk_ + chunks_.size() - 1),
                    static_cast<std::uint32_t>(chunk.size())};
  chunk.append(first);
  chunk.append(second);
  return ref;
}

std::string_view SVGXMLParser::textAt(TextRef ref, std::size_t length) const {
  return std::string_view(chunks_[ref.chunk - firstChunk_]).substr(ref.offset, length);
}

void SVGXMLParser::releaseChunksBefore(std::uint32_t chunk) {
  while (firstChunk_ < chunk && !chunks_.empty()) {
    chunks_.pop_front();
    ++firstChunk_;
  }
}

void SVGXMLParser::recordStart(std::string_view name, const char* const* attributes) {
  const std::uint32_t nameLength = narrow(name.size());
  const TextRef nameRef = append(name.substr(0, nameLength));
  std::uint32_t count = 0;
  for (const char* const* entry = attributes; entry[0] != nullptr; entry += 2, ++count) {
    const std::string_view attributeName(entry[0]);
    const std::string_view value(entry[1]);
    const std::uint32_t nameSize = narrow(attributeName.size());
    const std::uint32_t valueSize = narrow(value.size());
    attributes_.push_back({append(attributeName.substr(0, nameSize), value.substr(0, valueSize)),
                           nameSize, valueSize});
  }
  parsedEvents_.push_back({nameRef, nameLength, count, EventType::StartTag});
}

void SVGXMLParser::recordEnd(std::string_view name) {
  const std::uint32_t nameLength = narrow(name.size());
  parsedEvents_.push_back({append(name.substr(0, nameLength)), nameLength, 0, EventType::EndTag});
}

const SVGEvent* SVGXMLParser::nextEvent() {
  if (!successfulParse_ || parsedEvents_.empty()) return nullptr;
  const RecordedEvent recorded = parsedEvents_.front();
  parsedEvents_.pop_front();
  const bool hasText =
      recorded.eventType == EventType::StartTag || recorded.eventType == EventType::EndTag;
  // Everything recorded before this event's text has been handed out already.
  if (hasText) releaseChunksBefore(recorded.name.chunk);

  current_.eventType = recorded.eventType;
  current_.name.assign(hasText ? textAt(recorded.name, recorded.nameLength) : std::string_view());
  current_.attributes.resize(recorded.attributeCount);
  for (auto& [name, value] : current_.attributes) {
    const RecordedAttribute attribute = attributes_.front();
    attributes_.pop_front();
    const std::string_view both =
        textAt(attribute.text, std::size_t{attribute.nameLength} + attribute.valueLength);
    name.assign(both.substr(0, attribute.nameLength));
    value.assign(both.substr(attribute.nameLength));
  }
  if (parsedEvents_.empty()) chunks_.clear();
  return &current_;
}

}  // namespace tessaline
