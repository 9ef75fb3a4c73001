#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/raster/coverage_rasterizer.h"
#include "platform/raster/pixel_box.h"

namespace tessaline {

// The clip part of a graphics-state stack. A clip is a box of pixels outside which nothing shows,
// plus, unless the clip is a set of whole pixels, an 8-bit coverage mask valid inside the box.
// Unclipped states hold the canvas box and no mask, so they cost nothing; save() shares the
// current mask and only a clip made after it allocates a new one (copy on write). Mask buffers
// are pooled for the life of the stack.
class ClipStack {
 public:
  ClipStack(int width, int height);

  void save();
  // Returns to the state of the matching save(); without one it does nothing.
  void restore();
  int depth() const { return static_cast<int>(states_.size()) - 1; }

  // Pixels outside this box are clipped away; empty when everything is.
  const PixelBox& box() const { return states_.back().box; }
  // Null when every pixel inside box() is wholly visible; else width() bytes per row, valid
  // inside box().
  const std::uint8_t* mask() const { return states_.back().mask; }

  // Intersects the current clip with the non-zero coverage of the shape in `rasterizer`, which
  // must have been begun with a box inside box(); sweeps the rasterizer.
  void intersect(CoverageRasterizer& rasterizer);

 private:
  struct State {
    PixelBox box;
    std::uint8_t* mask = nullptr;
    bool ownsMask = false;  // the mask was made at this level and goes back to the pool with it
  };

  std::uint8_t* acquireMask();
  void releaseMask(std::uint8_t* mask);

  int width_;
  int height_;
  std::vector<State> states_;
  std::vector<std::unique_ptr<std::uint8_t[]>> masks_;  // every mask ever allocated
  std::vector<std::uint8_t*> freeMasks_;
};

}  // namespace tessaline
