#include "api/svg_canvas.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "style/paint.h"

namespace tessaline {
namespace {

// Records what the canvas asks of the raster context.
class RecordingRasterContext final : public RasterContext {
 public:
  struct Call {
    std::string op, path;
    FillRule rule = FillRule::Winding;
    Color color;
    StrokeStyle style;
  };
  void save() override { add("save"); }
  void restore() override { add("restore"); }
  void clip(const Path& path) override { add("clip", path.dump()); }
  void fill(const Path& path, FillRule rule, const Color& color) override {
    add("fill", path.dump(), rule, color);
  }
  void stroke(const Path& path, const StrokeStyle& style, const Color& color) override {
    add("stroke", path.dump(), FillRule::Winding, color, style);
  }
  Image image() const override { return Image(1, 1); }

  std::vector<Call> calls;

 private:
  void add(std::string op, std::string path = "", FillRule rule = FillRule::Winding,
           Color color = {}, StrokeStyle style = {}) {
    calls.push_back({std::move(op), std::move(path), rule, color, style});
  }
};

Path triangle() {
  Path p;
  p.moveTo({0, 0});
  p.lineTo({10, 0});
  p.lineTo({10, 10});
  p.close();
  return p;
}

constexpr Color kOrange{1, 0.5, 0, 0.25};  // the colour's own alpha never reaches the context
constexpr const char* kTriangle = "M 0 0 L 10 0 L 10 10 Z";

TEST(SVGCanvas, FillUsesTheRuleAndThePaintAlphaAndOtherPaintsDrawNothing) {
  RecordingRasterContext context;
  SVGCanvas canvas(context);
  canvas.drawPath(triangle(), FillPaint(kOrange, 255), std::nullopt);
  canvas.drawPath(triangle(), FillPaint(kOrange, 51), FillRule::EvenOdd);
  canvas.drawPath(triangle(), Paint(), std::nullopt);
  ASSERT_EQ(context.calls.size(), 2u);
  EXPECT_EQ(context.calls[0].op, "fill");
  EXPECT_EQ(context.calls[0].path, kTriangle);
  EXPECT_EQ(context.calls[0].rule, FillRule::Winding);
  EXPECT_EQ(context.calls[0].color, (Color{1, 0.5, 0, 1}));
  EXPECT_EQ(context.calls[1].op, "fill");
  EXPECT_EQ(context.calls[1].rule, FillRule::EvenOdd);
  EXPECT_EQ(context.calls[1].color, (Color{1, 0.5, 0, 51 / 255.0}));
}

TEST(SVGCanvas, StrokeMapsWidthMiterCapAndJoinByName) {
  using Cap = PaintStrokeCap;
  using Join = PaintStrokeLineJoin;
  const std::pair<Cap, Join> variants[] = {
      {Cap::Butt, Join::Miter}, {Cap::Round, Join::Bevel}, {Cap::Square, Join::Round}};
  RecordingRasterContext context;
  SVGCanvas canvas(context);
  for (const auto& [cap, join] : variants) {
    // A fill rule given with a stroke paint plays no part.
    canvas.drawPath(triangle(), StrokePaint(kOrange, 128, 2.5f, 7.0f, cap, join),
                    FillRule::EvenOdd);
  }
  ASSERT_EQ(context.calls.size(), 3u);
  const std::pair<LineCap, LineJoin> expected[] = {{LineCap::Butt, LineJoin::Miter},
                                                   {LineCap::Round, LineJoin::Bevel},
                                                   {LineCap::Square, LineJoin::Round}};
  for (std::size_t i = 0; i < 3; ++i) {
    const auto& call = context.calls[i];
    EXPECT_EQ(call.op, "stroke");
    EXPECT_EQ(call.path, kTriangle);
    EXPECT_EQ(call.color, (Color{1, 0.5, 0, 128 / 255.0}));
    EXPECT_EQ(call.style.width, 2.5);
    EXPECT_EQ(call.style.miterLimit, 7.0);
    EXPECT_EQ(call.style.cap, expected[i].first) << i;
    EXPECT_EQ(call.style.join, expected[i].second) << i;
  }
}

TEST(SVGCanvas, ClipAlwaysSavesFirstAndClipsOnlyWithAPath) {
  RecordingRasterContext context;
  SVGCanvas canvas(context);
  canvas.clipPath(std::nullopt);
  canvas.restoreClipPath();
  canvas.clipPath(triangle());
  canvas.restoreClipPath();
  std::vector<std::string> ops;
  for (const auto& call : context.calls) ops.push_back(call.op + " " + call.path);
  EXPECT_EQ(ops, (std::vector<std::string>{"save ", "restore ", "save ",
                                           std::string("clip ") + kTriangle, "restore "}));
}

}  // namespace
}  // namespace tessaline
