#pragma once

#include <memory>
#include <optional>
#include <string>

#include "parse/attribute_set_interner.h"
#include "platform/geometry_types.h"
#include "platform/path.h"
#include "style/presentation_attributes.h"

namespace tessaline {

class SVGCanvasProtocol;
class SVGFile;
class SVGDefinition;

// A shape's outline in user units, an error or warning text, and the fill rule (absent: non-zero).
struct DrawPathResult {
  std::optional<Path> path;
  std::optional<std::string> message;
  std::optional<FillRule> fillRule;
};

// Root of the component hierarchy: one drawable element of a definition. Components are immutable
// after parsing and may be drawn any number of times, from several threads at once.
class SVGComponent {
 public:
  explicit SVGComponent(std::optional<std::string> id) : id(std::move(id)) {}
  virtual ~SVGComponent() = default;
  SVGComponent(const SVGComponent&) = delete;
  SVGComponent& operator=(const SVGComponent&) = delete;

  // Draws onto `canvas` and returns one error text, or nullopt when all went well. `viewBox` is
  // the box of the definition being drawn, `forSvg` the definition owning this component, and
  // `joinAttributes` the styling inherited from the caller (null when there is none).
  virtual std::optional<std::string> draw(SVGCanvasProtocol& canvas,
                                          const std::optional<Rect>& viewBox,
                                          const SVGFile& svgFile, const SVGDefinition& forSvg,
                                          const PresentationAttributes* joinAttributes) const;

  const std::optional<std::string> id;
};

// Base of every shape: owns the element's styling and draws the outline its subclass builds.
class PresentationAttributeSVGComponent : public SVGComponent {
  // Declared first: `attributes` refers to it.
  const std::shared_ptr<const PresentationAttributes> sharedAttributes_;

 public:
  PresentationAttributeSVGComponent(std::string id, ComponentAttributes attributes)
      : SVGComponent(std::move(id)),
        sharedAttributes_(std::move(attributes).take()),
        attributes(*sharedAttributes_) {}

  std::optional<std::string> draw(SVGCanvasProtocol& canvas, const std::optional<Rect>& viewBox,
                                  const SVGFile& svgFile, const SVGDefinition& forSvg,
                                  const PresentationAttributes* joinAttributes) const override;

  virtual DrawPathResult getDrawPath() const;

  const PresentationAttributes& attributes;

 private:
  struct ClipResult {
    std::optional<Path> path;
    std::optional<std::string> error;
  };
  ClipResult getClipPath(const SVGDefinition& forSvg,
                         const PresentationAttributes& useAttributes) const;
};

// A `use` element: draws a component of the definition's `defs`, or another symbol.
class UseComponent final : public SVGComponent {
  const std::shared_ptr<const PresentationAttributes> sharedAttributes_;

 public:
  UseComponent(std::string id, std::string href, std::string hrefLink,
               ComponentAttributes attributes)
      : SVGComponent(std::move(id)),
        sharedAttributes_(std::move(attributes).take()),
        href(std::move(href)),
        hrefLink(std::move(hrefLink)),
        attributes(*sharedAttributes_) {}

  std::optional<std::string> draw(SVGCanvasProtocol& canvas, const std::optional<Rect>& viewBox,
                                  const SVGFile& svgFile, const SVGDefinition& forSvg,
                                  const PresentationAttributes* joinAttributes) const override;

  const std::string href;
  const std::string hrefLink;
  const PresentationAttributes& attributes;

 private:
  std::optional<std::string> getLinkKey() const;
};

// A `clipPath` element: never painted itself; its first shape gives a clip outline.
class ClipPathComponent final : public SVGComponent {
 public:
  ClipPathComponent(std::string id, std::shared_ptr<SVGDefinition> definitions);
  ~ClipPathComponent() override;

  std::optional<std::string> draw(SVGCanvasProtocol& canvas, const std::optional<Rect>& viewBox,
                                  const SVGFile& svgFile, const SVGDefinition& forSvg,
                                  const PresentationAttributes* joinAttributes) const override;

  std::optional<Path> getClipPath() const;

  const SVGDefinition& definitions() const { return *definitions_; }

 private:
  friend class SVGDefinition;  // takes the nested definition apart without recursion
  std::shared_ptr<SVGDefinition> definitions_;
};

}  // namespace tessaline
