#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "parse/svg_component.h"
#include "platform/geometry_types.h"
#include "platform/path.h"
#include "style/presentation_attributes.h"

namespace tessaline {

class SVGXMLParserProtocol;
class AttributeSetInterner;
class SVGCanvasProtocol;
class SVGFile;

// One parsed definition: a symbol, a `defs` element or a `clipPath` element. Built once by
// parseData and only read afterwards.
class SVGDefinition {
 public:
  SVGDefinition() = default;
  // Releases nested definitions (of `defs` and `clipPath`) iteratively, so arbitrarily deep
  // nesting cannot exhaust the stack.
  ~SVGDefinition();
  SVGDefinition(const SVGDefinition&) = delete;
  SVGDefinition& operator=(const SVGDefinition&) = delete;

  // Consumes events up to and including the end tag that closes this definition ("symbol",
  // "defs" or "clippath", whichever) or the end of the events. The caller has already consumed
  // the definition's own start tag. Components with equal styling share one copy through
  // `interner`; a document passes one for all its symbols (null: one for this call).
  void parseData(SVGXMLParserProtocol& parser, const PresentationAttributes* symbolAttributes,
                 AttributeSetInterner* interner = nullptr);

  // Draws every component with the inherited styling, scaled from this definition's box into
  // `overrideViewBox` when both are present; returns this definition's parse errors followed by
  // the components' drawing errors.
  std::vector<std::string> draw(SVGCanvasProtocol& canvas, const SVGFile& svgFile,
                                const PresentationAttributes* joinAttributes,
                                const std::optional<Rect>& overrideViewBox) const;

  // The outline of the clip path stored under `key` among this definition's `defs`.
  std::optional<Path> getClipPath(std::string_view key) const;

  std::vector<std::shared_ptr<SVGComponent>> svgComponents;
  std::string id;
  std::vector<std::string> errorMessages;
  std::optional<Rect> viewBox;
  std::shared_ptr<SVGDefinition> svgSubDefinitions;
};

}  // namespace tessaline
