#pragma once

#include <cstddef>
#include <memory>
#include <unordered_map>
#include <vector>

#include "style/presentation_attributes.h"

namespace tessaline {

// The styling a component holds. Components with equal styling may share one copy: icon sprites
// repeat the same few inherited attribute sets on thousands of shapes, and a set is far larger
// than most shapes.
class ComponentAttributes {
 public:
  ComponentAttributes() : shared_(std::make_shared<const PresentationAttributes>()) {}
  // Implicit on purpose: a component can be built from a plain attribute set.
  ComponentAttributes(PresentationAttributes attributes)  // NOLINT(google-explicit-constructor)
      : shared_(std::make_shared<const PresentationAttributes>(std::move(attributes))) {}
  ComponentAttributes(std::shared_ptr<const PresentationAttributes> shared)  // NOLINT
      : shared_(std::move(shared)) {}

  std::shared_ptr<const PresentationAttributes> take() && { return std::move(shared_); }

 private:
  std::shared_ptr<const PresentationAttributes> shared_;
};

// Hands out one shared copy per distinct attribute set met while one definition is parsed.
class AttributeSetInterner {
 public:
  std::shared_ptr<const PresentationAttributes> intern(PresentationAttributes attributes);

 private:
  std::unordered_map<std::size_t, std::vector<std::shared_ptr<const PresentationAttributes>>>
      byHash_;
};

}  // namespace tessaline
