#pragma once

#include <optional>
#include <string>
#include <vector>

#include "api/svg_canvas.h"
#include "style/paint.h"

namespace tessaline::testing {

// A canvas that draws nothing and records every call as a line of text, so tests can assert
// which drawing decisions were made and in which order:
//   "clip -"                      clipPath without a path (a save only)
//   "clip M 0 0 L 2 0 ... Z"      clipPath with a path
//   "fill winding M ..."          drawPath with a fill paint (rule as given, "default" if absent)
//   "stroke M ..."                drawPath with a stroke paint
//   "restore"                     restoreClipPath
class RecordingCanvas final : public SVGCanvasProtocol {
 public:
  void initCanvas(int width, int height) override {
    width_ = width;
    height_ = height;
  }
  int getWidth() const override { return width_; }
  int getHeight() const override { return height_; }

  void drawPath(const Path& path, const Paint& paint, std::optional<FillRule> fillRule) override {
    if (const auto* fill = dynamic_cast<const FillPaint*>(&paint)) {
      const char* rule = !fillRule                        ? "default"
                         : *fillRule == FillRule::Winding ? "winding"
                                                          : "evenodd";
      calls.push_back(std::string("fill ") + rule + " " + path.dump(3));
      fills.push_back(*fill);
    } else if (const auto* stroke = dynamic_cast<const StrokePaint*>(&paint)) {
      calls.push_back("stroke " + path.dump(3));
      strokes.push_back(*stroke);
    } else {
      calls.push_back("other " + path.dump(3));
    }
  }
  void clipPath(const std::optional<Path>& path) override {
    calls.push_back(path ? "clip " + path->dump(3) : std::string("clip -"));
  }
  void restoreClipPath() override { calls.push_back("restore"); }

  std::vector<std::string> calls;
  std::vector<FillPaint> fills;
  std::vector<StrokePaint> strokes;

 private:
  int width_ = 256;
  int height_ = 256;
};

}  // namespace tessaline::testing
