// Renders a generated corpus of fills, strokes and clips with the native backend and with cairo,
// the reference, and bounds how far they differ.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "image_difference.h"
#include "platform/raster_context.h"

namespace tessaline {
namespace {

constexpr int kSize = 128;

// A deterministic generator whose values do not depend on the standard library's distributions.
class Generator {
 public:
  explicit Generator(unsigned seed) : engine_(seed) {}
  double uniform(double lo, double hi) {
    return lo + (hi - lo) * static_cast<double>(engine_() % 1000003) / 1000003.0;
  }
  int below(int n) { return static_cast<int>(engine_() % static_cast<unsigned>(n)); }
  Point point(double margin = 8) {
    return {uniform(margin, kSize - margin), uniform(margin, kSize - margin)};
  }
  Color color() {
    const double alpha = below(3) == 0 ? uniform(0.2, 0.9) : 1.0;
    return {uniform(0, 1), uniform(0, 1), uniform(0, 1), alpha};
  }

 private:
  std::mt19937 engine_;
};

// A simple, round-ish polygon: points spread evenly around a centre with some jitter in angle
// and radius, so that no corner is sharper than about 60° and no edge runs close to another.
std::vector<Point> starShapedPoints(Generator& g, int count) {
  const Point c = g.point(40);
  std::vector<Point> points;
  const double step = 2 * std::numbers::pi / count;
  const double start = g.uniform(0, 2 * std::numbers::pi);
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
    const bool quad = g.below(3) == 0;
    const Point c1{b.x + (c.x - a.x) / 6, b.y + (c.y - a.y) / 6};
    const Point c2{c.x - (d.x - b.x) / 6, c.y - (d.y - b.y) / 6};
    if (quad) {
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

// An oval with an inner oval wound the other way: a ring under either rule.
Path ringPath(Generator& g) {
  const Rect outer = box(g, 40);
  Path path = makeOvalPath(outer);
  const Rect inner{outer.x + outer.width / 4, outer.y + outer.height / 4, outer.width / 2,
                   outer.height / 2};
  const double cx = inner.x + inner.width / 2;
  const auto mirrored = makeOvalPath(inner).transformed({-1, 0, 0, 1, 2 * cx, 0});
  mirrored->forEach([&](const PathElement& e) {
    if (e.verb == PathVerb::Move) path.moveTo(e.points[0]);
    if (e.verb == PathVerb::Cubic) path.cubicTo(e.points[0], e.points[1], e.points[2]);
    if (e.verb == PathVerb::Close) path.close();
  });
  return path;
}

// Shapes whose outlines never cross or touch themselves.
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
    default:
      return ringPath(g);
  }
}

// Random polygons and curves that cross themselves, with points anywhere on the canvas.
Path tangledPath(Generator& g, bool closed) {
  Path path;
  path.moveTo(g.point());
  const int count = 2 + g.below(5);
  for (int i = 0; i < count; ++i) {
    switch (g.below(3)) {
      case 0:
        path.lineTo(g.point());
        break;
      case 1:
        path.quadTo(g.point(), g.point());
        break;
      default:
        path.cubicTo(g.point(), g.point(), g.point());
        break;
    }
  }
  if (closed) path.close();
  return path;
}

struct Case {
  std::string name;
  std::function<void(RasterContext&)> draw;
};

constexpr LineCap kCaps[] = {LineCap::Butt, LineCap::Round, LineCap::Square};
constexpr LineJoin kJoins[] = {LineJoin::Miter, LineJoin::Round, LineJoin::Bevel};
constexpr double kLimits[] = {1, 1.5, 4, 10};

// Hand-picked cases: degenerate subpaths, segments after a close, geometry far off the canvas,
// whole and half pixels, and clips undone by restore.
std::vector<Case> specialCases() {
  std::vector<Case> cases;
  const Color ink{0.2, 0.1, 0.6, 1};
  cases.push_back({"dots", [=](RasterContext& c) {
                     Path p;
                     p.moveTo({20, 20});
                     p.lineTo({20, 20});
                     p.moveTo({60, 40});
                     p.close();
                     p.moveTo({90, 90});
                     p.cubicTo({90, 90}, {90, 90}, {90, 90});
                     p.moveTo({100, 20});  // a lone move draws nothing
                     for (LineCap cap : kCaps) c.stroke(p, {11, 4, cap, LineJoin::Miter}, ink);
                   }});
  cases.push_back({"after-close", [=](RasterContext& c) {
                     Path p;
                     p.moveTo({20, 20});
                     p.lineTo({100, 20});
                     p.lineTo({100, 90});
                     p.close();
                     p.lineTo({30, 110});
                     p.close();
                     p.close();
                     c.stroke(p, {6, 4, LineCap::Square, LineJoin::Miter}, ink);
                   }});
  cases.push_back({"far-away", [=](RasterContext& c) {
                     Path p;
                     // Within ±2^23 px, where cairo's 24.8 fixed point still holds them.
                     p.moveTo({-1e6, 30});
                     p.lineTo({1e6, 50});
                     p.lineTo({60, 1e6});
                     p.close();
                     c.fill(p, FillRule::Winding, ink.withAlpha(0.7));
                     Path q;
                     q.moveTo({-1e5, -1e5});
                     q.cubicTo({4e5, -2e5}, {200, 300}, {100, 100});
                     c.stroke(q, {5, 4, LineCap::Round, LineJoin::Round}, ink);
                   }});
  cases.push_back(
      {"pixel-grid", [=](RasterContext& c) {
         c.fill(makeRoundedRectPath({10, 10, 40, 30}, 0), FillRule::Winding, ink);
         c.fill(makeRoundedRectPath({60.5, 10.5, 40, 30.25}, 0), FillRule::Winding, ink);
         c.stroke(makeRoundedRectPath({20, 60, 80, 50}, 0), {1, 4, LineCap::Butt, LineJoin::Miter},
                  ink);
         c.stroke(makeRoundedRectPath({20.5, 70.5, 60, 20}, 0),
                  {1, 4, LineCap::Butt, LineJoin::Miter}, ink);
       }});
  cases.push_back(
      {"clip-restore", [=](RasterContext& c) {
         c.save();
         c.clip(makeOvalPath({10, 10, 100, 60}));
         c.save();
         c.clip(makeRoundedRectPath({40.3, 0, 30, 128}, 0));
         c.fill(makeRoundedRectPath({0, 0, 128, 128}, 0), FillRule::Winding, ink);
         c.restore();
         c.fill(makeOvalPath({0, 30, 128, 80}), FillRule::Winding, ink.withAlpha(0.4));
         c.restore();
         c.restore();  // one too many: ignored
         c.stroke(makeOvalPath({20, 80, 90, 40}), {3, 4, LineCap::Butt, LineJoin::Miter}, ink);
       }});
  return cases;
}

// Fills with both rules, strokes with every cap and join at several widths and miter limits,
// and nested clips, all of shapes that do not overlap themselves; strokes are at most as wide
// as the smallest radius of the curves they follow.
std::vector<Case> simpleCorpus() {
  std::vector<Case> cases = specialCases();
  Generator g(20240611);
  for (int i = 0; i < 40; ++i) {
    const Path a = simpleShape(g), b = simpleShape(g);
    const FillRule rule = i % 2 ? FillRule::EvenOdd : FillRule::Winding;
    const Color ca = g.color(), cb = g.color();
    cases.push_back({"fill-" + std::to_string(i), [=](RasterContext& c) {
                       c.fill(a, rule, ca);
                       c.fill(b, rule, cb);
                     }});
  }
  const double widths[] = {0.5, 1, 2.5, 4, 7};
  int n = 0;
  for (LineCap cap : kCaps) {
    for (LineJoin join : kJoins) {
      for (double width : widths) {
        const StrokeStyle style{width, kLimits[n % 4], cap, join};
        const Path lines = polyline(starShapedPoints(g, 3 + g.below(5)), n % 3 == 0);
        const Path curves = n % 2 ? blobPath(g) : makeRoundedRectPath(box(g, 20), g.uniform(8, 16));
        const Color color = g.color();
        cases.push_back({"stroke-" + std::to_string(n), [=](RasterContext& c) {
                           c.stroke(lines, style, color);
                           c.stroke(curves, style, color);
                         }});
        ++n;
      }
    }
  }
  for (int i = 0; i < 20; ++i) {
    const Path outer = simpleShape(g), inner = simpleShape(g), shape = simpleShape(g);
    const StrokeStyle style{g.uniform(1, 7), 4, kCaps[i % 3], kJoins[(i / 3) % 3]};
    const Color a = g.color(), b = g.color(), d = g.color();
    cases.push_back({"clip-" + std::to_string(i), [=](RasterContext& c) {
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
                     }});
  }
  return cases;
}

// Self-crossing fills and strokes, wide strokes on tight curves, and clips of them.
std::vector<Case> tangledCorpus() {
  std::vector<Case> cases;
  Generator g(77);
  for (int i = 0; i < 30; ++i) {
    const Path a = tangledPath(g, true);
    const FillRule rule = i % 2 ? FillRule::EvenOdd : FillRule::Winding;
    const Color color = g.color();
    cases.push_back(
        {"tangled-fill-" + std::to_string(i), [=](RasterContext& c) { c.fill(a, rule, color); }});
  }
  for (int i = 0; i < 45; ++i) {
    const StrokeStyle style{g.uniform(0.5, 16), kLimits[i % 4], kCaps[i % 3], kJoins[(i / 3) % 3]};
    const Path a = tangledPath(g, i % 4 == 0);
    const Color color = g.color();
    cases.push_back({"tangled-stroke-" + std::to_string(i),
                     [=](RasterContext& c) { c.stroke(a, style, color); }});
  }
  for (int i = 0; i < 15; ++i) {
    const Path clip = tangledPath(g, true), shape = tangledPath(g, true);
    const Color color = g.color();
    cases.push_back({"tangled-clip-" + std::to_string(i), [=](RasterContext& c) {
                       c.save();
                       c.clip(clip);
                       c.fill(shape, FillRule::EvenOdd, color);
                       c.stroke(shape, {3, 4, LineCap::Round, LineJoin::Round}, color);
                       c.restore();
                       c.stroke(clip, {1, 4, LineCap::Butt, LineJoin::Bevel}, color);
                     }});
  }
  return cases;
}

using Comparison = testing::ImageDifference;
using testing::kEdgeNoise;
using testing::premultiplied;

// Writes cairo, native and their difference (magnified eight times) side by side, the window
// [x0, x0 + size) x [y0, y0 + size) of each magnified `zoom` times.
void writeSheet(const std::string& file, const Image& reference, const Image& actual, int x0,
                int y0, int size, int zoom) {
  Image sheet(3 * zoom * size, zoom * size);
  const auto amplified = [](int d) {
    return static_cast<std::uint8_t>(std::min(255, 8 * std::abs(d)));
  };
  for (int y = 0; y < zoom * size; ++y) {
    for (int x = 0; x < zoom * size; ++x) {
      const int sx = x0 + x / zoom, sy = y0 + y / zoom;
      const Rgba r = reference.pixel(sx, sy), a = actual.pixel(sx, sy);
      sheet.setPixel(x, y, r);
      sheet.setPixel(zoom * size + x, y, a);
      sheet.setPixel(2 * zoom * size + x, y,
                     {amplified(premultiplied(r.r, r.a) - premultiplied(a.r, a.a)),
                      amplified(premultiplied(r.g, r.a) - premultiplied(a.g, a.a)),
                      amplified(premultiplied(r.b, r.a) - premultiplied(a.b, a.a)), 255});
    }
  }
  if (sheet.writePng(file)) std::printf("diff written to %s\n", file.c_str());
}

// The whole canvas, and a close-up of the 24 x 24 pixels around the largest difference.
void writeDiff(const std::string& name, const Image& reference, const Image& actual, Point worst) {
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / "tessaline-raster-diff";
  std::filesystem::create_directories(folder);
  writeSheet((folder / (name + ".png")).string(), reference, actual, 0, 0, kSize, 3);
  const int x0 = std::clamp(static_cast<int>(worst.x) - 12, 0, kSize - 24);
  const int y0 = std::clamp(static_cast<int>(worst.y) - 12, 0, kSize - 24);
  writeSheet((folder / (name + "-closeup.png")).string(), reference, actual, x0, y0, 24, 12);
}

Comparison compare(const Case& c) {
  auto reference = makeRasterContext(RasterBackend::Cairo, kSize, kSize);
  auto native = makeRasterContext(RasterBackend::Native, kSize, kSize);
  c.draw(*reference);
  c.draw(*native);
  const Comparison result = testing::compareImages(reference->image(), native->image());
  EXPECT_GT(result.touched, 0) << "the case draws nothing";
  if (std::getenv("TESSALINE_RASTER_DIFF_STATS") != nullptr) {
    std::printf("%-20s max %3d at (%3g, %3g)  mean %.3f  over %d: %.2f%%\n", c.name.c_str(),
                result.max, result.worst.x, result.worst.y, result.mean, kEdgeNoise,
                100 * result.shareOver);
  }
  return result;
}

void writeDiffIf(bool failed, const Case& c, const Comparison& result) {
  if (!failed && std::getenv("TESSALINE_RASTER_DIFF_ALL") == nullptr) return;
  auto reference = makeRasterContext(RasterBackend::Cairo, kSize, kSize);
  auto native = makeRasterContext(RasterBackend::Native, kSize, kSize);
  c.draw(*reference);
  c.draw(*native);
  writeDiff(c.name, reference->image(), native->image(), result.worst);
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
// which are all edge.
constexpr int kMaxChannelDifference = 48;
constexpr double kMaxMeanDifference = 4;

TEST(RasterDifferential, NativeMatchesCairoOnShapesThatDoNotOverlapThemselves) {
  for (const Case& c : simpleCorpus()) {
    SCOPED_TRACE(c.name);
    const Comparison result = compare(c);
    EXPECT_LE(result.max, kMaxChannelDifference)
        << "at (" << result.worst.x << ", " << result.worst.y << ")";
    EXPECT_LE(result.mean, kMaxMeanDifference);
    writeDiffIf(result.max > kMaxChannelDifference || result.mean > kMaxMeanDifference, c, result);
  }
}

// Where a shape overlaps itself inside one pixel, the cell rasterizer applies the fill rule to
// the pixel's summed signed area, not to each part: coinciding or crossing edges of one shape
// count twice (a self-crossing thin stroke looks darker where it crosses), and lobes wound in
// opposite directions cancel at the point where they touch. Cairo resolves winding per sub-row.
// Such pixels are a small share of the edges of even heavily tangled shapes; everywhere else the
// edge noise above applies.
constexpr double kMaxTangledShare = 0.08;
constexpr double kMaxTangledMean = 4;

TEST(RasterDifferential, NativeStaysCloseToCairoOnSelfOverlappingShapes) {
  for (const Case& c : tangledCorpus()) {
    SCOPED_TRACE(c.name);
    const Comparison result = compare(c);
    EXPECT_LE(result.shareOver, kMaxTangledShare);
    EXPECT_LE(result.mean, kMaxTangledMean);
    writeDiffIf(result.shareOver > kMaxTangledShare || result.mean > kMaxTangledMean, c, result);
  }
}

}  // namespace
}  // namespace tessaline
