#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "parse/attribute_set_interner.h"
#include "parse/svg_event.h"
#include "style/presentation_attributes.h"

namespace tessaline {

class SVGComponent;
class SVGDefinition;

// Builds one definition from the tags that follow its start tag, handed over one at a time. This
// is SVGDefinition::parseData turned around: the document reader pushes the XML reader's tags
// straight in, so a sprite is never recorded as events first, while parseData pulls recorded
// events and pushes them the same way. A builder can be used for one definition after another.
class DefinitionBuilder {
 public:
  // Components with equal styling share one copy through `interner`. With `deferFatalStops`, a
  // polygon whose point list would stop the process stops the building instead (see
  // deferredPointList): a reader still inside the XML reader must not stop before it knows the
  // document is well formed, since a malformed document builds nothing at all.
  explicit DefinitionBuilder(AttributeSetInterner& interner, bool deferFatalStops = false);

  // Starts on `definition`, whose own start tag has been read. Its elements start from
  // `symbolAttributes`, whose set must outlive the building.
  void begin(SVGDefinition& definition, InheritedAttributes symbolAttributes);

  void start(const SVGTag& tag);
  // An end tag. True when it completed the definition begin() was given.
  bool end(std::string_view name);
  // The end of the document, or of the events: completes the innermost open definition only.
  // True when that was the definition begin() was given.
  bool endOfEvents();

  // The point list of the polygon that stopped the building, when deferring; no tag may be
  // handed over once there is one.
  const std::optional<std::string>& deferredPointList() const { return deferredPointList_; }

 private:
  // One definition under construction. A `clipPath` or `defs` start tag opens a fresh frame, as a
  // nested parse would, but on an explicit stack so that hostile nesting depth costs heap rather
  // than call stack.
  struct Frame {
    enum class Kind : unsigned char { Outermost, ClipPath, Defs };
    using GroupTable = std::map<long long, std::shared_ptr<const PresentationAttributes>>;

    Frame(SVGDefinition* definition, std::shared_ptr<SVGDefinition> owned, Kind kind,
          std::string clipPathId, InheritedAttributes inherited)
        : definition(definition),
          owned(std::move(owned)),
          kind(kind),
          clipPathId(std::move(clipPathId)),
          inherited(std::move(inherited)) {}

    SVGDefinition* definition;
    std::shared_ptr<SVGDefinition> owned;  // null for the definition begin() was given
    Kind kind;
    std::string clipPathId;
    // The attributes the next element starts from: the symbol's, an entry of groupTable, or none.
    InheritedAttributes inherited;
    long long groupLevel = -1;
    // Made by the first group: a frame per level of hostile nesting stays small without one.
    std::unique_ptr<GroupTable> groupTable;
  };

  void openGroup(Frame& frame, const SVGTag& tag);
  static void closeGroup(Frame& frame);
  bool finishFrame();
  // Where the components of `frame` go while it is open.
  std::vector<std::shared_ptr<SVGComponent>>& componentsOf(Frame& frame);

  AttributeSetInterner& interner_;
  bool deferFatalStops_;
  // A deque: hostile nesting makes it long, and it grows without moving what it holds.
  std::deque<Frame> frames_;
  std::optional<std::string> deferredPointList_;
  // The components of the outermost definition, gathered here and moved into it, sized exactly,
  // when it is complete: the vector keeps its capacity from one symbol to the next, where
  // growing each definition's own would allocate several times per symbol.
  std::vector<std::shared_ptr<SVGComponent>> outermostComponents_;
};

}  // namespace tessaline
