// PNG output of an Image through libpng's simplified API, which keeps libpng's setjmp-based error
// handling inside libpng.
#include <png.h>

#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

#include "tessaline/image.h"

namespace tessaline {
namespace {

png_image describe(const Image& image) {
  png_image description;
  std::memset(&description, 0, sizeof description);
  description.version = PNG_IMAGE_VERSION;
  description.width = static_cast<png_uint_32>(image.width());
  description.height = static_cast<png_uint_32>(image.height());
  // 8-bit RGBA in sRGB is straight (not premultiplied) alpha in the simplified API.
  description.format = PNG_FORMAT_RGBA;
  // Rendered icons are written far more often than they are read back, and encoding must stay
  // cheap next to rendering: libpng's fast mode writes without row filters at zlib level 3.
  description.flags = PNG_IMAGE_FLAG_FAST;
  return description;
}

bool encodable(const Image& image) {
  return image.width() > 0 && image.height() > 0 &&
         image.bytes().size() ==
             static_cast<std::size_t>(image.width()) * static_cast<std::size_t>(image.height()) * 4;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> Image::encodePng() const {
  if (!encodable(*this)) return std::nullopt;
  png_image description = describe(*this);
  const png_int_32 rowStride = width_ * 4;
  // Allocating the worst case up front lets libpng compress once instead of measuring first.
  png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(description);
  std::vector<std::uint8_t> out(size);
  if (!png_image_write_to_memory(&description, out.data(), &size, 0, bytes_.data(), rowStride,
                                 nullptr)) {
    png_image_free(&description);
    return std::nullopt;
  }
  out.resize(size);
  return out;
}

bool Image::writePng(const std::string& filePath) const {
  if (!encodable(*this)) return false;
  png_image description = describe(*this);
  if (!png_image_write_to_file(&description, filePath.c_str(), 0, bytes_.data(), width_ * 4,
                               nullptr)) {
    png_image_free(&description);
    return false;
  }
  return true;
}

}  // namespace tessaline
