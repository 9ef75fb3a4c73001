#include "platform/raster/clip_stack.h"

#include <algorithm>
#include <cstring>

#include "platform/raster/pixel_ops.h"

namespace tessaline {
namespace {

// Writes the coverage of a clip shape, multiplied by the previous mask, into a fresh mask whose
// box has been cleared; notes where coverage is non-zero and whether all of it is full.
class MaskWriter {
 public:
  MaskWriter(std::uint8_t* mask, const std::uint8_t* previous, int stride)
      : mask_(mask), previous_(previous), stride_(stride) {}

  void solid(int y, int x, int length, std::uint8_t coverage) {
    std::uint8_t* out = mask_ + offset(y, x);
    if (previous_ == nullptr) {
      std::memset(out, coverage, static_cast<std::size_t>(length));
    } else {
      const std::uint8_t* in = previous_ + offset(y, x);
      for (int i = 0; i < length; ++i)
        out[i] = static_cast<std::uint8_t>(multiply255(in[i], coverage));
    }
    note(y, x, length, coverage == 255 ? length : 0);
  }

  void varying(int y, int x, int length, const std::uint8_t* coverage) {
    std::uint8_t* out = mask_ + offset(y, x);
    const std::uint8_t* in = previous_ == nullptr ? nullptr : previous_ + offset(y, x);
    int full = 0;
    int first = length, last = -1;
    for (int i = 0; i < length; ++i) {
      out[i] =
          in == nullptr ? coverage[i] : static_cast<std::uint8_t>(multiply255(in[i], coverage[i]));
      if (coverage[i] == 0) continue;
      full += coverage[i] == 255;
      first = std::min(first, i);
      last = i;
    }
    if (last >= 0) note(y, x + first, last - first + 1, full);
  }

  PixelBox extent() const { return extent_; }
  std::int64_t fullPixels() const { return fullPixels_; }

 private:
  std::ptrdiff_t offset(int y, int x) const { return static_cast<std::ptrdiff_t>(y) * stride_ + x; }

  void note(int y, int x, int length, int full) {
    if (extent_.empty()) {
      extent_ = {x, y, x + length, y + 1};
    } else {
      extent_ = {std::min(extent_.x0, x), extent_.y0, std::max(extent_.x1, x + length), y + 1};
    }
    fullPixels_ += full;
  }

  std::uint8_t* mask_;
  const std::uint8_t* previous_;
  int stride_;
  PixelBox extent_;
  std::int64_t fullPixels_ = 0;
};

}  // namespace

ClipStack::ClipStack(int width, int height)
    : width_(std::max(width, 0)), height_(std::max(height, 0)) {
  states_.push_back({{0, 0, width_, height_}, nullptr, false});
}

void ClipStack::save() {
  State copy = states_.back();
  copy.ownsMask = false;
  states_.push_back(copy);
}

void ClipStack::restore() {
  if (states_.size() < 2) return;
  if (states_.back().ownsMask) releaseMask(states_.back().mask);
  states_.pop_back();
}

void ClipStack::intersect(CoverageRasterizer& rasterizer) {
  State& state = states_.back();
  const PixelBox box = rasterizer.bounds().intersected(state.box);
  std::uint8_t* fresh = box.empty() ? nullptr : acquireMask();
  MaskWriter writer(fresh, state.mask, width_);
  if (fresh != nullptr) {
    for (int y = box.y0; y < box.y1; ++y) {
      std::memset(fresh + static_cast<std::ptrdiff_t>(y) * width_ + box.x0, 0,
                  static_cast<std::size_t>(box.width()));
    }
    rasterizer.sweep(FillRule::Winding, writer);
  } else {
    rasterizer.begin({});  // drops the shape
  }

  const PixelBox extent = writer.extent().intersected(box);
  const std::int64_t area = extent.empty() ? 0 : std::int64_t{extent.width()} * extent.height();
  if (extent.empty() || writer.fullPixels() == area) {
    // Nothing left, or whole pixels only: the box says it all and the previous mask (if any)
    // still holds inside it.
    if (fresh != nullptr) releaseMask(fresh);
    state.box = extent.empty() ? PixelBox{} : extent;
    if (extent.empty()) {
      if (state.ownsMask) releaseMask(state.mask);
      state.mask = nullptr;
      state.ownsMask = false;
    }
    return;
  }
  if (state.ownsMask) releaseMask(state.mask);
  state.mask = fresh;
  state.ownsMask = true;
  state.box = extent;
}

std::uint8_t* ClipStack::acquireMask() {
  if (!freeMasks_.empty()) {
    std::uint8_t* mask = freeMasks_.back();
    freeMasks_.pop_back();
    return mask;
  }
  masks_.push_back(
      std::make_unique_for_overwrite<std::uint8_t[]>(static_cast<std::size_t>(width_) * height_));
  return masks_.back().get();
}

void ClipStack::releaseMask(std::uint8_t* mask) {
  freeMasks_.push_back(mask);
}

}  // namespace tessaline
