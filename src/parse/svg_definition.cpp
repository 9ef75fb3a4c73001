#include "parse/svg_definition.h"

#include <utility>
#include <vector>

namespace tessaline {
namespace {

// Moves into `out` every nested definition that `definition` alone holds: its `defs` definition
// and the definitions of the clip paths among its components.
void detachNested(SVGDefinition& definition, std::vector<std::shared_ptr<SVGDefinition>>& out,
                  auto&& takeClipDefinitions) {
  if (definition.svgSubDefinitions) out.push_back(std::move(definition.svgSubDefinitions));
  for (auto& component : definition.svgComponents) {
    if (component.use_count() == 1) takeClipDefinitions(*component, out);
  }
}

}  // namespace

SVGDefinition::~SVGDefinition() {
  // Tear the tree down breadth-first with an explicit work list: each definition we let go of has
  // already been emptied of its nested definitions, so no destructor recurses.
  auto takeClipDefinitions = [](SVGComponent& component,
                                std::vector<std::shared_ptr<SVGDefinition>>& out) {
    if (auto* clip = dynamic_cast<ClipPathComponent*>(&component); clip && clip->definitions_) {
      out.push_back(std::move(clip->definitions_));
    }
  };
  std::vector<std::shared_ptr<SVGDefinition>> pending;
  detachNested(*this, pending, takeClipDefinitions);
  while (!pending.empty()) {
    std::shared_ptr<SVGDefinition> next = std::move(pending.back());
    pending.pop_back();
    if (next.use_count() == 1) detachNested(*next, pending, takeClipDefinitions);
  }
}

}  // namespace tessaline
