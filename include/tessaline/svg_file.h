#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "tessaline/export.h"
#include "tessaline/tessaline_util.h"

namespace tessaline {

class SVGDefinition;

// A parsed SVG document: its top-level `symbol` elements as definitions keyed by id.
//
//   tessaline::SVGFile file(documentText);
//   tessaline::TessalineResponse response = file.getUIImageForKey("icon-home");
//   if (response.bitmap()) response.bitmap()->writePng("home.png");
//   for (const std::string& error : response.errors()) std::puts(error.c_str());
//
// Parsing happens once, in the constructor, and never fails: text that is not well-formed XML
// gives an empty table. A parsed file is not changed by rendering, so several threads may render
// from one file at once.
class TESSALINE_API SVGFile {
 public:
  explicit SVGFile(std::string_view rawFile);
  ~SVGFile();
  SVGFile(SVGFile&&) noexcept;
  SVGFile& operator=(SVGFile&&) noexcept;

  // Renders the symbol stored under `key` (exact match). An unknown key gives a response without
  // a bitmap and the single error "No SVG Definition found for key". `backend` picks the
  // rasterizer; both give the same errors and nearly the same pixels.
  TessalineResponse getUIImageForKey(const std::string& key,
                                     RasterBackend backend = RasterBackend::Native) const;

  // Definitions by id, in byte order of the ids.
  std::map<std::string, std::shared_ptr<const SVGDefinition>> symbolDefinitions;
  // Where the document came from: empty unless the host sets it.
  std::string url;
};

}  // namespace tessaline
