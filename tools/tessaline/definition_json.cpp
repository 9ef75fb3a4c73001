#include "definition_json.h"

#include <charconv>
#include <cmath>
#include <string>
#include <utility>
#include <vector>

#include "geometry/basic_shapes.h"
#include "parse/svg_component.h"
#include "parse/svg_definition.h"
#include "tessaline/svg_file.h"

namespace tessaline::cli {
namespace {

using Json = nlohmann::ordered_json;

// The shortest text that reads back as the same float, read as a double: 0.1f prints as 0.1
// rather than as the double nearest to it (0.10000000149011612).
Json number(float value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value > 0 ? "Infinity" : "-Infinity";
  char text[32];
  const auto written = std::to_chars(text, text + sizeof text, value);
  double widened = 0;
  std::from_chars(text, written.ptr, widened);
  return widened;
}

// Coordinates widened from floats print as those floats; anything else as the double it is.
Json number(double value) {
  const float narrowed = static_cast<float>(value);
  if (static_cast<double>(narrowed) == value || std::isnan(value)) return number(narrowed);
  return value;
}

Json number(const std::optional<float>& value) {
  return value ? number(*value) : Json(nullptr);
}

Json attributesJson(const PresentationAttributes& attributes) {
  const std::pair<const char*, const std::optional<std::string>*> fields[] = {
      {"fill", &attributes.fill},
      {"opacity", &attributes.opacity},
      {"fill-opacity", &attributes.fillOpacity},
      {"transform", &attributes.transform},
      {"stroke", &attributes.stroke},
      {"stroke-width", &attributes.strokeWidth},
      {"stroke-miterlimit", &attributes.strokeMiterLimit},
      {"stroke-linecap", &attributes.strokeLineCap},
      {"stroke-linejoin", &attributes.strokeLineJoin},
      {"clip-path", &attributes.clipPath},
  };
  Json object = Json::object();
  for (const auto& [name, field] : fields) {
    if (*field) object[name] = **field;
  }
  return object;
}

// The component's fields; a clip path's "definition" is left null for the caller to fill.
Json componentJson(const SVGComponent& component) {
  Json object;
  auto typed = [&](const char* type) {
    object["type"] = type;
    object["id"] = component.id ? Json(*component.id) : Json(nullptr);
  };
  auto styled = [&](const char* type, const PresentationAttributeSVGComponent& shape) {
    typed(type);
    object["attributes"] = attributesJson(shape.attributes);
  };
  if (const auto* path = dynamic_cast<const PathComponent*>(&component)) {
    styled("path", *path);
    object["d"] = path->d;
    object["fillRule"] = path->fillRule;
  } else if (const auto* rect = dynamic_cast<const RectComponent*>(&component)) {
    styled("rect", *rect);
    object["x"] = number(rect->x);
    object["y"] = number(rect->y);
    object["width"] = number(rect->width);
    object["height"] = number(rect->height);
    object["rx"] = number(rect->rx);
    object["ry"] = number(rect->ry);
  } else if (const auto* circle = dynamic_cast<const CircleComponent*>(&component)) {
    styled("circle", *circle);
    object["cx"] = number(circle->cx);
    object["cy"] = number(circle->cy);
    object["r"] = number(circle->r);
  } else if (const auto* ellipse = dynamic_cast<const EllipseComponent*>(&component)) {
    styled("ellipse", *ellipse);
    object["cx"] = number(ellipse->cx);
    object["cy"] = number(ellipse->cy);
    object["rx"] = number(ellipse->rx);
    object["ry"] = number(ellipse->ry);
  } else if (const auto* line = dynamic_cast<const LineComponent*>(&component)) {
    styled("line", *line);
    object["x1"] = number(line->x1);
    object["y1"] = number(line->y1);
    object["x2"] = number(line->x2);
    object["y2"] = number(line->y2);
  } else if (const auto* polygon = dynamic_cast<const PolygonComponent*>(&component)) {
    styled("polygon", *polygon);
    Json points = Json::array();
    for (const Point& point : polygon->points) points.push_back({number(point.x), number(point.y)});
    object["points"] = std::move(points);
  } else if (const auto* use = dynamic_cast<const UseComponent*>(&component)) {
    typed("use");
    object["attributes"] = attributesJson(use->attributes);
    object["href"] = use->href;
    object["hrefLink"] = use->hrefLink;
  } else if (dynamic_cast<const ClipPathComponent*>(&component) != nullptr) {
    typed("clipPath");
    object["definition"] = nullptr;
  } else if (const auto* styledComponent =
                 dynamic_cast<const PresentationAttributeSVGComponent*>(&component)) {
    styled("component", *styledComponent);
  } else {
    typed("component");
  }
  return object;
}

// One definition's own fields, with "defs" and each clip path's "definition" left null.
Json shallowDefinitionJson(const SVGDefinition& definition) {
  Json object;
  object["id"] = definition.id;
  if (definition.viewBox) {
    const Rect& box = *definition.viewBox;
    object["viewBox"] = {number(box.x), number(box.y), number(box.width), number(box.height)};
  } else {
    object["viewBox"] = nullptr;
  }
  object["errors"] = definition.errorMessages;
  Json components = Json::array();
  for (const auto& component : definition.svgComponents) {
    components.push_back(componentJson(*component));
  }
  object["components"] = std::move(components);
  object["defs"] = nullptr;
  return object;
}

}  // namespace

Json definitionJson(const SVGDefinition& definition) {
  // Nested definitions are filled in through a work list rather than by recursion. A slot is
  // taken only once the object holding it is complete, so no later insertion moves it.
  Json root;
  std::vector<std::pair<const SVGDefinition*, Json*>> pending{{&definition, &root}};
  while (!pending.empty()) {
    auto [source, target] = pending.back();
    pending.pop_back();
    *target = shallowDefinitionJson(*source);
    Json& components = (*target)["components"];
    for (std::size_t i = 0; i < source->svgComponents.size(); ++i) {
      if (const auto* clip =
              dynamic_cast<const ClipPathComponent*>(source->svgComponents[i].get())) {
        pending.emplace_back(&clip->definitions(), &components[i]["definition"]);
      }
    }
    if (source->svgSubDefinitions) {
      pending.emplace_back(source->svgSubDefinitions.get(), &(*target)["defs"]);
    }
  }
  return root;
}

Json documentJson(const SVGFile& file) {
  Json symbols = Json::object();
  // symbolDefinitions is in byte order of the keys already and the keys are unique, so entries
  // are appended directly instead of through the object's linear key search. Reserved up front:
  // the entries cannot be moved, so growing would copy each definition, recursively.
  auto& entries = symbols.get_ref<Json::object_t&>();
  entries.reserve(file.symbolDefinitions.size());
  for (const auto& [key, definition] : file.symbolDefinitions) {
    entries.emplace_back(key, definitionJson(*definition));
  }
  Json document;
  document["url"] = file.url;
  document["symbols"] = std::move(symbols);
  return document;
}

}  // namespace tessaline::cli
