#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tessaline/export.h"
#include "tessaline/image.h"
#include "tessaline/raster_backend.h"

namespace tessaline {

class SVGFile;
class SVGDefinition;

// One request to draw a definition of a parsed document. `width` and `height` are carried for
// the host but not consulted: the image size is a fixed 256 x 256.
class TESSALINE_API TessalineRequest {
 public:
  TessalineRequest(const SVGFile& svgFile, std::shared_ptr<const SVGDefinition> svg,
                   std::optional<std::string> key, int width, int height,
                   RasterBackend backend = RasterBackend::Native)
      : svgFile(svgFile),
        svg(std::move(svg)),
        key(std::move(key)),
        width(width),
        height(height),
        backend(backend) {}

  const SVGFile& svgFile;
  const std::shared_ptr<const SVGDefinition> svg;
  const std::optional<std::string> key;
  const int width;
  const int height;
  const RasterBackend backend;
};

// What a request produced: the key asked for, the image (absent only when no definition was
// found) and every error text met while parsing and drawing, in order.
class TESSALINE_API TessalineResponse {
 public:
  TessalineResponse(std::optional<std::string> key, std::optional<Image> bitmap,
                    std::vector<std::string> errors)
      : key_(std::move(key)), bitmap_(std::move(bitmap)), errors_(std::move(errors)) {}

  const std::optional<std::string>& key() const { return key_; }
  const std::optional<Image>& bitmap() const { return bitmap_; }
  const std::vector<std::string>& errors() const { return errors_; }

 private:
  std::optional<std::string> key_;
  std::optional<Image> bitmap_;
  std::vector<std::string> errors_;
};

class TESSALINE_API TessalineUtil {
 public:
  static constexpr int kImageSize = 256;

  // Draws the request's definition into a fresh 256 x 256 image. Never fails as a whole: problems
  // travel as texts in the response's errors, parse errors first.
  static TessalineResponse loadSVGImage(const TessalineRequest& rasterizeRequest);

  // A fixed feature flag for hosts; always false. Nothing in the library consults it.
  static bool isTessalineEnabled() { return false; }
};

}  // namespace tessaline
