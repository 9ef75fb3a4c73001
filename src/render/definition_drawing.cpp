// Drawing a whole definition into the box of the definition that refers to it.
#include <charconv>
#include <cmath>
#include <string>
#include <vector>

#include "parse/svg_definition.h"
#include "platform/fatal.h"
#include "render/scale_text.h"

namespace tessaline {

std::string formatScaleFactor(double value) {
  if (std::isnan(value)) return "nan";  // the sign of a NaN carries no meaning here
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  std::string text(buffer, result.ptr);
  // The shortest round-trip form may look like an integer ("1"); keep it visibly a double.
  if (text.find_first_of(".en") == std::string::npos) text += ".0";
  return text;
}

std::vector<std::string> SVGDefinition::draw(SVGCanvasProtocol& canvas, const SVGFile& svgFile,
                                             const PresentationAttributes* joinAttributes,
                                             const std::optional<Rect>& overrideViewBox) const {
  // Parse errors of a referenced definition are repeated every time it is drawn.
  std::vector<std::string> result = errorMessages;
  PresentationAttributes attributes(joinAttributes);

  if (overrideViewBox && viewBox) {
    // Only the sizes of the two boxes matter, as magnitudes; a zero-sized own box gives an
    // infinite or not-a-number factor, written as it is.
    const double sx = widthOf(*overrideViewBox) / widthOf(*viewBox);
    const double sy = heightOf(*overrideViewBox) / heightOf(*viewBox);
    // Scaling is appended to an existing transform and never invents one: a referring element
    // without any transform is a deliberate stop.
    if (!attributes.transform) {
      fatalError("a definition drawn into another box needs a transform to append its scale to");
    }
    *attributes.transform += " scale(" + formatScaleFactor(sx) + " " + formatScaleFactor(sy) + ")";
  }

  const std::optional<Rect>& box = overrideViewBox ? overrideViewBox : viewBox;
  for (const auto& component : svgComponents) {
    std::optional<std::string> error = component->draw(canvas, box, svgFile, *this, &attributes);
    if (error && !error->empty()) result.push_back(std::move(*error));
  }
  return result;
}

}  // namespace tessaline
