#pragma once

#include <nlohmann/json.hpp>

namespace tessaline {
class SVGDefinition;
class SVGFile;
}  // namespace tessaline

namespace tessaline::cli {

// The parsed form of a definition, as `inspect` prints it:
//   {"id": str, "viewBox": null | [x, y, width, height], "errors": [str, ...],
//    "components": [COMP, ...], "defs": null | DEF}
// Each component carries "type" ("path", "rect", "circle", "ellipse", "line", "polygon", "use",
// "clipPath"), "id" (str or null) and the fields of its type; shapes and `use` carry "attributes",
// an object holding only the presentation attributes that are present, under their attribute
// names. Numbers are the stored 32-bit values, written so that they read back as the same float;
// infinities and NaN, which JSON cannot hold, are written as the strings "Infinity", "-Infinity"
// and "NaN". Built without recursion, whatever the nesting depth.
nlohmann::ordered_json definitionJson(const SVGDefinition& definition);

// {"url": str, "symbols": {KEY: DEF, ...}} with the keys in byte order.
nlohmann::ordered_json documentJson(const SVGFile& file);

}  // namespace tessaline::cli
