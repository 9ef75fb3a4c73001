#include "tessaline/tessaline_util.h"

#include <optional>
#include <string>
#include <vector>

#include "api/svg_canvas.h"
#include "parse/svg_definition.h"
#include "platform/raster_context.h"
#include "style/presentation_attributes.h"

namespace tessaline {

TessalineResponse TessalineUtil::loadSVGImage(const TessalineRequest& rasterizeRequest) {
  // Everything lives for this call only: a parsed file may be drawn from several threads at once.
  // The request's width and height are deliberately ignored; the image size is fixed.
  std::unique_ptr<RasterContext> context =
      makeRasterContext(rasterizeRequest.backend, kImageSize, kImageSize);
  SVGCanvas canvas(*context);

  std::vector<std::string> errors;
  const SVGDefinition* svg = rasterizeRequest.svg.get();
  if (svg != nullptr) {
    // Parse errors always come before drawing errors.
    errors = svg->errorMessages;
    const PresentationAttributes inherited(nullptr);
    // The top level runs its own loop rather than SVGDefinition::draw: no box override, and no
    // scale appended to the styling.
    for (const auto& component : svg->svgComponents) {
      std::optional<std::string> error =
          component->draw(canvas, svg->viewBox, rasterizeRequest.svgFile, *svg, &inherited);
      if (error && !error->empty()) errors.push_back(std::move(*error));
    }
  }
  return TessalineResponse(rasterizeRequest.key, context->takeImage(), std::move(errors));
}

}  // namespace tessaline
