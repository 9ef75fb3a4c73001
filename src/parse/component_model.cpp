#include <optional>
#include <string>

#include "parse/svg_component.h"
#include "parse/svg_definition.h"

namespace tessaline {

std::optional<std::string> SVGComponent::draw(SVGCanvasProtocol&, const std::optional<Rect>&,
                                              const SVGFile&, const SVGDefinition&,
                                              const PresentationAttributes*) const {
  return "Error SVG Component did not implement draw";
}

DrawPathResult PresentationAttributeSVGComponent::getDrawPath() const {
  return {std::nullopt, "Invalid path", std::nullopt};
}

ClipPathComponent::ClipPathComponent(std::string id, std::shared_ptr<SVGDefinition> definitions)
    : SVGComponent(std::move(id)), definitions_(std::move(definitions)) {}

ClipPathComponent::~ClipPathComponent() = default;

}  // namespace tessaline
