#include "platform/raster_context.h"

#include "platform/cairo_raster_context.h"
#include "platform/raster/native_raster_context.h"

namespace tessaline {

std::unique_ptr<RasterContext> makeRasterContext(RasterBackend backend, int width, int height) {
  switch (backend) {
    case RasterBackend::Cairo:
      return makeCairoRasterContext(width, height);
    case RasterBackend::Native:
      return makeNativeRasterContext(width, height);
  }
  return makeCairoRasterContext(width, height);
}

}  // namespace tessaline
