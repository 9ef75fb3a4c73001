#pragma once

#include <optional>
#include <string>
#include <vector>

#include "api/svg_canvas.h"
#include "style/paint.h"

namespace tessaline::testing {

// A 256-pixel canvas that draws nothing and records each call as a line of text, so tests can
// assert which drawing decisions were made and in which order: "clip -" (a save without a clip
// path), "clip M 0 0 ... Z", "fill winding|evenodd|default M ...", "stroke M ...", "restore".
class RecordingCanvas final : public SVGCanvasProtocol {
 public:
  void initCanvas(int, int) override {}
  int getWidth() const override { return 256; }
  int getHeight() const override { return 256; }

  void drawPath(const Path& path, const Paint& paint, std::optional<FillRule> rule) override {
    std::string kind = "other";
    if (const auto* fill = dynamic_cast<const FillPaint*>(&paint)) {
      kind = !rule ? "fill default" : *rule == FillRule::Winding ? "fill winding" : "fill evenodd";
      fills.push_back(*fill);
    } else if (const auto* stroke = dynamic_cast<const StrokePaint*>(&paint)) {
      kind = "stroke";
      strokes.push_back(*stroke);
    }
    calls.push_back(kind + " " + path.dump(3));
  }
  void clipPath(const std::optional<Path>& path) override {
    calls.push_back(path ? "clip " + path->dump(3) : std::string("clip -"));
  }
  void restoreClipPath() override { calls.push_back("restore"); }

  std::vector<std::string> calls;
  std::vector<FillPaint> fills;
  std::vector<StrokePaint> strokes;
};

}  // namespace tessaline::testing
