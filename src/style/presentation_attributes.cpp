#include "style/presentation_attributes.h"

#include <algorithm>
#include <array>

#include "parse/folded_name.h"
#include "platform/character_search.h"

namespace tessaline {
namespace {

using Field = std::optional<std::string> PresentationAttributes::*;

enum class Rule {
  Replace,     // the value replaces any earlier one
  Accumulate,  // appended to an earlier value after one blank: transform lists build up
  Expand,      // a `style` attribute: "name: value" declarations separated by ";"
};

struct KnownAttribute {
  std::string_view name;
  Rule rule;
  Field field;
};

// Sorted by name (byte order); the index of a name is its bit in ConsumedAttributes.
constexpr std::array<KnownAttribute, 11> kKnownAttributes{{
    {"clip-path", Rule::Replace, &PresentationAttributes::clipPath},
    {"fill", Rule::Replace, &PresentationAttributes::fill},
    {"fill-opacity", Rule::Replace, &PresentationAttributes::fillOpacity},
    {"opacity", Rule::Replace, &PresentationAttributes::opacity},
    {"stroke", Rule::Replace, &PresentationAttributes::stroke},
    {"stroke-linecap", Rule::Replace, &PresentationAttributes::strokeLineCap},
    {"stroke-linejoin", Rule::Replace, &PresentationAttributes::strokeLineJoin},
    {"stroke-miterlimit", Rule::Replace, &PresentationAttributes::strokeMiterLimit},
    {"stroke-width", Rule::Replace, &PresentationAttributes::strokeWidth},
    {"style", Rule::Expand, nullptr},
    {"transform", Rule::Accumulate, &PresentationAttributes::transform},
}};
static_assert(std::ranges::is_sorted(kKnownAttributes, {}, &KnownAttribute::name));

constexpr Field kAllFields[] = {
    &PresentationAttributes::fill,
    &PresentationAttributes::opacity,
    &PresentationAttributes::fillOpacity,
    &PresentationAttributes::transform,
    &PresentationAttributes::stroke,
    &PresentationAttributes::strokeWidth,
    &PresentationAttributes::strokeMiterLimit,
    &PresentationAttributes::strokeLineCap,
    &PresentationAttributes::strokeLineJoin,
    &PresentationAttributes::clipPath,
};

// The index in kKnownAttributes of a folded name, or -1. Parsing asks this of every attribute of
// every element, so it compares against literals picked by length rather than searching.
constexpr int lookUp(std::string_view foldedName) {
  const std::string_view n = foldedName;
  switch (n.size()) {
    case 4:
      return n == "fill" ? 1 : -1;
    case 5:
      return n == "style" ? 9 : -1;
    case 6:
      return n == "stroke" ? 4 : -1;
    case 7:
      return n == "opacity" ? 3 : -1;
    case 9:
      return n == "clip-path" ? 0 : n == "transform" ? 10 : -1;
    case 12:
      return n == "fill-opacity" ? 2 : n == "stroke-width" ? 8 : -1;
    case 14:
      return n == "stroke-linecap" ? 5 : -1;
    case 15:
      return n == "stroke-linejoin" ? 6 : -1;
    case 17:
      return n == "stroke-miterlimit" ? 7 : -1;
    default:
      return -1;
  }
}

constexpr bool lookUpFindsEveryKnownName() {
  for (std::size_t i = 0; i < kKnownAttributes.size(); ++i) {
    if (lookUp(kKnownAttributes[i].name) != static_cast<int>(i)) return false;
  }
  return true;
}
static_assert(lookUpFindsEveryKnownName());
static_assert(kKnownAttributes.size() <= 16, "ConsumedAttributes holds one bit per name");

int lookUpRaw(std::string_view attrName) {
  return lookUpFolded(attrName, lookUp, -1);
}

// The pieces of `text` between separators, empty ones dropped, without building a list: a style
// is taken apart on every element that has one. A ";" or ":" that carries a combining mark is
// another character and separates nothing.
class NonEmptyPieces {
 public:
  NonEmptyPieces(std::string_view text, std::string_view separator) : splitter_(text, separator) {}

  // The next non-empty piece, or false when there is none.
  bool next(std::string_view& piece) {
    while (splitter_.next(piece)) {
      if (!piece.empty()) return true;
    }
    return false;
  }

 private:
  CharacterSplitter splitter_;
};

}  // namespace

PresentationAttributes::PresentationAttributes(const PresentationAttributes* from) {
  if (from != nullptr) *this = *from;
}

std::vector<std::string> PresentationAttributes::parse(const SVGEvent& event) {
  std::vector<std::string> consumed;
  for (const auto& [name, value] : event.attributes) {
    const int index = processAttribute(name, value);
    if (index >= 0) consumed.emplace_back(kKnownAttributes[static_cast<std::size_t>(index)].name);
  }
  return consumed;
}

ConsumedAttributes PresentationAttributes::apply(const SVGTag& tag) {
  ConsumedAttributes consumed;
  for (const SVGAttributeView& attribute : tag.attributes) {
    const int index = processAttribute(attribute.name, attribute.value);
    if (index >= 0) consumed.bits_ |= static_cast<std::uint16_t>(1u << index);
  }
  return consumed;
}

bool PresentationAttributes::namesAny(const SVGTag& tag) {
  return std::ranges::any_of(tag.attributes, [](const SVGAttributeView& attribute) {
    return isPresentationName(attribute.name);
  });
}

bool PresentationAttributes::isPresentationName(std::string_view attrName) {
  return lookUpRaw(attrName) >= 0;
}

bool ConsumedAttributes::contains(std::string_view name) const {
  const int index = lookUpRaw(name);
  return index >= 0 && (bits_ & (1u << index)) != 0;
}

int PresentationAttributes::processAttribute(std::string_view attrName,
                                             std::string_view attrValue) {
  const int index = lookUpRaw(attrName);
  if (index < 0) return -1;
  const KnownAttribute& known = kKnownAttributes[static_cast<std::size_t>(index)];

  switch (known.rule) {
    case Rule::Replace:
      (this->*known.field).emplace(attrValue);
      break;
    case Rule::Accumulate: {
      std::optional<std::string>& list = this->*known.field;
      if (list) {
        list->append(" ").append(attrValue);
      } else {
        list.emplace(attrValue);
      }
      break;
    }
    case Rule::Expand: {
      // Every well-formed declaration is applied; one malformed declaration only withholds
      // "style" from the consumed names, so the element reports the attribute as unknown.
      bool wellFormed = true;
      NonEmptyPieces declarations(attrValue, ";");
      for (std::string_view declaration; declarations.next(declaration);) {
        NonEmptyPieces parts(declaration, ":");
        std::string_view name;
        std::string_view value;
        std::string_view extra;
        if (!parts.next(name) || !parts.next(value) || parts.next(extra)) {
          wellFormed = false;
          continue;
        }
        // Unknown properties inside a style are ignored without a trace.
        (void)processAttribute(trimSpacesAndTabs(name), trimSpacesAndTabs(value));
      }
      if (!wellFormed) return -1;
      break;
    }
  }
  return index;
}

PresentationAttributes PresentationAttributes::join(const PresentationAttributes* base,
                                                    const PresentationAttributes* join) {
  if (base == nullptr) return PresentationAttributes(join);
  PresentationAttributes result(base);
  if (join != nullptr) {
    // Inherited values fill only the gaps: nothing is concatenated or multiplied, so an own
    // transform replaces an inherited one.
    for (Field field : kAllFields) {
      if (!(result.*field)) result.*field = join->*field;
    }
  }
  return result;
}

}  // namespace tessaline
