#include "geometry/basic_shapes.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "geometry/path_builder.h"
#include "geometry/path_parser.h"
#include "platform/character_search.h"
#include "platform/fatal.h"
#include "platform/number_reader.h"

namespace tessaline {
namespace {

// Two spellings on purpose: the polygon's message has always been the lower-case one.
constexpr std::string_view kMissingProperties = "Missing Properties";
constexpr std::string_view kPolygonMissingProperties = "Missing properties";

constexpr std::string_view kOddPointList = "polygon point list read past its end";

// Path data longer than this reserves no more room up front than data of this length.
constexpr std::size_t kMaxReservedDataLength = 16 * 1024;

DrawPathResult missing(std::string_view message) {
  return {std::nullopt, std::string(message), std::nullopt};
}

float pointComponent(std::string_view text) {
  return text.empty() ? 0.0f : readLenientFloat(text);
}

}  // namespace

DrawPathResult PathComponent::getDrawPath() const {
  // A fresh builder and parser on every call: nothing is cached, so drawing from several threads
  // shares no state.
  CGMutablePathWrapper builder;
  // Icons' path data makes at most about a verb per four characters and a point per three (arcs
  // and short relative commands are the densest), so this is room for all but the odd path. The
  // hint is capped: data that fails early must not cost memory in proportion to its length.
  const std::size_t hint = std::min<std::size_t>(d.size(), kMaxReservedDataLength);
  builder.reserve(hint / 4 + 2, hint / 3 + 2);
  PathParserResult result = PathParser(d).parse(builder);
  // Exact, case-sensitive: "EvenOdd" and "inherit" fall back to non-zero like any other text.
  FillRule rule = FillRule::Winding;
  if (fillRule == "nonzero") {
    rule = FillRule::Winding;
  } else if (fillRule == "evenodd") {
    rule = FillRule::EvenOdd;
  }
  return {std::move(result.path), std::move(result.error), rule};
}

DrawPathResult RectComponent::getDrawPath() const {
  if (!width || !height) return missing(kMissingProperties);
  // One corner radius for all four corners: `ry` plays no part.
  return {makeRoundedRectPath(Rect{x, y, *width, *height}, rx), std::nullopt, std::nullopt};
}

DrawPathResult CircleComponent::getDrawPath() const {
  if (!cx || !cy || !r) return missing(kMissingProperties);
  // The bounding box is computed in 32 bits, as the coordinates are held.
  const float left = *cx - *r;
  const float top = *cy - *r;
  const float size = *r + *r;
  return {makeOvalPath(Rect{left, top, size, size}), std::nullopt, std::nullopt};
}

DrawPathResult EllipseComponent::getDrawPath() const {
  if (!cx || !cy || !rx || !ry) return missing(kMissingProperties);
  const float left = *cx - *rx;
  const float top = *cy - *ry;
  const float width = *rx + *rx;
  const float height = *ry + *ry;
  return {makeOvalPath(Rect{left, top, width, height}), std::nullopt, std::nullopt};
}

DrawPathResult LineComponent::getDrawPath() const {
  Path path;
  path.moveTo({x1, y1});
  path.lineTo({x2, y2});
  return {std::move(path), std::nullopt, std::nullopt};
}

namespace {

// Spaces take precedence: "0,0 10,0" gives the components "0,0" and "10,0", each contributing
// only its leading number. Commas separate only a text without any space. Empty components count.
// A space or comma that carries a combining mark is another character and separates nothing.
std::vector<std::string_view> pointComponents(std::string_view pointsText) {
  std::vector<std::string_view> components = splitOnCharacters(pointsText, " ");
  if (components.size() == 1) components = splitOnCharacters(pointsText, ",");
  return components;
}

}  // namespace

bool PolygonComponent::pointListStops(std::string_view pointsText) {
  // Read in pairs, an odd count leaves an x without its y.
  return pointComponents(pointsText).size() % 2 == 1;
}

PolygonComponent::PolygonComponent(std::optional<std::string> id, std::string_view pointsText,
                                   ComponentAttributes attributes)
    : PresentationAttributeSVGComponent(std::move(id).value_or(""), std::move(attributes)) {
  const std::vector<std::string_view> components = pointComponents(pointsText);
  for (std::size_t i = 0; i < components.size(); i += 2) {
    // An odd number of components has no y for the last x. Existing documents rely on the stop
    // rather than a message, so reading past the list stays fatal.
    if (i + 1 >= components.size()) fatalError(kOddPointList);
    points.push_back({pointComponent(components[i]), pointComponent(components[i + 1])});
  }
}

DrawPathResult PolygonComponent::getDrawPath() const {
  if (points.empty()) return missing(kPolygonMissingProperties);
  Path path;
  path.moveTo(points.front());
  for (std::size_t i = 1; i < points.size(); ++i) path.lineTo(points[i]);
  path.close();
  return {std::move(path), std::nullopt, std::nullopt};
}

}  // namespace tessaline
