#include "style/presentation_attributes.h"

#include <algorithm>
#include <array>

#include "platform/ascii_case.h"

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

// Sorted by name (byte order) for the binary search in lookUp.
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

const KnownAttribute* lookUp(std::string_view foldedName) {
  auto it = std::ranges::lower_bound(kKnownAttributes, foldedName, {}, &KnownAttribute::name);
  if (it == kKnownAttributes.end() || it->name != foldedName) return nullptr;
  return &*it;
}

// Splits on `separator`, dropping empty pieces.
std::vector<std::string_view> splitDroppingEmpty(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(separator), text.size());
    if (end > 0) pieces.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return pieces;
}

// Blanks and tabs only: a line break inside a declaration is part of its name or value.
std::string_view trimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  const std::size_t last = text.find_last_not_of(" \t");
  return text.substr(first, last - first + 1);
}

}  // namespace

PresentationAttributes::PresentationAttributes(const PresentationAttributes* from) {
  if (from != nullptr) *this = *from;
}

std::vector<std::string> PresentationAttributes::parse(const SVGEvent& event) {
  std::vector<std::string> consumed;
  for (const auto& [name, value] : event.attributes) {
    if (auto canonical = processAttribute(name, value)) consumed.emplace_back(*canonical);
  }
  return consumed;
}

std::optional<std::string_view> PresentationAttributes::processAttribute(
    std::string_view attrName, std::string_view attrValue) {
  const KnownAttribute* known = lookUp(foldAsciiCase(attrName));
  if (known == nullptr) return std::nullopt;

  switch (known->rule) {
    case Rule::Replace:
      this->*known->field = std::string(attrValue);
      break;
    case Rule::Accumulate: {
      std::optional<std::string>& list = this->*known->field;
      if (list) {
        list->append(" ").append(attrValue);
      } else {
        list = std::string(attrValue);
      }
      break;
    }
    case Rule::Expand: {
      // Every well-formed declaration is applied; one malformed declaration only withholds
      // "style" from the consumed names, so the element reports the attribute as unknown.
      bool wellFormed = true;
      for (std::string_view declaration : splitDroppingEmpty(attrValue, ';')) {
        const std::vector<std::string_view> parts = splitDroppingEmpty(declaration, ':');
        if (parts.size() != 2) {
          wellFormed = false;
          continue;
        }
        // Unknown properties inside a style are ignored without a trace.
        (void)processAttribute(trimBlanks(parts[0]), trimBlanks(parts[1]));
      }
      if (!wellFormed) return std::nullopt;
      break;
    }
  }
  return known->name;
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
