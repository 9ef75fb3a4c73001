#pragma once

#include <algorithm>
#include <optional>
#include <string_view>

#include "api/svg_canvas.h"
#include "parse/svg_event.h"

namespace tessaline::testing {

// A canvas that only knows its size: viewport mapping and paint resolution read nothing else.
class SizeOnlyCanvas final : public SVGCanvasProtocol {
 public:
  SizeOnlyCanvas(int width, int height) : width_(width), height_(height) {}
  void initCanvas(int width, int height) override { width_ = width, height_ = height; }
  int getWidth() const override { return width_; }
  int getHeight() const override { return height_; }
  void drawPath(const Path&, const Paint&, std::optional<FillRule>) override {}
  void clipPath(const std::optional<Path>&) override {}
  void restoreClipPath() override {}

 private:
  int width_, height_;
};

// A start tag from "name=value|name=value...".
inline SVGEvent tag(std::string_view text) {
  SVGEvent event{EventType::StartTag, "path", {}};
  while (!text.empty()) {
    const std::string_view item = text.substr(0, text.find('|'));
    text.remove_prefix(std::min(item.size() + 1, text.size()));
    const std::size_t equals = item.find('=');
    event.attributes.emplace_back(item.substr(0, equals), item.substr(equals + 1));
  }
  return event;
}

}  // namespace tessaline::testing
