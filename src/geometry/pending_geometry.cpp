// TEMPORARY: shape outlines are not built yet; every shape keeps the base behaviour ("Invalid
// path") so the parsing side links. Replaced by the geometry work; delete this file then.
#include "geometry/basic_shapes.h"

namespace tessaline {

DrawPathResult PathComponent::getDrawPath() const {
  return PresentationAttributeSVGComponent::getDrawPath();
}
DrawPathResult RectComponent::getDrawPath() const {
  return PresentationAttributeSVGComponent::getDrawPath();
}
DrawPathResult CircleComponent::getDrawPath() const {
  return PresentationAttributeSVGComponent::getDrawPath();
}
DrawPathResult EllipseComponent::getDrawPath() const {
  return PresentationAttributeSVGComponent::getDrawPath();
}
DrawPathResult LineComponent::getDrawPath() const {
  return PresentationAttributeSVGComponent::getDrawPath();
}
DrawPathResult PolygonComponent::getDrawPath() const {
  return PresentationAttributeSVGComponent::getDrawPath();
}
PolygonComponent::PolygonComponent(std::optional<std::string> id, std::string_view,
                                   PresentationAttributes attributes)
    : PresentationAttributeSVGComponent(id.value_or(""), std::move(attributes)) {}

}  // namespace tessaline
