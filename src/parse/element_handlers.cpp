#include "parse/element_handlers.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "geometry/basic_shapes.h"
#include "parse/folded_name.h"
#include "parse/svg_definition.h"
#include "platform/number_reader.h"

namespace tessaline {
namespace {

constexpr std::string_view kPathUnknownAttribute = "Encountered unknown attribute for path: ";
constexpr std::string_view kEllipseUnknownAttribute = "Encountered unknown attribute for ellipse: ";
constexpr std::string_view kCircleUnknownAttribute = "Encountered unknown attribute for circle: ";
constexpr std::string_view kRectUnknownAttribute = "Encountered unknown attribute for rect: ";
constexpr std::string_view kPolygonUnknownAttribute = "Encountered unknown attribute for polygon: ";
constexpr std::string_view kLineUnknownAttribute = "Encountered unknown attribute for line: ";
constexpr std::string_view kUseUnknownAttribute = "Encountered unknown attribute for use: ";
constexpr std::string_view kClipPathUnknownAttribute =
    "Encountered unknown attribute for clippath: ";
constexpr std::string_view kEllipseInvalidParameters = "Encountered invalid parameters for ellipse";
constexpr std::string_view kCircleInvalidParameters = "Encountered invalid parameters for circle";
constexpr std::string_view kRectInvalidParameters = "Encountered invalid parameters for rect";
constexpr std::string_view kPolygonInvalidParameters = "Encountered invalid parameters for polygon";

// The AttributeName of a folded name. Every attribute of every element is told apart here, so it
// compares against literals picked by length rather than searching lists.
constexpr AttributeName classify(std::string_view n) {
  using enum AttributeName;
  switch (n.size()) {
    case 1:
      return n == "d" ? D : n == "r" ? R : n == "x" ? X : n == "y" ? Y : Other;
    case 2:
      if (n == "id") return Id;
      if (n == "cx") return Cx;
      if (n == "cy") return Cy;
      if (n == "rx") return Rx;
      if (n == "ry") return Ry;
      if (n == "x1") return X1;
      if (n == "y1") return Y1;
      if (n == "x2") return X2;
      if (n == "y2") return Y2;
      return Other;
    case 4:
      return n == "href" ? Href : Other;
    case 5:
      return n == "width" ? Width : n == "class" ? Class : n == "xmlns" ? Xmlns : Other;
    case 6:
      return n == "height" ? Height : n == "points" ? Points : Other;
    case 7:
      return n == "viewbox" ? ViewBox : Other;
    case 9:
      return n == "fill-rule"   ? FillRule
             : n == "data-name" ? DataName
             : n == "isolation" ? Isolation
                                : Other;
    case 10:
      return n == "xlink:href" ? XlinkHref : Other;
    default:
      return Other;
  }
}

constexpr std::size_t kAttributeNameCount = static_cast<std::size_t>(AttributeName::ViewBox) + 1;
static_assert(kAttributeNameCount <= 32, "rules hold the names they ignore as bits");

// How one element kind sorts its attributes: names it ignores, names whose values it keeps (one
// slot each, in the order listed), which kept slots it cannot do without (checked in order), and
// its messages. The lists are turned into a bit set and a slot table once, at compile time.
struct HandlerRule {
  std::uint32_t ignored = 0;                            // one bit per AttributeName
  std::array<std::int8_t, kAttributeNameCount> slot{};  // the kept slot of a name, or -1
  std::span<const std::size_t> required;
  std::string_view unknownAttribute;
  std::optional<std::string_view> invalidParameters;  // absent: an invalid element is dropped
};

constexpr std::size_t kMaxKept = 7;

constexpr HandlerRule makeRule(std::span<const std::string_view> ignored,
                               std::span<const std::string_view> kept,
                               std::span<const std::size_t> required,
                               std::string_view unknownAttribute,
                               std::optional<std::string_view> invalidParameters) {
  HandlerRule rule;
  rule.slot.fill(-1);
  for (std::string_view name : ignored) rule.ignored |= 1u << static_cast<unsigned>(classify(name));
  for (std::size_t i = 0; i < kept.size(); ++i) {
    rule.slot[static_cast<std::size_t>(classify(kept[i]))] = static_cast<std::int8_t>(i);
  }
  rule.required = required;
  rule.unknownAttribute = unknownAttribute;
  rule.invalidParameters = invalidParameters;
  return rule;
}

constexpr std::string_view kIgnoredCommon[] = {"data-name", "class"};
constexpr std::string_view kIgnoredPath[] = {"data-name", "class", "isolation"};
constexpr std::string_view kIgnoredGroup[] = {"id", "data-name", "class"};

constexpr std::string_view kKeptPath[] = {"id", "d", "fill-rule"};
constexpr std::string_view kKeptEllipse[] = {"id", "cx", "cy", "rx", "ry"};
constexpr std::string_view kKeptCircle[] = {"id", "cx", "cy", "r"};
constexpr std::string_view kKeptRect[] = {"id", "x", "y", "width", "height", "rx", "ry"};
constexpr std::string_view kKeptPolygon[] = {"id", "points"};
constexpr std::string_view kKeptLine[] = {"id", "x1", "y1", "x2", "y2"};
constexpr std::string_view kKeptUse[] = {"href", "xlink:href"};

// cx is required of ellipses and circles but cy is not: a missing cy stays absent.
constexpr std::size_t kRequiredPath[] = {1};
constexpr std::size_t kRequiredEllipse[] = {1, 3, 4};
constexpr std::size_t kRequiredCircle[] = {1, 3};
constexpr std::size_t kRequiredRect[] = {3, 4};
constexpr std::size_t kRequiredPolygon[] = {1};

// Every listed name must have an AttributeName of its own: Other would otherwise be ignored or
// kept along with it.
constexpr bool allNamed(std::span<const std::string_view> names) {
  return std::ranges::none_of(
      names, [](std::string_view n) { return classify(n) == AttributeName::Other; });
}
static_assert(allNamed(kIgnoredCommon) && allNamed(kIgnoredPath) && allNamed(kIgnoredGroup) &&
              allNamed(kKeptPath) && allNamed(kKeptEllipse) && allNamed(kKeptCircle) &&
              allNamed(kKeptRect) && allNamed(kKeptPolygon) && allNamed(kKeptLine) &&
              allNamed(kKeptUse));

constexpr HandlerRule kPathRule =
    makeRule(kIgnoredPath, kKeptPath, kRequiredPath, kPathUnknownAttribute, std::nullopt);
constexpr HandlerRule kEllipseRule = makeRule(kIgnoredCommon, kKeptEllipse, kRequiredEllipse,
                                              kEllipseUnknownAttribute, kEllipseInvalidParameters);
constexpr HandlerRule kCircleRule = makeRule(kIgnoredCommon, kKeptCircle, kRequiredCircle,
                                             kCircleUnknownAttribute, kCircleInvalidParameters);
constexpr HandlerRule kRectRule = makeRule(kIgnoredCommon, kKeptRect, kRequiredRect,
                                           kRectUnknownAttribute, kRectInvalidParameters);
constexpr HandlerRule kPolygonRule = makeRule(kIgnoredCommon, kKeptPolygon, kRequiredPolygon,
                                              kPolygonUnknownAttribute, kPolygonInvalidParameters);
constexpr HandlerRule kLineRule =
    makeRule(kIgnoredCommon, kKeptLine, {}, kLineUnknownAttribute, std::nullopt);
// A `use` ignores nothing: its id, data-name and class are all reported.
constexpr HandlerRule kUseRule = makeRule({}, kKeptUse, {}, kUseUnknownAttribute, std::nullopt);
// Groups report their unknown attributes with the path wording; that is the established text.
constexpr HandlerRule kGroupRule =
    makeRule(kIgnoredGroup, {}, {}, kPathUnknownAttribute, std::nullopt);

static_assert(std::size(kKeptRect) == kMaxKept);

const HandlerRule& ruleFor(ElementKind kind) {
  switch (kind) {
    case ElementKind::Path:
      return kPathRule;
    case ElementKind::Ellipse:
      return kEllipseRule;
    case ElementKind::Circle:
      return kCircleRule;
    case ElementKind::Rect:
      return kRectRule;
    case ElementKind::Polygon:
      return kPolygonRule;
    case ElementKind::Line:
      return kLineRule;
    case ElementKind::Use:
      return kUseRule;
    default:
      return kGroupRule;
  }
}

// The kept values of one tag; a kept name that was not given (or given empty) holds "". Views of
// the tag's values: strings are made only for what a component keeps.
using Slots = std::array<std::string_view, kMaxKept>;

// Sorts the tag's attributes: ignored, kept into `slots`, consumed as presentation attributes, or
// reported as unknown under the name as written. Then checks the required slots; returns false
// (after adding the invalid-parameters message, if the element has one) when one is empty.
bool sortAttributes(const HandlerRule& rule, const SVGTag& tag, ConsumedAttributes consumed,
                    Slots& slots, SVGDefinition& definition) {
  for (const SVGAttributeView& attribute : tag.attributes) {
    const auto name = static_cast<std::size_t>(attributeNameFor(attribute.name));
    if ((rule.ignored & (1u << name)) != 0) continue;
    if (const int slot = rule.slot[name]; slot >= 0) {
      slots[static_cast<std::size_t>(slot)] = attribute.value;
      continue;
    }
    if (!consumed.contains(attribute.name)) {
      definition.errorMessages.push_back(std::string(rule.unknownAttribute).append(attribute.name));
    }
  }
  // An empty value counts as missing; a value of blanks does not.
  for (std::size_t required : rule.required) {
    if (slots[required].empty()) {
      if (rule.invalidParameters) definition.errorMessages.emplace_back(*rule.invalidParameters);
      return false;
    }
  }
  return true;
}

float number(std::string_view slot) {
  return readLenientFloat(slot);
}

std::optional<float> optionalNumber(std::string_view slot) {
  if (slot.empty()) return std::nullopt;
  return readLenientFloat(slot);
}

std::shared_ptr<SVGComponent> makeComponent(ElementKind kind, const Slots& s,
                                            ComponentAttributes attributes,
                                            std::optional<std::string>* deferredPointList) {
  switch (kind) {
    case ElementKind::Path:
      return std::make_shared<PathComponent>(std::string(s[0]), std::move(attributes),
                                             std::string(s[1]), std::string(s[2]));
    case ElementKind::Ellipse:
      return std::make_shared<EllipseComponent>(std::string(s[0]), std::move(attributes),
                                                number(s[1]), optionalNumber(s[2]), number(s[3]),
                                                number(s[4]));
    case ElementKind::Circle:
      return std::make_shared<CircleComponent>(std::string(s[0]), std::move(attributes),
                                               number(s[1]), optionalNumber(s[2]), number(s[3]));
    case ElementKind::Rect: {
      // One given radius stands for both; neither means square corners. No clamping here.
      const std::optional<float> rx = optionalNumber(s[5]);
      const std::optional<float> ry = optionalNumber(s[6]);
      const float cornerX = rx.value_or(ry.value_or(0));
      const float cornerY = ry.value_or(rx.value_or(0));
      return std::make_shared<RectComponent>(std::string(s[0]), std::move(attributes), number(s[1]),
                                             number(s[2]), number(s[3]), number(s[4]), cornerX,
                                             cornerY);
    }
    case ElementKind::Polygon:
      if (deferredPointList != nullptr && PolygonComponent::pointListStops(s[1])) {
        *deferredPointList = std::string(s[1]);
        return nullptr;
      }
      return std::make_shared<PolygonComponent>(std::string(s[0]), s[1], std::move(attributes));
    case ElementKind::Line:
      return std::make_shared<LineComponent>(std::string(s[0]), std::move(attributes), number(s[1]),
                                             number(s[2]), number(s[3]), number(s[4]));
    case ElementKind::Use:
      // The use element's own id is never stored.
      return std::make_shared<UseComponent>("", std::string(s[0]), std::string(s[1]),
                                            std::move(attributes));
    default:
      return nullptr;
  }
}

// The set a tag's element holds: the inherited set itself when the tag names no presentation
// attribute (most elements), otherwise the inherited set with the tag's styling applied.
StyledAttributes styleTag(const SVGTag& tag, InheritedAttributes& inherited,
                          AttributeSetInterner& interner) {
  if (!PresentationAttributes::namesAny(tag)) return {inherited.shared(interner), {}};
  return interner.apply(inherited.shared(interner).get(), tag);
}

std::optional<ElementKind> kindForFoldedName(std::string_view n) {
  switch (n.size()) {
    case 1:
      if (n == "g") return ElementKind::Group;
      break;
    case 3:
      if (n == "use") return ElementKind::Use;
      break;
    case 4:
      if (n == "path") return ElementKind::Path;
      if (n == "rect") return ElementKind::Rect;
      if (n == "line") return ElementKind::Line;
      if (n == "defs") return ElementKind::Defs;
      break;
    case 6:
      if (n == "circle") return ElementKind::Circle;
      break;
    case 7:
      if (n == "ellipse") return ElementKind::Ellipse;
      if (n == "polygon") return ElementKind::Polygon;
      break;
    case 8:
      if (n == "clippath") return ElementKind::ClipPath;
      break;
    default:
      break;
  }
  return std::nullopt;
}

}  // namespace

std::optional<ElementKind> elementKindForName(std::string_view name) {
  return lookUpFolded(name, kindForFoldedName, std::optional<ElementKind>());
}

AttributeName attributeNameFor(std::string_view name) {
  return lookUpFolded(name, classify, AttributeName::Other);
}

std::shared_ptr<SVGComponent> buildComponent(ElementKind kind, const SVGTag& tag,
                                             InheritedAttributes& inherited,
                                             SVGDefinition& definition,
                                             AttributeSetInterner& interner,
                                             std::optional<std::string>* deferredPointList) {
  StyledAttributes styled = styleTag(tag, inherited, interner);
  Slots slots;
  if (!sortAttributes(ruleFor(kind), tag, styled.consumed, slots, definition)) return nullptr;
  return makeComponent(kind, slots, std::move(styled.attributes), deferredPointList);
}

std::shared_ptr<const PresentationAttributes> readGroupAttributes(const SVGTag& tag,
                                                                  InheritedAttributes& inherited,
                                                                  SVGDefinition& definition,
                                                                  AttributeSetInterner& interner) {
  StyledAttributes styled = styleTag(tag, inherited, interner);
  Slots unused;
  sortAttributes(kGroupRule, tag, styled.consumed, unused, definition);
  return std::move(styled.attributes);
}

std::string readClipPathId(const SVGTag& tag, SVGDefinition& definition) {
  std::string id;
  for (const SVGAttributeView& attribute : tag.attributes) {
    if (attributeNameFor(attribute.name) == AttributeName::Id) {
      id.assign(attribute.value);
    } else {
      definition.errorMessages.push_back(
          std::string(kClipPathUnknownAttribute).append(attribute.name));
    }
  }
  return id;
}

std::string readClipPathId(const SVGEvent& event, SVGDefinition& definition) {
  std::vector<SVGAttributeView> views;
  return readClipPathId(tagOf(event, views), definition);
}

}  // namespace tessaline
