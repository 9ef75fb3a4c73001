#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "parse/attribute_set_interner.h"
#include "parse/svg_component.h"
#include "parse/svg_event.h"
#include "style/presentation_attributes.h"

namespace tessaline {

class SVGDefinition;

// The element kinds a definition understands; any other start tag is an unknown component.
enum class ElementKind { Group, Path, Ellipse, Circle, Rect, Polygon, Line, Use, ClipPath, Defs };

// The kind of a start tag by its name as written, whatever its case.
std::optional<ElementKind> elementKindForName(std::string_view name);

// The attribute names elements and symbols place by name (presentation attributes aside), so
// each attribute is told apart once rather than searched for in several lists.
enum class AttributeName : std::uint8_t {
  Other,  // none of these
  Id,
  D,
  FillRule,
  Cx,
  Cy,
  Rx,
  Ry,
  R,
  X,
  Y,
  Width,
  Height,
  Points,
  X1,
  Y1,
  X2,
  Y2,
  Href,
  XlinkHref,
  DataName,
  Class,
  Isolation,
  Xmlns,
  ViewBox,
};

// The name of an attribute as written, whatever its case.
AttributeName attributeNameFor(std::string_view name);

// Handlers for one start tag. Each appends to `definition.errorMessages` one message per
// attribute it cannot place (in attribute order), then at most one invalid-parameters message.

// A shape or `use` element (kinds Path to Use): its component, styled by a copy of `inherited`
// with the tag's presentation attributes applied; nullptr when the element is invalid (a message
// was added) or, for a path without data, silently dropped. Equal styling is shared through
// `interner`. When `deferredPointList` is given, a polygon whose point list would stop the
// process is not built either: its list is stored there, for the caller to stop on once it knows
// the document is well formed.
std::shared_ptr<SVGComponent> buildComponent(
    ElementKind kind, const SVGTag& tag, InheritedAttributes& inherited, SVGDefinition& definition,
    AttributeSetInterner& interner, std::optional<std::string>* deferredPointList = nullptr);

// A `g` element: the attribute set its children inherit (`inherited` with the tag's presentation
// attributes applied), shared through `interner`: deep or repeated groups then cost one set
// between them. The group's own id is ignored.
std::shared_ptr<const PresentationAttributes> readGroupAttributes(const SVGTag& tag,
                                                                  InheritedAttributes& inherited,
                                                                  SVGDefinition& definition,
                                                                  AttributeSetInterner& interner);

// A `clipPath` element: its id ("" when it has none). Every other attribute is reported, the
// presentation attributes included, since a clip path carries no styling of its own.
std::string readClipPathId(const SVGTag& tag, SVGDefinition& definition);
std::string readClipPathId(const SVGEvent& event, SVGDefinition& definition);

}  // namespace tessaline
