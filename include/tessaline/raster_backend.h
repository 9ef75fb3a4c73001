#pragma once

namespace tessaline {

// Which rasterizer draws a response. Native is our own scanline renderer and the default; Cairo is
// the reference it is tested against, kept selectable for comparisons and bug reports.
enum class RasterBackend { Native, Cairo };

}  // namespace tessaline
