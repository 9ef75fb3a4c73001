#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "parse/svg_component.h"
#include "platform/geometry_types.h"

namespace tessaline {

// The six shapes. Each only builds its outline; drawing is the shared base's. Coordinates are
// 32-bit floats as parsed, widened only when the outline is built.

class PathComponent final : public PresentationAttributeSVGComponent {
 public:
  PathComponent(std::string id, ComponentAttributes attributes, std::string d, std::string fillRule)
      : PresentationAttributeSVGComponent(std::move(id), std::move(attributes)),
        d(std::move(d)),
        fillRule(std::move(fillRule)) {}
  DrawPathResult getDrawPath() const override;

  const std::string d;
  const std::string fillRule;
};

class RectComponent final : public PresentationAttributeSVGComponent {
 public:
  RectComponent(std::string id, ComponentAttributes attributes, float x, float y,
                std::optional<float> width, std::optional<float> height, float rx, float ry)
      : PresentationAttributeSVGComponent(std::move(id), std::move(attributes)),
        x(x),
        y(y),
        width(width),
        height(height),
        rx(rx),
        ry(ry) {}
  DrawPathResult getDrawPath() const override;

  const float x;
  const float y;
  const std::optional<float> width;
  const std::optional<float> height;
  const float rx;
  const float ry;
};

class CircleComponent final : public PresentationAttributeSVGComponent {
 public:
  CircleComponent(std::string id, ComponentAttributes attributes, std::optional<float> cx,
                  std::optional<float> cy, std::optional<float> r)
      : PresentationAttributeSVGComponent(std::move(id), std::move(attributes)),
        cx(cx),
        cy(cy),
        r(r) {}
  DrawPathResult getDrawPath() const override;

  const std::optional<float> cx;
  const std::optional<float> cy;
  const std::optional<float> r;
};

class EllipseComponent final : public PresentationAttributeSVGComponent {
 public:
  EllipseComponent(std::string id, ComponentAttributes attributes, std::optional<float> cx,
                   std::optional<float> cy, std::optional<float> rx, std::optional<float> ry)
      : PresentationAttributeSVGComponent(std::move(id), std::move(attributes)),
        cx(cx),
        cy(cy),
        rx(rx),
        ry(ry) {}
  DrawPathResult getDrawPath() const override;

  const std::optional<float> cx;
  const std::optional<float> cy;
  const std::optional<float> rx;
  const std::optional<float> ry;
};

class LineComponent final : public PresentationAttributeSVGComponent {
 public:
  LineComponent(std::string id, ComponentAttributes attributes, float x1, float y1, float x2,
                float y2)
      : PresentationAttributeSVGComponent(std::move(id), std::move(attributes)),
        x1(x1),
        y1(y1),
        x2(x2),
        y2(y2) {}
  DrawPathResult getDrawPath() const override;

  const float x1;
  const float y1;
  const float x2;
  const float y2;
};

class PolygonComponent final : public PresentationAttributeSVGComponent {
 public:
  // Parses the point list. An odd number of components is a deliberate fatal stop.
  PolygonComponent(std::optional<std::string> id, std::string_view pointsText,
                   ComponentAttributes attributes);
  DrawPathResult getDrawPath() const override;

  // Whether constructing a polygon from this point list stops the process.
  static bool pointListStops(std::string_view pointsText);

  std::vector<Point> points;
};

}  // namespace tessaline
