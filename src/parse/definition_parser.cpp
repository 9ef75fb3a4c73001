#include <deque>
#include <map>
#include <memory>
#include <string>

#include "parse/element_handlers.h"
#include "parse/svg_definition.h"
#include "parse/svg_xml_parser.h"
#include "platform/ascii_case.h"

namespace tessaline {
namespace {

constexpr std::string_view kUnknownComponent = "Encountered unknown SVG component: ";

// One definition under construction. A `clipPath` or `defs` start tag opens a fresh frame with
// the same event source, exactly as a nested parse would, but on an explicit stack so that
// hostile nesting depth costs heap rather than call stack.
struct Frame {
  enum class Kind { Outermost, ClipPath, Defs };

  Frame(SVGDefinition* definition, std::shared_ptr<SVGDefinition> owned, Kind kind,
        std::string clipPathId, const PresentationAttributes* inherited)
      : definition(definition),
        owned(std::move(owned)),
        kind(kind),
        clipPathId(std::move(clipPathId)),
        inherited(inherited) {}

  SVGDefinition* definition;
  std::shared_ptr<SVGDefinition> owned;  // null for the definition parseData was called on
  Kind kind;
  std::string clipPathId;
  // The attributes the next element starts from: the symbol's, an entry of groupTable, or none.
  const PresentationAttributes* inherited;
  long long groupLevel = -1;
  std::map<long long, PresentationAttributes> groupTable;
};

void openGroup(Frame& frame, const SVGEvent& event) {
  PresentationAttributes attributes =
      readGroupAttributes(event, frame.inherited, *frame.definition);
  ++frame.groupLevel;
  auto [entry, inserted] =
      frame.groupTable.insert_or_assign(frame.groupLevel, std::move(attributes));
  frame.inherited = &entry->second;
}

// Closing the outermost group deliberately leaves nothing inherited, not even the symbol's own
// attributes: elements after a top-level group are drawn unstyled. A stray end tag drives the
// level below -1, after which groups never hand their attributes back on closing.
void closeGroup(Frame& frame) {
  frame.groupTable.erase(frame.groupLevel);
  --frame.groupLevel;
  frame.inherited = nullptr;
  if (frame.groupLevel >= 0 && !frame.groupTable.empty()) {
    if (auto entry = frame.groupTable.find(frame.groupLevel); entry != frame.groupTable.end()) {
      frame.inherited = &entry->second;
    }
  }
}

void handleStartTag(std::deque<Frame>& frames, const SVGEvent& event,
                    AttributeSetInterner& interner) {
  Frame& frame = frames.back();
  SVGDefinition& definition = *frame.definition;
  const std::optional<ElementKind> kind = elementKindForName(foldAsciiCase(event.name));
  if (!kind) {
    // Only the element itself is unknown: its children are parsed as if they stood here.
    definition.errorMessages.push_back(std::string(kUnknownComponent) + event.name);
    return;
  }
  switch (*kind) {
    case ElementKind::Group:
      openGroup(frame, event);
      break;
    case ElementKind::ClipPath: {
      // Clip path content inherits neither the symbol's styling nor that of enclosing groups.
      std::string id = readClipPathId(event, definition);
      auto nested = std::make_shared<SVGDefinition>();
      SVGDefinition* raw = nested.get();
      frames.emplace_back(raw, std::move(nested), Frame::Kind::ClipPath, std::move(id), nullptr);
      break;
    }
    case ElementKind::Defs: {
      // The attributes of a defs tag carry no meaning and are passed over without a message.
      auto nested = std::make_shared<SVGDefinition>();
      SVGDefinition* raw = nested.get();
      frames.emplace_back(raw, std::move(nested), Frame::Kind::Defs, "", nullptr);
      break;
    }
    default:
      if (auto component = buildComponent(*kind, event, frame.inherited, definition, interner)) {
        definition.svgComponents.push_back(std::move(component));
      }
      break;
  }
}

// Completes the innermost definition and hands it to the one it was opened in. Returns true when
// the completed definition is the one parseData was called on.
bool finishFrame(std::deque<Frame>& frames) {
  Frame finished = std::move(frames.back());
  frames.pop_back();
  if (frames.empty()) return true;
  SVGDefinition& parent = *frames.back().definition;
  const std::vector<std::string>& nestedErrors = finished.definition->errorMessages;
  if (finished.kind == Frame::Kind::ClipPath) {
    parent.svgComponents.push_back(
        std::make_shared<ClipPathComponent>(std::move(finished.clipPathId), finished.owned));
  } else {
    // Only the last defs is kept; the messages of every defs stay with the parent.
    parent.svgSubDefinitions = finished.owned;
  }
  parent.errorMessages.insert(parent.errorMessages.end(), nestedErrors.begin(), nestedErrors.end());
  return false;
}

bool endsDefinition(std::string_view foldedName) {
  // Any of the three ends the innermost definition, whichever element opened it.
  return foldedName == "symbol" || foldedName == "defs" || foldedName == "clippath";
}

}  // namespace

void SVGDefinition::parseData(SVGXMLParserProtocol& parser,
                              const PresentationAttributes* symbolAttributes,
                              AttributeSetInterner* sharedInterner) {
  std::deque<Frame> frames;
  frames.emplace_back(this, nullptr, Frame::Kind::Outermost, "", symbolAttributes);
  AttributeSetInterner localInterner;
  AttributeSetInterner& interner = sharedInterner ? *sharedInterner : localInterner;
  while (true) {
    const SVGEvent* event = parser.nextEvent();
    // The end of the events ends the innermost definition only; the enclosing one then reads on
    // and finds the end too.
    if (event == nullptr) {
      if (finishFrame(frames)) return;
      continue;
    }
    switch (event->eventType) {
      case EventType::StartTag:
        handleStartTag(frames, *event, interner);
        break;
      case EventType::EndTag: {
        const std::string folded = foldAsciiCase(event->name);
        if (folded == "g") {
          closeGroup(frames.back());
        } else if (endsDefinition(folded) && finishFrame(frames)) {
          return;
        }
        break;
      }
      case EventType::EndOfDocument:
        if (finishFrame(frames)) return;
        break;
      case EventType::Unknown:
      case EventType::StartOfDocument:
        break;
    }
  }
}

}  // namespace tessaline
