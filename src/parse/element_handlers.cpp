#include "parse/element_handlers.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "geometry/basic_shapes.h"
#include "parse/svg_definition.h"
#include "platform/ascii_case.h"
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

struct NamedKind {
  std::string_view name;
  ElementKind kind;
};

// Sorted by name (byte order) for the binary search in elementKindForName.
constexpr std::array<NamedKind, 10> kElementNames{{
    {"circle", ElementKind::Circle},
    {"clippath", ElementKind::ClipPath},
    {"defs", ElementKind::Defs},
    {"ellipse", ElementKind::Ellipse},
    {"g", ElementKind::Group},
    {"line", ElementKind::Line},
    {"path", ElementKind::Path},
    {"polygon", ElementKind::Polygon},
    {"rect", ElementKind::Rect},
    {"use", ElementKind::Use},
}};
static_assert(std::ranges::is_sorted(kElementNames, {}, &NamedKind::name));

// How one element kind sorts its attributes: names it ignores, names whose values it keeps (one
// slot each, in this order), which kept slots it cannot do without (checked in order), and its
// messages.
struct HandlerRule {
  std::span<const std::string_view> ignored;
  std::span<const std::string_view> kept;
  std::span<const std::size_t> required;
  std::string_view unknownAttribute;
  std::optional<std::string_view> invalidParameters;  // absent: an invalid element is dropped
};

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

constexpr std::size_t kMaxKept = 7;

constexpr HandlerRule kPathRule{kIgnoredPath, kKeptPath, kRequiredPath, kPathUnknownAttribute,
                                std::nullopt};
constexpr HandlerRule kEllipseRule{kIgnoredCommon, kKeptEllipse, kRequiredEllipse,
                                   kEllipseUnknownAttribute, kEllipseInvalidParameters};
constexpr HandlerRule kCircleRule{kIgnoredCommon, kKeptCircle, kRequiredCircle,
                                  kCircleUnknownAttribute, kCircleInvalidParameters};
constexpr HandlerRule kRectRule{kIgnoredCommon, kKeptRect, kRequiredRect, kRectUnknownAttribute,
                                kRectInvalidParameters};
constexpr HandlerRule kPolygonRule{kIgnoredCommon, kKeptPolygon, kRequiredPolygon,
                                   kPolygonUnknownAttribute, kPolygonInvalidParameters};
constexpr HandlerRule kLineRule{kIgnoredCommon, kKeptLine, {}, kLineUnknownAttribute, std::nullopt};
// A `use` ignores nothing: its id, data-name and class are all reported.
constexpr HandlerRule kUseRule{{}, kKeptUse, {}, kUseUnknownAttribute, std::nullopt};
// Groups report their unknown attributes with the path wording; that is the established text.
constexpr HandlerRule kGroupRule{kIgnoredGroup, {}, {}, kPathUnknownAttribute, std::nullopt};

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

// The kept values of one tag; a kept name that was not given (or given empty) holds "".
using Slots = std::array<std::string, kMaxKept>;

bool contains(std::span<const std::string_view> names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

// Sorts the tag's attributes: ignored, kept into `slots`, consumed as presentation attributes, or
// reported as unknown under the name as written. Then checks the required slots; returns false
// (after adding the invalid-parameters message, if the element has one) when one is empty.
bool sortAttributes(const HandlerRule& rule, const SVGEvent& event,
                    const std::vector<std::string>& consumed, Slots& slots,
                    SVGDefinition& definition) {
  for (const auto& [name, value] : event.attributes) {
    const std::string folded = foldAsciiCase(name);
    if (contains(rule.ignored, folded)) continue;
    if (auto kept = std::ranges::find(rule.kept, folded); kept != rule.kept.end()) {
      slots[static_cast<std::size_t>(kept - rule.kept.begin())] = value;
      continue;
    }
    if (std::ranges::find(consumed, folded) == consumed.end()) {
      definition.errorMessages.push_back(std::string(rule.unknownAttribute) + name);
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

float number(const std::string& slot) {
  return readLenientFloat(slot);
}

std::optional<float> optionalNumber(const std::string& slot) {
  if (slot.empty()) return std::nullopt;
  return readLenientFloat(slot);
}

std::shared_ptr<SVGComponent> makeComponent(ElementKind kind, Slots& s,
                                            ComponentAttributes attributes) {
  switch (kind) {
    case ElementKind::Path:
      return std::make_shared<PathComponent>(std::move(s[0]), std::move(attributes),
                                             std::move(s[1]), std::move(s[2]));
    case ElementKind::Ellipse:
      return std::make_shared<EllipseComponent>(std::move(s[0]), std::move(attributes),
                                                number(s[1]), optionalNumber(s[2]), number(s[3]),
                                                number(s[4]));
    case ElementKind::Circle:
      return std::make_shared<CircleComponent>(std::move(s[0]), std::move(attributes), number(s[1]),
                                               optionalNumber(s[2]), number(s[3]));
    case ElementKind::Rect: {
      // One given radius stands for both; neither means square corners. No clamping here.
      const std::optional<float> rx = optionalNumber(s[5]);
      const std::optional<float> ry = optionalNumber(s[6]);
      const float cornerX = rx.value_or(ry.value_or(0));
      const float cornerY = ry.value_or(rx.value_or(0));
      return std::make_shared<RectComponent>(std::move(s[0]), std::move(attributes), number(s[1]),
                                             number(s[2]), number(s[3]), number(s[4]), cornerX,
                                             cornerY);
    }
    case ElementKind::Polygon:
      return std::make_shared<PolygonComponent>(std::move(s[0]), s[1], std::move(attributes));
    case ElementKind::Line:
      return std::make_shared<LineComponent>(std::move(s[0]), std::move(attributes), number(s[1]),
                                             number(s[2]), number(s[3]), number(s[4]));
    case ElementKind::Use:
      // The use element's own id is never stored.
      return std::make_shared<UseComponent>("", std::move(s[0]), std::move(s[1]),
                                            std::move(attributes));
    default:
      return nullptr;
  }
}

}  // namespace

std::optional<ElementKind> elementKindForName(std::string_view foldedName) {
  auto it = std::ranges::lower_bound(kElementNames, foldedName, {}, &NamedKind::name);
  if (it == kElementNames.end() || it->name != foldedName) return std::nullopt;
  return it->kind;
}

std::shared_ptr<SVGComponent> buildComponent(ElementKind kind, const SVGEvent& event,
                                             const PresentationAttributes* inherited,
                                             SVGDefinition& definition,
                                             AttributeSetInterner& interner) {
  PresentationAttributes attributes(inherited);
  const std::vector<std::string> consumed = attributes.parse(event);
  Slots slots;
  if (!sortAttributes(ruleFor(kind), event, consumed, slots, definition)) return nullptr;
  return makeComponent(kind, slots, interner.intern(std::move(attributes)));
}

PresentationAttributes readGroupAttributes(const SVGEvent& event,
                                           const PresentationAttributes* inherited,
                                           SVGDefinition& definition) {
  PresentationAttributes attributes(inherited);
  const std::vector<std::string> consumed = attributes.parse(event);
  Slots unused;
  sortAttributes(kGroupRule, event, consumed, unused, definition);
  return attributes;
}

std::string readClipPathId(const SVGEvent& event, SVGDefinition& definition) {
  std::string id;
  for (const auto& [name, value] : event.attributes) {
    if (foldAsciiCase(name) == "id") {
      id = value;
    } else {
      definition.errorMessages.push_back(std::string(kClipPathUnknownAttribute) + name);
    }
  }
  return id;
}

}  // namespace tessaline
