#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "parse/svg_event.h"

namespace tessaline {

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
  // Returns the canonical name when `attrName` was recognised, nullopt otherwise.
  std::optional<std::string_view> processAttribute(std::string_view attrName,
                                                   std::string_view attrValue);
};

}  // namespace tessaline
