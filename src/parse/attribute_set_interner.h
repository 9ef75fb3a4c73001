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

// The attribute set the elements of one scope start from (null: none). Most elements add no
// styling of their own, and each of those holds exactly this set: its shared copy is looked up
// once, when first needed, instead of once per element.
class InheritedAttributes {
 public:
  explicit InheritedAttributes(const PresentationAttributes* attributes = nullptr)
      : attributes_(attributes) {}

  const PresentationAttributes* get() const { return attributes_; }
  void set(const PresentationAttributes* attributes) {
    attributes_ = attributes;
    shared_.reset();
  }

  // The interned copy of the set (of an empty set when there is none).
  const std::shared_ptr<const PresentationAttributes>& shared(AttributeSetInterner& interner) {
    if (!shared_) shared_ = interner.intern(PresentationAttributes(attributes_));
    return shared_;
  }

 private:
  const PresentationAttributes* attributes_;
  std::shared_ptr<const PresentationAttributes> shared_;
};

}  // namespace tessaline
