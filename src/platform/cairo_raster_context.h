#pragma once

#include <memory>

#include "platform/raster_context.h"

namespace tessaline {

// A raster context drawing into a cairo ARGB32 image surface of `width` x `height` pixels,
// transparent to begin with. Cairo stays behind this factory: no cairo type leaves its source
// file. Never null; when cairo cannot allocate the surface, drawing does nothing and image() is
// transparent.
std::unique_ptr<RasterContext> makeCairoRasterContext(int width, int height);

}  // namespace tessaline
