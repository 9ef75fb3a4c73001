// TEMPORARY: drawing is not built yet. Every drawing entry point keeps the base behaviour (shapes
// report that they cannot draw yet) so the parsing side links and runs. Replaced by the rendering
// work; delete this file when its functions exist elsewhere.
#include "api/svg_canvas.h"
#include "geometry/basic_shapes.h"
#include "parse/svg_definition.h"
#include "tessaline/svg_file.h"
#include "tessaline/tessaline_util.h"

namespace tessaline {

std::optional<std::string> PresentationAttributeSVGComponent::draw(
    SVGCanvasProtocol& canvas, const std::optional<Rect>& viewBox, const SVGFile& svgFile,
    const SVGDefinition& forSvg, const PresentationAttributes* joinAttributes) const {
  return SVGComponent::draw(canvas, viewBox, svgFile, forSvg, joinAttributes);
}

std::optional<std::string> UseComponent::draw(SVGCanvasProtocol& canvas,
                                              const std::optional<Rect>& viewBox,
                                              const SVGFile& svgFile, const SVGDefinition& forSvg,
                                              const PresentationAttributes* joinAttributes) const {
  return SVGComponent::draw(canvas, viewBox, svgFile, forSvg, joinAttributes);
}

std::optional<std::string> ClipPathComponent::draw(SVGCanvasProtocol& canvas,
                                                   const std::optional<Rect>& viewBox,
                                                   const SVGFile& svgFile,
                                                   const SVGDefinition& forSvg,
                                                   const PresentationAttributes* joinAttributes) const {
  return SVGComponent::draw(canvas, viewBox, svgFile, forSvg, joinAttributes);
}

std::vector<std::string> SVGDefinition::draw(SVGCanvasProtocol&, const SVGFile&,
                                             const PresentationAttributes*,
                                             const std::optional<Rect>&) const {
  return errorMessages;
}

TessalineResponse TessalineUtil::loadSVGImage(const TessalineRequest& rasterizeRequest) {
  return TessalineResponse(rasterizeRequest.key, Image(kImageSize, kImageSize),
                           rasterizeRequest.svg->errorMessages);
}

}  // namespace tessaline
