#pragma once

#include <span>
#include <string>
#include <string_view>
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

// One attribute of a start tag, viewing text owned by whoever delivered the tag.
struct SVGAttributeView {
  std::string_view name;
  std::string_view value;
};

// A start tag as the element handlers read it: views only, so a tag straight from the XML reader
// is handled without copying a single name or value. Valid only as long as the text it views.
struct SVGTag {
  std::string_view name;
  std::span<const SVGAttributeView> attributes;
};

// Views of a recorded start tag; `storage` holds the attribute views the tag points into.
inline SVGTag tagOf(const SVGEvent& event, std::vector<SVGAttributeView>& storage) {
  storage.clear();
  for (const auto& [name, value] : event.attributes) storage.push_back({name, value});
  return {event.name, storage};
}

}  // namespace tessaline
