// Renders a generated corpus of fills, strokes and clips, the example sprite and every test
// document with the native backend and with cairo, the reference, and bounds how far they differ.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "platform/raster_context.h"
#include "platform/raster_coverage_grid.h"
#include "support/test_support.h"
#include "tessaline/tessaline.h"

namespace tessaline {
namespace {

using raster_testing::pi;
using raster_testing::polyline;

constexpr int kSize = 128;

// Differences up to this are what two anti-aliasing methods may disagree by on any one edge
// pixel; the shape corpus below shows where it comes from.
constexpr int kEdgeNoise = 32;

// How close the native rendering must stay to cairo's; compared premultiplied, so that colours
// under near-zero alpha do not count.
struct Bounds {
  int max = 255;         // largest difference of a premultiplied channel
  double mean;           // mean channel difference over the pixels either image has drawn on
  double shareOver = 1;  // share of those with a channel differing past kEdgeNoise
};

// Returns how many pixels either image has drawn on.
long long expectClose(const Image& cairo, const Image& native, const Bounds& bounds) {
  const auto premultiplied = [](int channel, int alpha) { return (channel * alpha + 127) / 255; };
  int max = 0;
  long long touched = 0, sum = 0, over = 0;
  for (int y = 0; y < cairo.height(); ++y) {
    for (int x = 0; x < cairo.width(); ++x) {
      const Rgba e = cairo.pixel(x, y), a = native.pixel(x, y);
      if (e.a == 0 && a.a == 0) continue;
      ++touched;
      const int d[4] = {premultiplied(e.r, e.a) - premultiplied(a.r, a.a),
                        premultiplied(e.g, e.a) - premultiplied(a.g, a.a),
                        premultiplied(e.b, e.a) - premultiplied(a.b, a.a), e.a - a.a};
      int pixelMax = 0;
      for (const int v : d) pixelMax = std::max(pixelMax, std::abs(v)), sum += std::abs(v);
      over += pixelMax > kEdgeNoise;
      max = std::max(max, pixelMax);
    }
  }
  const double drawn = static_cast<double>(std::max(touched, 1LL));
  EXPECT_LE(max, bounds.max);
  EXPECT_LE(static_cast<double>(sum) / (4 * drawn), bounds.mean);
  EXPECT_LE(static_cast<double>(over) / drawn, bounds.shareOver);
  return touched;
}

// A deterministic generator of shapes whose values do not depend on the standard library's
// distributions.
struct Generator {
  std::mt19937 engine;
  double uniform(double lo, double hi) {
    return lo + (hi - lo) * static_cast<double>(engine() % 1000003) / 1000003.0;
  }
  int below(int n) { return static_cast<int>(engine() % static_cast<unsigned>(n)); }
  Point point(double margin = 8) {
    return {uniform(margin, kSize - margin), uniform(margin, kSize - margin)};
  }
  Color color() {
    const double alpha = below(3) == 0 ? uniform(0.2, 0.9) : 1.0;
    return {uniform(0, 1), uniform(0, 1), uniform(0, 1), alpha};
  }
  // A simple, round-ish polygon: points spread evenly around a centre with some jitter in angle
  // and radius, so that no corner is sharper than about 60° and no edge runs close to another.
  std::vector<Point> starShaped(int count) {
    const Point c = point(40);
    std::vector<Point> points;
    const double step = 2 * pi / count, start = uniform(0, 2 * pi);
    for (int i = 0; i < count; ++i) {
      const double angle = start + step * (i + uniform(-0.2, 0.2)), r = uniform(24, 36);
      points.push_back({c.x + r * std::cos(angle), c.y + r * std::sin(angle)});
    }
    return points;
  }
  // A smooth closed curve through star-shaped points, tangents a sixth of the way to the
  // neighbours (Catmull-Rom as cubics), which keeps it free of loops.
  Path blob() {
    const std::vector<Point> p = starShaped(4 + below(4));
    const std::size_t n = p.size();
    Path path = polyline({p[0]});
    for (std::size_t i = 0; i < n; ++i) {
      const Point a = p[(i + n - 1) % n], b = p[i], c = p[(i + 1) % n], d = p[(i + 2) % n];
      const Point c1{b.x + (c.x - a.x) / 6, b.y + (c.y - a.y) / 6};
      const Point c2{c.x - (d.x - b.x) / 6, c.y - (d.y - b.y) / 6};
      below(3) == 0 ? path.quadTo({(c1.x + c2.x) / 2, (c1.y + c2.y) / 2}, c)
                    : path.cubicTo(c1, c2, c);
    }
    path.close();
    return path;
  }
  Rect box(double minimum) {
    const Point a = point(10);
    return {a.x - 2, a.y - 2, uniform(minimum, std::max(minimum, kSize - a.x - 8)),
            uniform(minimum, std::max(minimum, kSize - a.y - 8))};
  }
  // Shapes whose outlines never cross or touch themselves; the last an oval with a circle inside
  // wound the other way, a ring under either rule.
  Path simpleShape() {
    const int kind = below(5);
    if (kind == 0) return polyline(starShaped(3 + below(8)), true);
    if (kind == 1) return blob();
    if (kind == 2) return makeOvalPath(box(4));
    if (kind == 3) return makeRoundedRectPath(box(4), uniform(0, 12));
    const Rect outer = box(40);
    Path path = makeOvalPath(outer);
    const Point c{outer.x + outer.width / 2, outer.y + outer.height / 2};
    const double r = std::min(outer.width, outer.height) / 4;
    path.moveTo({c.x + r, c.y});
    path.addRelativeArc(c, r, 0, -2 * pi, AffineTransform::identity());
    path.close();
    return path;
  }
  // Polygons and curves that cross themselves, with points anywhere on the canvas.
  Path tangled(bool closed) {
    Path path = polyline({point()});
    for (int i = 0, count = 2 + below(5); i < count; ++i) {
      const int kind = below(3);
      kind == 0   ? path.lineTo(point())
      : kind == 1 ? path.quadTo(point(), point())
                  : path.cubicTo(point(), point(), point());
    }
    if (closed) path.close();
    return path;
  }
};

constexpr LineCap kCaps[] = {LineCap::Butt, LineCap::Round, LineCap::Square};
constexpr LineJoin kJoins[] = {LineJoin::Miter, LineJoin::Round, LineJoin::Bevel};
constexpr double kLimits[] = {1, 1.5, 4, 10};
constexpr double kWidths[] = {0.5, 1, 2.5, 4, 7};

// Draws one case with both backends; every case must draw something.
void expectDrawnAlike(const std::string& name, const Bounds& bounds,
                      const std::function<void(RasterContext&)>& draw) {
  SCOPED_TRACE(name);
  auto cairo = makeRasterContext(RasterBackend::Cairo, kSize, kSize);
  auto native = makeRasterContext(RasterBackend::Native, kSize, kSize);
  draw(*cairo);
  draw(*native);
  EXPECT_GT(expectClose(cairo->image(), native->image(), bounds), 0) << "draws nothing";
}

// On shapes that do not overlap themselves the backends differ only in how they anti-alias an
// edge and where they place curves:
// - both compute exact coverage across a row, but cairo samples each pixel row at 15 sub-rows,
//   so on nearly horizontal edges coverage differs by up to 1/30 of a pixel (9 levels), about 2
//   levels on average;
// - both replace curves, round joins and caps by polygons, cairo within 0.1 px and we within
//   0.05 px of the true curve, which moves a curved edge by up to 0.15 px (38 levels);
// - where a stroke turns so sharply on a short segment that its outline has to pass through the
//   vertex, the overlap of the two segments' bodies is counted twice in one pixel.
// Pixels away from edges agree exactly (colours are quantised and blended as cairo does), so
// the mean over the pixels drawn on stays within the edge noise even for hairline strokes,
// which are all edge: at most 48 levels on any channel, 4 on average.
//
// The cases: degenerate subpaths and segments after a close, then strokes with every cap and
// join at several widths and miter limits, and fills with both rules, strokes and nested clips,
// of generated shapes; strokes are at most as wide as the smallest radius of the curves they
// follow.
TEST(RasterDifferential, NativeMatchesCairoOnShapesThatDoNotOverlapThemselves) {
  constexpr Bounds bounds{.max = 48, .mean = 4};
  const Color ink{0.2, 0.1, 0.6, 1};
  expectDrawnAlike("degenerate", bounds, [&](RasterContext& c) {
    Path dots = polyline({{20, 20}, {20, 20}});
    dots.moveTo({60, 40});
    dots.close();
    dots.moveTo({90, 90});
    dots.cubicTo({90, 90}, {90, 90}, {90, 90});
    dots.moveTo({100, 20});  // a lone move draws nothing
    for (LineCap cap : kCaps) c.stroke(dots, {11, 4, cap, LineJoin::Miter}, ink);
    Path afterClose = polyline({{20, 30}, {100, 30}, {100, 70}}, true);
    afterClose.lineTo({30, 110});
    afterClose.close();
    afterClose.close();
    c.stroke(afterClose, {6, 4, LineCap::Square, LineJoin::Miter}, ink);
  });

  Generator g{std::mt19937(20240611)};
  for (int n = 0; n < 45; ++n) {  // every cap, join and width
    const StrokeStyle style{kWidths[n % 5], kLimits[n % 4], kCaps[n / 15], kJoins[n / 5 % 3]};
    const Path lines = polyline(g.starShaped(3 + g.below(5)), n % 3 == 0);
    const Path curves = n % 2 ? g.blob() : makeRoundedRectPath(g.box(20), g.uniform(8, 16));
    const Color color = g.color();
    expectDrawnAlike("stroke-" + std::to_string(n), bounds, [&](RasterContext& c) {
      c.stroke(lines, style, color);
      c.stroke(curves, style, color);
    });
  }
  for (int i = 0; i < 40; ++i) {
    const Path outer = g.simpleShape(), inner = g.simpleShape(), shape = g.simpleShape();
    const StrokeStyle style{g.uniform(1, 7), 4, kCaps[i % 3], kJoins[(i / 3) % 3]};
    const Color a = g.color(), b = g.color(), d = g.color();
    expectDrawnAlike("clip-" + std::to_string(i), bounds, [&](RasterContext& c) {
      c.save();
      c.clip(outer);
      c.fill(shape, i % 2 ? FillRule::EvenOdd : FillRule::Winding, a);
      c.save();
      c.clip(inner);
      c.stroke(shape, style, b);
      c.restore();
      c.fill(inner, FillRule::EvenOdd, d);
      c.restore();
      c.restore();  // one too many: ignored
      c.stroke(outer, {1.5, 4, LineCap::Butt, LineJoin::Miter}, b);
    });
  }
}

// Where a shape overlaps itself inside one pixel, the cell rasterizer applies the fill rule to
// the pixel's summed signed area, not to each part: coinciding or crossing edges of one shape
// count twice (a self-crossing thin stroke looks darker where it crosses), and lobes wound in
// opposite directions cancel at the point where they touch. Cairo resolves winding per sub-row.
// Such pixels are a small share of the edges of even heavily tangled shapes (at most 8% past the
// edge noise); everywhere else the edge noise above applies. The cases: self-crossing fills and
// strokes, wide strokes on tight curves, and clips of them.
TEST(RasterDifferential, NativeStaysCloseToCairoOnSelfOverlappingShapes) {
  constexpr Bounds bounds{.mean = 4, .shareOver = 0.08};
  Generator g{std::mt19937(77)};
  for (int i = 0; i < 90; ++i) {
    const StrokeStyle style{g.uniform(0.5, 16), kLimits[i % 4], kCaps[i % 3], kJoins[(i / 3) % 3]};
    const Path shape = g.tangled(i % 4 != 1), clip = g.tangled(true);
    const FillRule rule = i % 2 ? FillRule::EvenOdd : FillRule::Winding;
    const Color color = g.color();
    expectDrawnAlike("tangled-" + std::to_string(i), bounds, [&](RasterContext& c) {
      c.save();
      if (i % 5 == 4) c.clip(clip);
      if (i % 3 == 0) {
        c.fill(shape, rule, color);
      } else {
        c.stroke(shape, style, color);
      }
      c.restore();
      if (i % 5 == 4) c.stroke(clip, {1, 4, LineCap::Butt, LineJoin::Bevel}, color);
    });
  }
}

// Icons at 256 x 256 are mostly interior, where the backends agree exactly; they differ on edges
// and, where outlines overlap inside one pixel, by the fill rule applied to the summed area (both
// as above). So the bounds are on the mean and on the share past the edge noise rather than on
// the largest difference: the symbols measured so far stay below a mean of 0.1 levels with no
// pixel past the noise, and a mean of 1 and 1% past it leave room for busier icons. Both backends
// must also report the same errors.
TEST(RasterDocumentsDifferential, EverySymbolRendersAlikeWithBothBackends) {
  // The example sprite and every document under tests/data, found on disk so new ones are
  // covered.
  std::vector<std::string> names{"../../examples/sprite.svg"};
  const std::filesystem::path root(TESSALINE_TEST_DATA);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
    if (entry.path().extension() == ".svg") {
      names.push_back(std::filesystem::relative(entry.path(), root).generic_string());
    }
  }
  int symbols = 0;
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const SVGFile file(testing::readTestData(name));
    for (const auto& [key, definition] : file.symbolDefinitions) {
      SCOPED_TRACE(key);
      ++symbols;
      const TessalineResponse cairo = file.getUIImageForKey(key, RasterBackend::Cairo);
      const TessalineResponse native = file.getUIImageForKey(key, RasterBackend::Native);
      EXPECT_EQ(native.errors(), cairo.errors());
      ASSERT_EQ(native.bitmap().has_value(), cairo.bitmap().has_value());
      if (native.bitmap()) {
        expectClose(*cairo.bitmap(), *native.bitmap(), {.mean = 1, .shareOver = 0.01});
      }
    }
  }
  // The example sprite alone has over twenty symbols; finding none means the files were missed.
  EXPECT_GE(symbols, 20);
}

}  // namespace
}  // namespace tessaline
