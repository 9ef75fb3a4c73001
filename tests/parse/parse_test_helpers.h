#pragma once

#include <gtest/gtest.h>

#include <charconv>
#include <memory>
#include <string>
#include <vector>

#include "geometry/basic_shapes.h"
#include "parse/svg_definition.h"
#include "parse/svg_xml_parser.h"

namespace tessaline::testing {

using Messages = std::vector<std::string>;

// Parses `body` as the content of a symbol whose start tag has already been read, as the
// document reader does.
inline std::shared_ptr<SVGDefinition> parseSymbolBody(
    const std::string& body, const PresentationAttributes* symbolAttributes = nullptr) {
  SVGXMLParser parser("<symbol>" + body + "</symbol>");
  auto definition = std::make_shared<SVGDefinition>();
  const SVGEvent* start = parser.nextEvent();
  const SVGEvent* symbol = parser.nextEvent();
  EXPECT_TRUE(start != nullptr && symbol != nullptr) << "not well formed: " << body;
  definition->parseData(parser, symbolAttributes);
  return definition;
}

// The shortest text that reads back as the same number of its type, so that comparing texts is
// exact; "-" for an absent one.
template <typename Number>
std::string numberText(Number value) {
  char buffer[32];
  return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}
template <typename Number>
std::string numberText(std::optional<Number> value) {
  return value ? numberText(*value) : "-";
}

inline std::string describe(const SVGDefinition& definition);

// A component as text: its kind, "#" and the id unless it is empty, its fields (a path's fill
// rule unless it is empty) and the presentation attributes that are set.
inline std::string describe(const SVGComponent& component) {
  std::string text;
  const auto add = [&](const char* name, const std::string& value) {
    text.append(" ").append(name).append("=").append(value);
  };
  const auto quoted = [](const std::string& value) { return "'" + value + "'"; };
  const PresentationAttributes* styling = nullptr;
  if (auto* path = dynamic_cast<const PathComponent*>(&component)) {
    text = "path";
    add("d", quoted(path->d));
    if (!path->fillRule.empty()) add("rule", path->fillRule);
  } else if (auto* rect = dynamic_cast<const RectComponent*>(&component)) {
    text = "rect";
    add("x", numberText(rect->x)), add("y", numberText(rect->y));
    add("w", numberText(rect->width)), add("h", numberText(rect->height));
    add("rx", numberText(rect->rx)), add("ry", numberText(rect->ry));
  } else if (auto* circle = dynamic_cast<const CircleComponent*>(&component)) {
    text = "circle";
    add("cx", numberText(circle->cx)), add("cy", numberText(circle->cy));
    add("r", numberText(circle->r));
  } else if (auto* ellipse = dynamic_cast<const EllipseComponent*>(&component)) {
    text = "ellipse";
    add("cx", numberText(ellipse->cx)), add("cy", numberText(ellipse->cy));
    add("rx", numberText(ellipse->rx)), add("ry", numberText(ellipse->ry));
  } else if (auto* line = dynamic_cast<const LineComponent*>(&component)) {
    text = "line";
    add("x1", numberText(line->x1)), add("y1", numberText(line->y1));
    add("x2", numberText(line->x2)), add("y2", numberText(line->y2));
  } else if (auto* polygon = dynamic_cast<const PolygonComponent*>(&component)) {
    text = "polygon";
    for (const Point& p : polygon->points) {
      add("p", numberText(p.x) + "," + numberText(p.y));
    }
  } else if (auto* use = dynamic_cast<const UseComponent*>(&component)) {
    text = "use";
    add("href", quoted(use->href));
    add("xlink", quoted(use->hrefLink));
    styling = &use->attributes;
  } else if (auto* clip = dynamic_cast<const ClipPathComponent*>(&component)) {
    text = "clip(" + describe(clip->definitions()) + ")";
  }
  if (auto* shape = dynamic_cast<const PresentationAttributeSVGComponent*>(&component)) {
    styling = &shape->attributes;
  }
  if (component.id != "") {
    text.insert(std::min(text.find_first_of(" ("), text.size()),
                "#" + component.id.value_or("<absent>"));
  }
  if (styling == nullptr) return text;
  const char* names[] = {
      "fill",         "opacity",           "fill-opacity",   "transform",       "stroke",
      "stroke-width", "stroke-miterlimit", "stroke-linecap", "stroke-linejoin", "clip-path"};
  const PresentationAttributes& a = *styling;
  const std::optional<std::string>* values[] = {
      &a.fill,        &a.opacity,          &a.fillOpacity,   &a.transform,      &a.stroke,
      &a.strokeWidth, &a.strokeMiterLimit, &a.strokeLineCap, &a.strokeLineJoin, &a.clipPath};
  for (std::size_t i = 0; i < std::size(names); ++i) {
    if (*values[i]) add(names[i], **values[i]);
  }
  return text;
}

// The components, "; " between them, then "defs{...}" for the sub-definitions. Recursive: not
// for deep nesting.
inline std::string describe(const SVGDefinition& definition) {
  std::string text;
  for (const auto& component : definition.svgComponents) {
    text.append(text.empty() ? "" : "; ").append(describe(*component));
  }
  if (definition.svgSubDefinitions) {
    text.append(text.empty() ? "" : "; ")
        .append("defs{" + describe(*definition.svgSubDefinitions) + "}");
  }
  return text;
}

}  // namespace tessaline::testing
