#pragma once

#include <cstddef>
#include <memory>
#include <string>
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

// What a tag's presentation attributes make of an attribute set: the shared copy of the result
// and the names they were consumed as.
struct StyledAttributes {
  std::shared_ptr<const PresentationAttributes> attributes;
  ConsumedAttributes consumed;
};

// Hands out one shared copy per distinct attribute set met while one definition is parsed.
class AttributeSetInterner {
 public:
  std::shared_ptr<const PresentationAttributes> intern(PresentationAttributes attributes);

  // `base` with the tag's presentation attributes applied, as a shared copy. `base` is a set this
  // interner handed out, or null for an empty set. Sprites apply the same few attribute texts to
  // the same few sets thousands of times (every symbol of a set spells out the same styling), so
  // the outcome is remembered by the set and the text of those attributes: met again, it costs a
  // comparison instead of a copy, an application and a search.
  StyledAttributes apply(const PresentationAttributes* base, const SVGTag& tag);

 private:
  struct Remembered {
    const PresentationAttributes* base = nullptr;
    std::string text;  // as made by apply: the attributes' names and values with their lengths
    StyledAttributes outcome;
  };

  std::unordered_map<std::size_t, std::vector<std::shared_ptr<const PresentationAttributes>>>
      byHash_;
  // A fixed number of slots picked by hash, so the memory stays small however varied a document
  // is; a newer outcome takes an older one's slot.
  std::vector<Remembered> remembered_;
  std::string text_;  // reused for the text of each tag
};

// The attribute set the elements of one scope start from (null: none). Most elements add no
// styling of their own, and each of those holds exactly this set: its shared copy is looked up
// once, when first needed, instead of once per element.
class InheritedAttributes {
 public:
  explicit InheritedAttributes(const PresentationAttributes* attributes = nullptr)
      : attributes_(attributes) {}
  // A set that is already shared.
  explicit InheritedAttributes(std::shared_ptr<const PresentationAttributes> shared)
      : attributes_(shared.get()), shared_(std::move(shared)) {}

  const PresentationAttributes* get() const { return attributes_; }
  void set(const PresentationAttributes* attributes) {
    attributes_ = attributes;
    shared_.reset();
  }
  void set(std::shared_ptr<const PresentationAttributes> shared) {
    attributes_ = shared.get();
    shared_ = std::move(shared);
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
