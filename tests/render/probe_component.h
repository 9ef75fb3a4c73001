#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "parse/svg_component.h"
#include "parse/svg_definition.h"

namespace tessaline::testing {

// A component that records the box, the styling and the owner of each draw call, and answers
// with a fixed text. Drawing is const; the records are not part of what the probe draws.
class ProbeComponent final : public SVGComponent {
 public:
  explicit ProbeComponent(std::optional<std::string> answer,
                          std::optional<std::string> id = std::nullopt)
      : SVGComponent(std::move(id)), answer_(std::move(answer)) {}

  std::optional<std::string> draw(SVGCanvasProtocol&, const std::optional<Rect>& viewBox,
                                  const SVGFile&, const SVGDefinition& forSvg,
                                  const PresentationAttributes* joinAttributes) const override {
    boxes.push_back(viewBox);
    styles.push_back(joinAttributes ? std::optional(*joinAttributes) : std::nullopt);
    owners.push_back(&forSvg);
    return answer_;
  }

  mutable std::vector<std::optional<Rect>> boxes;
  mutable std::vector<std::optional<PresentationAttributes>> styles;
  mutable std::vector<const SVGDefinition*> owners;

 private:
  std::optional<std::string> answer_;
};

using Probe = std::shared_ptr<ProbeComponent>;

inline Probe probe(std::optional<std::string> answer, std::optional<std::string> id = {}) {
  return std::make_shared<ProbeComponent>(std::move(answer), std::move(id));
}

inline std::shared_ptr<SVGDefinition> definitionOf(
    std::vector<std::shared_ptr<SVGComponent>> components) {
  auto definition = std::make_shared<SVGDefinition>();
  definition->svgComponents = std::move(components);
  return definition;
}

}  // namespace tessaline::testing
