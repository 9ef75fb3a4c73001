#include "api/svg_canvas.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "style/paint.h"

namespace tessaline {
namespace {

// Records what the canvas asks of the raster context, one line of text a call.
class RecordingRasterContext final : public RasterContext {
 public:
  void save() override { calls.push_back("save"); }
  void restore() override { calls.push_back("restore"); }
  void clip(const Path& path) override { calls.push_back("clip " + path.dump()); }
  void fill(const Path& path, FillRule rule, const Color& color) override {
    std::ostringstream line;
    line << "fill " << path.dump() << (rule == FillRule::EvenOdd ? " evenodd " : " winding ")
         << color.red << "," << color.green << "," << color.blue << "," << color.alpha;
    calls.push_back(line.str());
  }
  void stroke(const Path& path, const StrokeStyle& style, const Color& color) override {
    static const char* const kCaps[] = {"butt", "round", "square"};
    static const char* const kJoins[] = {"miter", "round", "bevel"};  // LineJoin's own order
    std::ostringstream line;
    line << "stroke " << path.dump() << " " << color.red << "," << color.green << "," << color.blue
         << "," << color.alpha << " w=" << style.width << " m=" << style.miterLimit << " "
         << kCaps[static_cast<int>(style.cap)] << " " << kJoins[static_cast<int>(style.join)];
    calls.push_back(line.str());
  }
  Image image() const override { return Image(1, 1); }

  std::vector<std::string> calls;
};

// The colour's own alpha never reaches the context: the paint's alpha replaces it. A fill rule
// given with a stroke paint plays no part, and caps and joins are mapped by name.
TEST(SVGCanvas, CallsReachingTheRasterContext) {
  Path triangle;
  triangle.moveTo({0, 0}), triangle.lineTo({10, 0}), triangle.lineTo({10, 10}), triangle.close();
  const Color orange{1, 0.5, 0, 0.25};
  using Cap = PaintStrokeCap;
  using Join = PaintStrokeLineJoin;

  RecordingRasterContext context;
  SVGCanvas canvas(context);
  canvas.drawPath(triangle, FillPaint(orange, 255), std::nullopt);
  canvas.drawPath(triangle, FillPaint(orange, 51), FillRule::EvenOdd);
  canvas.drawPath(triangle, Paint(), std::nullopt);  // neither fill nor stroke: nothing
  for (const auto& [cap, join] :
       {std::pair{Cap::Butt, Join::Miter}, {Cap::Round, Join::Bevel}, {Cap::Square, Join::Round}}) {
    canvas.drawPath(triangle, StrokePaint(orange, 128, 2.5f, 7.0f, cap, join), FillRule::EvenOdd);
  }
  // A clip always saves first, so that every clip pairs with one restore.
  canvas.clipPath(std::nullopt);
  canvas.restoreClipPath();
  canvas.clipPath(triangle);
  canvas.restoreClipPath();

  const std::string path = "M 0 0 L 10 0 L 10 10 Z";
  const std::string stroke = "stroke " + path + " 1,0.5,0,0.501961 w=2.5 m=7 ";
  EXPECT_EQ(context.calls,
            (std::vector<std::string>{
                "fill " + path + " winding 1,0.5,0,1", "fill " + path + " evenodd 1,0.5,0,0.2",
                stroke + "butt miter", stroke + "round bevel", stroke + "square round", "save",
                "restore", "save", "clip " + path, "restore"}));
}

}  // namespace
}  // namespace tessaline
