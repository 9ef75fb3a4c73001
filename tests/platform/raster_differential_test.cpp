// Renders a generated corpus of fills, strokes and clips, the example sprite and every test
// document with the native backend and with cairo, the reference, and bounds how far they differ.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <numbers>
#include <optional>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "platform/raster_context.h"
#include "support/test_support.h"
#include "tessaline/tessaline.h"

namespace tessaline {
namespace {

constexpr int kSize = 128;

// Differences up to this are what two anti-aliasing methods may disagree by on any one edge
// pixel; the shape corpus below shows where it comes from.
constexpr int kEdgeNoise = 32;

// How close the native rendering must stay to cairo's; compared premultiplied, so that colours
// under near-zero alpha do not count.
struct Bounds {
  std::optional<int> max = {};  // largest difference of a premultiplied channel
  double mean;                  // mean channel difference over the pixels either image has drawn on
  std::optional<double> shareOver = {};  // share of those with a channel differing past kEdgeNoise
};

// Returns how many pixels either image has drawn on.
long long expectClose(const std::string& name, const Image& cairo, const Image& native,
                      const Bounds& bounds) {
  const auto premultiplied = [](int channel, int alpha) { return (channel * alpha + 127) / 255; };
  int max = 0, worstX = 0, worstY = 0;
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
      for (const int v : d) {
        pixelMax = std::max(pixelMax, std::abs(v));
        sum += std::abs(v);
      }
      over += pixelMax > kEdgeNoise;
      if (pixelMax > max) std::tie(max, worstX, worstY) = std::tuple(pixelMax, x, y);
    }
  }
  const double mean = touched ? static_cast<double>(sum) / (4.0 * static_cast<double>(touched)) : 0;
  const double shareOver = touched ? static_cast<double>(over) / static_cast<double>(touched) : 0;
  const auto where = ::testing::Message()
                     << "largest difference " << max << " at (" << worstX << ", " << worstY << ")";
  EXPECT_LE(mean, bounds.mean) << where;
  if (bounds.max) {
    EXPECT_LE(max, *bounds.max) << where;
  }
  if (bounds.shareOver) {
    EXPECT_LE(shareOver, *bounds.shareOver) << where;
  }
  if (std::getenv("TESSALINE_RASTER_DIFF_STATS") != nullptr) {
    std::printf("%-48s max %3d at (%3d, %3d) mean %.3f over %.2f%%\n", name.c_str(), max, worstX,
                worstY, mean, 100 * shareOver);
  }
  return touched;
}

// A deterministic generator whose values do not depend on the standard library's distributions.
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
};

// A simple, round-ish polygon: points spread evenly around a centre with some jitter in angle
// and radius, so that no corner is sharper than about 60° and no edge runs close to another.
std::vector<Point> starShapedPoints(Generator& g, int count) {
  const Point c = g.point(40);
  std::vector<Point> points;
  const double step = 2 * std::numbers::pi / count, start = g.uniform(0, 2 * std::numbers::pi);
  for (int i = 0; i < count; ++i) {
    const double angle = start + step * (i + g.uniform(-0.2, 0.2));
    const double r = g.uniform(24, 36);
    points.push_back({c.x + r * std::cos(angle), c.y + r * std::sin(angle)});
  }
  return points;
}

Path polyline(const std::vector<Point>& points, bool closed) {
  Path path;
  path.moveTo(points[0]);
  for (std::size_t i = 1; i < points.size(); ++i) path.lineTo(points[i]);
  if (closed) path.close();
  return path;
}

// A smooth closed curve through star-shaped points, tangents a sixth of the way to the
// neighbours (Catmull-Rom as cubics), which keeps it free of loops.
Path blobPath(Generator& g) {
  const std::vector<Point> p = starShapedPoints(g, 4 + g.below(4));
  const std::size_t n = p.size();
  Path path;
  path.moveTo(p[0]);
  for (std::size_t i = 0; i < n; ++i) {
    const Point a = p[(i + n - 1) % n], b = p[i], c = p[(i + 1) % n], d = p[(i + 2) % n];
    const Point c1{b.x + (c.x - a.x) / 6, b.y + (c.y - a.y) / 6};
    const Point c2{c.x - (d.x - b.x) / 6, c.y - (d.y - b.y) / 6};
    if (g.below(3) == 0) {
      path.quadTo({(c1.x + c2.x) / 2, (c1.y + c2.y) / 2}, c);
    } else {
      path.cubicTo(c1, c2, c);
    }
  }
  path.close();
  return path;
}

Rect box(Generator& g, double minimum) {
  const Point a = g.point(10);
  return {a.x - 2, a.y - 2, g.uniform(minimum, std::max(minimum, kSize - a.x - 8)),
          g.uniform(minimum, std::max(minimum, kSize - a.y - 8))};
}

// Shapes whose outlines never cross or touch themselves; the last an oval with an inner oval
// wound the other way, a ring under either rule.
Path simpleShape(Generator& g) {
  switch (g.below(5)) {
    case 0:
      return polyline(starShapedPoints(g, 3 + g.below(8)), true);
    case 1:
      return blobPath(g);
    case 2:
      return makeOvalPath(box(g, 4));
    case 3:
      return makeRoundedRectPath(box(g, 4), g.uniform(0, 12));
  }
  const Rect outer = box(g, 40);
  Path path = makeOvalPath(outer);
  const Rect inner{outer.x + outer.width / 4, outer.y + outer.height / 4, outer.width / 2,
                   outer.height / 2};
  makeOvalPath(inner)
      .transformed({-1, 0, 0, 1, 2 * (inner.x + inner.width / 2), 0})
      ->forEach([&](const PathElement& e) {
        if (e.verb == PathVerb::Move) path.moveTo(e.points[0]);
        if (e.verb == PathVerb::Cubic) path.cubicTo(e.points[0], e.points[1], e.points[2]);
        if (e.verb == PathVerb::Close) path.close();
      });
  return path;
}

// Random polygons and curves that cross themselves, with points anywhere on the canvas.
Path tangledPath(Generator& g, bool closed) {
  Path path;
  path.moveTo(g.point());
  for (int i = 0, count = 2 + g.below(5); i < count; ++i) {
    switch (g.below(3)) {
      case 0:
        path.lineTo(g.point());
        break;
      case 1:
        path.quadTo(g.point(), g.point());
        break;
      default:
        path.cubicTo(g.point(), g.point(), g.point());
    }
  }
  if (closed) path.close();
  return path;
}

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
  EXPECT_GT(expectClose(name, cairo->image(), native->image(), bounds), 0) << "draws nothing";
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
// The cases: hand-picked ones (degenerate subpaths, segments after a close, geometry far off the
// canvas, whole and half pixels, clips undone by restore), then fills with both rules, strokes
// with every cap and join at several widths and miter limits, and nested clips, of generated
// shapes; strokes are at most as wide as the smallest radius of the curves they follow.
TEST(RasterDifferential, NativeMatchesCairoOnShapesThatDoNotOverlapThemselves) {
  constexpr Bounds bounds{.max = 48, .mean = 4};
  const Color ink{0.2, 0.1, 0.6, 1};
  const auto square = [](double x, double y, double w, double h) {
    return makeRoundedRectPath({x, y, w, h}, 0);
  };
  expectDrawnAlike("dots", bounds, [&](RasterContext& c) {
    Path p;
    p.moveTo({20, 20});
    p.lineTo({20, 20});
    p.moveTo({60, 40});
    p.close();
    p.moveTo({90, 90});
    p.cubicTo({90, 90}, {90, 90}, {90, 90});
    p.moveTo({100, 20});  // a lone move draws nothing
    for (LineCap cap : kCaps) c.stroke(p, {11, 4, cap, LineJoin::Miter}, ink);
  });
  expectDrawnAlike("after-close", bounds, [&](RasterContext& c) {
    Path p = polyline({{20, 20}, {100, 20}, {100, 90}}, true);
    p.lineTo({30, 110});
    p.close();
    p.close();
    c.stroke(p, {6, 4, LineCap::Square, LineJoin::Miter}, ink);
  });
  expectDrawnAlike("far-away", bounds, [&](RasterContext& c) {
    // Within ±2^23 px, where cairo's 24.8 fixed point still holds them.
    c.fill(polyline({{-1e6, 30}, {1e6, 50}, {60, 1e6}}, true), FillRule::Winding,
           ink.withAlpha(0.7));
    Path q;
    q.moveTo({-1e5, -1e5});
    q.cubicTo({4e5, -2e5}, {200, 300}, {100, 100});
    c.stroke(q, {5, 4, LineCap::Round, LineJoin::Round}, ink);
  });
  expectDrawnAlike("pixel-grid", bounds, [&](RasterContext& c) {
    c.fill(square(10, 10, 40, 30), FillRule::Winding, ink);
    c.fill(square(60.5, 10.5, 40, 30.25), FillRule::Winding, ink);
    c.stroke(square(20, 60, 80, 50), {1, 4, LineCap::Butt, LineJoin::Miter}, ink);
    c.stroke(square(20.5, 70.5, 60, 20), {1, 4, LineCap::Butt, LineJoin::Miter}, ink);
  });
  expectDrawnAlike("clip-restore", bounds, [&](RasterContext& c) {
    c.save();
    c.clip(makeOvalPath({10, 10, 100, 60}));
    c.save();
    c.clip(square(40.3, 0, 30, 128));
    c.fill(square(0, 0, 128, 128), FillRule::Winding, ink);
    c.restore();
    c.fill(makeOvalPath({0, 30, 128, 80}), FillRule::Winding, ink.withAlpha(0.4));
    c.restore();
    c.restore();  // one too many: ignored
    c.stroke(makeOvalPath({20, 80, 90, 40}), {3, 4, LineCap::Butt, LineJoin::Miter}, ink);
  });

  Generator g{std::mt19937(20240611)};
  for (int i = 0; i < 40; ++i) {
    const Path a = simpleShape(g), b = simpleShape(g);
    const FillRule rule = i % 2 ? FillRule::EvenOdd : FillRule::Winding;
    const Color ca = g.color(), cb = g.color();
    expectDrawnAlike("fill-" + std::to_string(i), bounds, [&](RasterContext& c) {
      c.fill(a, rule, ca);
      c.fill(b, rule, cb);
    });
  }
  for (int n = 0; n < 45; ++n) {  // every cap, join and width
    const StrokeStyle style{kWidths[n % 5], kLimits[n % 4], kCaps[n / 15], kJoins[n / 5 % 3]};
    const Path lines = polyline(starShapedPoints(g, 3 + g.below(5)), n % 3 == 0);
    const Path curves = n % 2 ? blobPath(g) : makeRoundedRectPath(box(g, 20), g.uniform(8, 16));
    const Color color = g.color();
    expectDrawnAlike("stroke-" + std::to_string(n), bounds, [&](RasterContext& c) {
      c.stroke(lines, style, color);
      c.stroke(curves, style, color);
    });
  }
  for (int i = 0; i < 20; ++i) {
    const Path outer = simpleShape(g), inner = simpleShape(g), shape = simpleShape(g);
    const StrokeStyle style{g.uniform(1, 7), 4, kCaps[i % 3], kJoins[(i / 3) % 3]};
    const Color a = g.color(), b = g.color(), d = g.color();
    expectDrawnAlike("clip-" + std::to_string(i), bounds, [&](RasterContext& c) {
      c.save();
      c.clip(outer);
      c.fill(shape, FillRule::Winding, a);
      c.save();
      c.clip(inner);
      c.stroke(shape, style, b);
      c.restore();
      c.fill(inner, FillRule::EvenOdd, d);
      c.restore();
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
  for (int i = 0; i < 30; ++i) {
    const Path a = tangledPath(g, true);
    const FillRule rule = i % 2 ? FillRule::EvenOdd : FillRule::Winding;
    const Color color = g.color();
    expectDrawnAlike("tangled-fill-" + std::to_string(i), bounds,
                     [&](RasterContext& c) { c.fill(a, rule, color); });
  }
  for (int i = 0; i < 45; ++i) {
    const StrokeStyle style{g.uniform(0.5, 16), kLimits[i % 4], kCaps[i % 3], kJoins[(i / 3) % 3]};
    const Path a = tangledPath(g, i % 4 == 0);
    const Color color = g.color();
    expectDrawnAlike("tangled-stroke-" + std::to_string(i), bounds,
                     [&](RasterContext& c) { c.stroke(a, style, color); });
  }
  for (int i = 0; i < 15; ++i) {
    const Path clip = tangledPath(g, true), shape = tangledPath(g, true);
    const Color color = g.color();
    expectDrawnAlike("tangled-clip-" + std::to_string(i), bounds, [&](RasterContext& c) {
      c.save();
      c.clip(clip);
      c.fill(shape, FillRule::EvenOdd, color);
      c.stroke(shape, {3, 4, LineCap::Round, LineJoin::Round}, color);
      c.restore();
      c.stroke(clip, {1, 4, LineCap::Butt, LineJoin::Bevel}, color);
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
    if (entry.is_regular_file() && entry.path().extension() == ".svg") {
      names.push_back(std::filesystem::relative(entry.path(), root).generic_string());
    }
  }
  std::sort(names.begin(), names.end());
  int symbols = 0;
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const std::string text = testing::readTestData(name);
    ASSERT_FALSE(text.empty());
    const SVGFile file(text);
    for (const auto& [key, definition] : file.symbolDefinitions) {
      SCOPED_TRACE(key);
      ++symbols;
      const TessalineResponse cairo = file.getUIImageForKey(key, RasterBackend::Cairo);
      const TessalineResponse native = file.getUIImageForKey(key, RasterBackend::Native);
      EXPECT_EQ(native.errors(), cairo.errors());
      ASSERT_EQ(native.bitmap().has_value(), cairo.bitmap().has_value());
      if (native.bitmap()) {
        expectClose(name + " " + key, *cairo.bitmap(), *native.bitmap(),
                    {.mean = 1, .shareOver = 0.01});
      }
    }
  }
  // The example sprite alone has over twenty symbols; finding none means the files were missed.
  EXPECT_GE(symbols, 20);
}

}  // namespace
}  // namespace tessaline
