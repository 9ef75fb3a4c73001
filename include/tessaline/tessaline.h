#pragma once

// Tessaline: rasterizes the symbols of an SVG icon sprite into 256 x 256 RGBA images.
#include "tessaline/image.h"
#include "tessaline/raster_backend.h"
#include "tessaline/svg_file.h"
#include "tessaline/tessaline_util.h"
