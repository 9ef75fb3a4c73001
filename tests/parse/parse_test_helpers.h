#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "parse/svg_definition.h"
#include "parse/svg_xml_parser.h"

namespace tessaline::testing {

// Parses `body` as the content of a symbol whose start tag has already been read, as the
// document reader does.
inline std::shared_ptr<SVGDefinition> parseSymbolBody(
    const std::string& body, const PresentationAttributes* symbolAttributes = nullptr) {
  SVGXMLParser parser("<symbol>" + body + "</symbol>");
  auto definition = std::make_shared<SVGDefinition>();
  const SVGEvent* start = parser.nextEvent();
  const SVGEvent* symbol = parser.nextEvent();
  EXPECT_TRUE(start != nullptr && symbol != nullptr) << "not well formed: " << body;
  definition->parseData(parser, symbolAttributes);
  return definition;
}

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

inline SVGEvent startTag(std::string name, SVGEvent::Attributes attributes = {}) {
  return {EventType::StartTag, std::move(name), std::move(attributes)};
}
inline SVGEvent endTag(std::string name) {
  return {EventType::EndTag, std::move(name), {}};
}

// The component at `index` as a `T`, or nullptr (with a test failure) when it is something else.
template <typename T>
const T* componentAs(const SVGDefinition& definition, std::size_t index) {
  if (index >= definition.svgComponents.size()) {
    ADD_FAILURE() << "no component " << index << " of " << definition.svgComponents.size();
    return nullptr;
  }
  const T* typed = dynamic_cast<const T*>(definition.svgComponents[index].get());
  if (typed == nullptr) ADD_FAILURE() << "component " << index << " has another type";
  return typed;
}

using Messages = std::vector<std::string>;

}  // namespace tessaline::testing
