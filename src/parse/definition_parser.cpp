#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "parse/definition_builder.h"
#include "parse/element_handlers.h"
#include "parse/folded_name.h"
#include "parse/svg_definition.h"
#include "parse/svg_xml_parser.h"

namespace tessaline {
namespace {

constexpr std::string_view kUnknownComponent = "Encountered unknown SVG component: ";

enum class Closing { Group, Definition, Nothing };

Closing closingForFoldedName(std::string_view name) {
  if (name == "g") return Closing::Group;
  // Any of the three ends the innermost definition, whichever element opened it.
  if (name == "symbol" || name == "defs" || name == "clippath") return Closing::Definition;
  return Closing::Nothing;
}

}  // namespace

DefinitionBuilder::DefinitionBuilder(AttributeSetInterner& interner, bool deferFatalStops)
    : interner_(interner), deferFatalStops_(deferFatalStops) {}

void DefinitionBuilder::begin(SVGDefinition& definition, InheritedAttributes symbolAttributes) {
  frames_.clear();
  outermostComponents_.clear();
  frames_.emplace_back(&definition, nullptr, Frame::Kind::Outermost, "",
                       std::move(symbolAttributes));
}

void DefinitionBuilder::openGroup(Frame& frame, const SVGTag& tag) {
  std::shared_ptr<const PresentationAttributes> attributes =
      readGroupAttributes(tag, frame.inherited, *frame.definition, interner_);
  ++frame.groupLevel;
  if (!frame.groupTable) frame.groupTable = std::make_unique<Frame::GroupTable>();
  auto [entry, inserted] =
      frame.groupTable->insert_or_assign(frame.groupLevel, std::move(attributes));
  frame.inherited.set(entry->second);
}

// Closing the outermost group deliberately leaves nothing inherited, not even the symbol's own
// attributes: elements after a top-level group are drawn unstyled. A stray end tag drives the
// level below -1, after which groups never hand their attributes back on closing.
void DefinitionBuilder::closeGroup(Frame& frame) {
  if (frame.groupTable) frame.groupTable->erase(frame.groupLevel);
  --frame.groupLevel;
  frame.inherited = InheritedAttributes();
  if (frame.groupLevel >= 0 && frame.groupTable && !frame.groupTable->empty()) {
    if (auto entry = frame.groupTable->find(frame.groupLevel); entry != frame.groupTable->end()) {
      frame.inherited.set(entry->second);
    }
  }
}

void DefinitionBuilder::start(const SVGTag& tag) {
  Frame& frame = frames_.back();
  SVGDefinition& definition = *frame.definition;
  const std::optional<ElementKind> kind = elementKindForName(tag.name);
  if (!kind) {
    // Only the element itself is unknown: its children are parsed as if they stood here.
    definition.errorMessages.push_back(std::string(kUnknownComponent).append(tag.name));
    return;
  }
  switch (*kind) {
    case ElementKind::Group:
      openGroup(frame, tag);
      break;
    case ElementKind::ClipPath: {
      // Clip path content inherits neither the symbol's styling nor that of enclosing groups.
      std::string id = readClipPathId(tag, definition);
      auto nested = std::make_shared<SVGDefinition>();
      SVGDefinition* raw = nested.get();
      frames_.emplace_back(raw, std::move(nested), Frame::Kind::ClipPath, std::move(id),
                           InheritedAttributes());
      break;
    }
    case ElementKind::Defs: {
      // The attributes of a defs tag carry no meaning and are passed over without a message.
      auto nested = std::make_shared<SVGDefinition>();
      SVGDefinition* raw = nested.get();
      frames_.emplace_back(raw, std::move(nested), Frame::Kind::Defs, "", InheritedAttributes());
      break;
    }
    default:
      if (auto component = buildComponent(*kind, tag, frame.inherited, definition, interner_,
                                          deferFatalStops_ ? &deferredPointList_ : nullptr)) {
        componentsOf(frame).push_back(std::move(component));
      }
      break;
  }
}

bool DefinitionBuilder::end(std::string_view name) {
  switch (lookUpFolded(name, closingForFoldedName, Closing::Nothing)) {
    case Closing::Group:
      closeGroup(frames_.back());
      return false;
    case Closing::Definition:
      return finishFrame();
    case Closing::Nothing:
      break;
  }
  return false;
}

std::vector<std::shared_ptr<SVGComponent>>& DefinitionBuilder::componentsOf(Frame& frame) {
  return frame.kind == Frame::Kind::Outermost ? outermostComponents_
                                              : frame.definition->svgComponents;
}

bool DefinitionBuilder::endOfEvents() {
  return finishFrame();
}

// Completes the innermost definition and hands it to the one it was opened in. Returns true when
// the completed definition is the one begin() was given.
bool DefinitionBuilder::finishFrame() {
  Frame finished = std::move(frames_.back());
  frames_.pop_back();
  if (frames_.empty()) {
    std::vector<std::shared_ptr<SVGComponent>>& components = finished.definition->svgComponents;
    components.reserve(components.size() + outermostComponents_.size());
    std::move(outermostComponents_.begin(), outermostComponents_.end(),
              std::back_inserter(components));
    outermostComponents_.clear();
    return true;
  }
  SVGDefinition& parent = *frames_.back().definition;
  const std::vector<std::string>& nestedErrors = finished.definition->errorMessages;
  if (finished.kind == Frame::Kind::ClipPath) {
    componentsOf(frames_.back())
        .push_back(
            std::make_shared<ClipPathComponent>(std::move(finished.clipPathId), finished.owned));
  } else {
    // Only the last defs is kept; the messages of every defs stay with the parent.
    parent.svgSubDefinitions = finished.owned;
  }
  parent.errorMessages.insert(parent.errorMessages.end(), nestedErrors.begin(), nestedErrors.end());
  return false;
}

void SVGDefinition::parseData(SVGXMLParserProtocol& parser,
                              const PresentationAttributes* symbolAttributes,
                              AttributeSetInterner* sharedInterner) {
  AttributeSetInterner localInterner;
  DefinitionBuilder builder(sharedInterner ? *sharedInterner : localInterner);
  builder.begin(*this, InheritedAttributes(symbolAttributes));
  std::vector<SVGAttributeView> views;
  while (true) {
    const SVGEvent* event = parser.nextEvent();
    // The end of the events ends the innermost definition only; the enclosing one then reads on
    // and finds the end too.
    if (event == nullptr) {
      if (builder.endOfEvents()) return;
      continue;
    }
    switch (event->eventType) {
      case EventType::StartTag:
        builder.start(tagOf(*event, views));
        break;
      case EventType::EndTag:
        if (builder.end(event->name)) return;
        break;
      case EventType::EndOfDocument:
        if (builder.endOfEvents()) return;
        break;
      case EventType::Unknown:
      case EventType::StartOfDocument:
        break;
    }
  }
}

}  // namespace tessaline
