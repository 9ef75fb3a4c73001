#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "parse/svg_event.h"

namespace tessaline {

// The presentation attributes a tag's own attributes were consumed as, by canonical name.
class ConsumedAttributes {
 public:
  // Whether an attribute whose name folds as `name` does was consumed.
  bool contains(std::string_view name) const;
  bool empty() const { return bits_ == 0; }

 private:
  friend class PresentationAttributes;
  std::uint16_t bits_ = 0;  // one bit per recognised name
};

// The styling of one element as the raw strings the document gave. Absent means "not specified,
// may inherit"; a present empty string is a value and blocks inheritance.
class PresentationAttributes {
 public:
  PresentationAttributes() = default;
  // A copy of `from`, or an empty set when it is null.
  explicit PresentationAttributes(const PresentationAttributes* from);

  // Applies every attribute of the tag in document order; returns the lower-case names of the
  // attributes consumed here ("style" only when all its declarations were well formed).
  std::vector<std::string> parse(const SVGEvent& event);
  // The same for a tag given as views, answering which names were consumed without building
  // strings: this is what parsing a document uses.
  ConsumedAttributes apply(const SVGTag& tag);
  // Whether any of the tag's attributes is named as a presentation attribute, in which case
  // apply may change the set; otherwise it certainly leaves it as it is.
  static bool namesAny(const SVGTag& tag);
  // Whether `attrName` names a presentation attribute, whatever its case.
  static bool isPresentationName(std::string_view attrName);

  // The element's own attributes (`base`) over those inherited (`join`); fields are never
  // combined. Always a fresh set.
  static PresentationAttributes join(const PresentationAttributes* base,
                                     const PresentationAttributes* join);

  std::optional<std::string> fill;
  std::optional<std::string> opacity;
  std::optional<std::string> fillOpacity;
  std::optional<std::string> transform;
  std::optional<std::string> stroke;
  std::optional<std::string> strokeWidth;
  std::optional<std::string> strokeMiterLimit;
  std::optional<std::string> strokeLineCap;
  std::optional<std::string> strokeLineJoin;
  std::optional<std::string> clipPath;

  friend bool operator==(const PresentationAttributes&, const PresentationAttributes&) = default;

 private:
  // Returns the index of the recognised name `attrName` was consumed as, or -1 when it was not
  // recognised or was a style with a malformed declaration.
  int processAttribute(std::string_view attrName, std::string_view attrValue);
};

}  // namespace tessaline
