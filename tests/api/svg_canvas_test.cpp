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
    std::string op;
    std::string path;
    FillRule rule = FillRule::Winding;
    Color color;
    StrokeStyle style;
  };

  void save() override { record("save"); }
  void restore() override { record("restore"); }
  void clip(const Path& path) override { record("clip").path = path.dump(); }
  void fill(const Path& path, FillRule rule, const Color& color) override {
    Call& call = record("fill");
    call.path = path.dump();
    call.rule = rule;
    call.color = color;
  }
  void stroke(const Path& path, const StrokeStyle& style, const Color& color) override {
    Call& call = record("stroke");
    call.path = path.dump();
    call.color = color;
    call.style = style;
  }
  Image image() const override { return Image(1, 1); }

  std::vector<Call> calls;

 private:
  Call& record(std::string op) {
    calls.emplace_back();
    calls.back().op = std::move(op);
    return calls.back();
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

TEST(SVGCanvas, FillUsesTheRuleAndThePaintAlpha) {
  RecordingRasterContext context;
  SVGCanvas canvas(context);
  canvas.drawPath(triangle(), FillPaint(kOrange, 255), std::nullopt);
  canvas.drawPath(triangle(), FillPaint(kOrange, 51), FillRule::EvenOdd);
  ASSERT_EQ(context.calls.size(), 2u);
  EXPECT_EQ(context.calls[0].op, "fill");
  EXPECT_EQ(context.calls[0].path, "M 0 0 L 10 0 L 10 10 Z");
  EXPECT_EQ(context.calls[0].rule, FillRule::Winding);
  EXPECT_EQ(context.calls[0].color, (Color{1, 0.5, 0, 1}));
  EXPECT_EQ(context.calls[1].rule, FillRule::EvenOdd);
  EXPECT_EQ(context.calls[1].color, (Color{1, 0.5, 0, 51 / 255.0}));
}

TEST(SVGCanvas, StrokeMapsWidthMiterCapAndJoinByName) {
  struct Variant {
    PaintStrokeCap cap;
    PaintStrokeLineJoin join;
    LineCap expectedCap;
    LineJoin expectedJoin;
  };
  const Variant variants[] = {
      {PaintStrokeCap::Butt, PaintStrokeLineJoin::Miter, LineCap::Butt, LineJoin::Miter},
      {PaintStrokeCap::Round, PaintStrokeLineJoin::Bevel, LineCap::Round, LineJoin::Bevel},
      {PaintStrokeCap::Square, PaintStrokeLineJoin::Round, LineCap::Square, LineJoin::Round},
  };
  for (const Variant& v : variants) {
    SCOPED_TRACE(static_cast<int>(v.join));
    RecordingRasterContext context;
    SVGCanvas canvas(context);
    // A fill rule given with a stroke paint plays no part.
    canvas.drawPath(triangle(), StrokePaint(kOrange, 128, 2.5f, 7.0f, v.cap, v.join),
                    FillRule::EvenOdd);
    ASSERT_EQ(context.calls.size(), 1u);
    const auto& call = context.calls[0];
    EXPECT_EQ(call.op, "stroke");
    EXPECT_EQ(call.color, (Color{1, 0.5, 0, 128 / 255.0}));
    EXPECT_EQ(call.style.width, 2.5);
    EXPECT_EQ(call.style.miterLimit, 7.0);
    EXPECT_EQ(call.style.cap, v.expectedCap);
    EXPECT_EQ(call.style.join, v.expectedJoin);
  }
}

TEST(SVGCanvas, OtherPaintsDrawNothing) {
  RecordingRasterContext context;
  SVGCanvas canvas(context);
  canvas.drawPath(triangle(), Paint(), std::nullopt);
  EXPECT_TRUE(context.calls.empty());
}

TEST(SVGCanvas, ClipAlwaysSavesFirstAndClipsOnlyWithAPath) {
  RecordingRasterContext context;
  SVGCanvas canvas(context);
  canvas.clipPath(std::nullopt);
  canvas.restoreClipPath();
  canvas.clipPath(triangle());
  canvas.restoreClipPath();
  std::vector<std::string> ops;
  for (const auto& call : context.calls) ops.push_back(call.op);
  EXPECT_EQ(ops, (std::vector<std::string>{"save", "restore", "save", "clip", "restore"}));
  EXPECT_EQ(context.calls[3].path, "M 0 0 L 10 0 L 10 10 Z");
}

}  // namespace
}  // namespace tessaline
