#pragma once

#include <string>
#include <utility>
#include <vector>

namespace tessaline {

enum class EventType { Unknown, StartOfDocument, StartTag, EndTag, EndOfDocument };

// One recorded XML event. Attributes are kept in document order with names and values exactly as
// the XML reader delivered them (the reader rejects duplicate names, so this is a dictionary).
struct SVGEvent {
  using Attributes = std::vector<std::pair<std::string, std::string>>;

  EventType eventType = EventType::Unknown;
  std::string name;
  Attributes attributes;
};

}  // namespace tessaline
