// Filling, stroking and clipping typical icon geometry on a 256 x 256 canvas, with the native
// backend and with cairo side by side (the argument picks the backend: 0 cairo, 1 native).

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <numbers>

#include "platform/path.h"
#include "platform/raster_context.h"

namespace tessaline {
namespace {

constexpr int kCanvas = 256;

RasterBackend backendOf(const benchmark::State& state) {
  return state.range(0) == 0 ? RasterBackend::Cairo : RasterBackend::Native;
}

void labelBackend(benchmark::State& state) {
  state.SetLabel(state.range(0) == 0 ? "cairo" : "native");
}

// A solid glyph in the manner of filled icon sets: a rounded body with a round hole, a star and
// a bar, about 60 curve and line segments at the size icons are drawn.
Path filledGlyph() {
  Path path = makeRoundedRectPath({32, 40, 192, 176}, 28);
  const Path hole = makeOvalPath({88, 80, 80, 80}).transformed({-1, 0, 0, 1, 256, 0}).value();
  hole.forEach([&](const PathElement& e) {
    if (e.verb == PathVerb::Move) path.moveTo(e.points[0]);
    if (e.verb == PathVerb::Cubic) path.cubicTo(e.points[0], e.points[1], e.points[2]);
    if (e.verb == PathVerb::Close) path.close();
  });
  for (int i = 0; i < 10; ++i) {
    const double a = -std::numbers::pi / 2 + i * std::numbers::pi / 5;
    const double r = i % 2 ? 14 : 32;
    const Point p{128 + r * std::cos(a), 120 + r * std::sin(a)};
    if (i == 0)
      path.moveTo(p);
    else
      path.lineTo(p);
  }
  path.close();
  path.moveTo({64, 180});
  path.lineTo({192, 180});
  path.quadTo({200, 180}, {200, 188});
  path.lineTo({200, 192});
  path.quadTo({200, 200}, {192, 200});
  path.lineTo({64, 200});
  path.close();
  return path;
}

// An outline icon in the manner of stroked icon sets: a rounded frame, a check mark and an arc,
// drawn 2/24 of the canvas wide with round caps and joins.
Path outlineIcon() {
  Path path = makeRoundedRectPath({43, 43, 170, 170}, 21);
  path.moveTo({85, 128});
  path.lineTo({117, 160});
  path.lineTo({171, 96});
  path.moveTo({64, 32});
  path.addRelativeArc({128, 32}, 64, std::numbers::pi, -std::numbers::pi / 2,
                      AffineTransform::identity());
  return path;
}

void BM_FillGlyph(benchmark::State& state) {
  const Path glyph = filledGlyph();
  auto context = makeRasterContext(backendOf(state), kCanvas, kCanvas);
  for (auto _ : state) {
    context->fill(glyph, FillRule::EvenOdd, {0.1, 0.2, 0.8, 1});
  }
  labelBackend(state);
}
BENCHMARK(BM_FillGlyph)->Arg(0)->Arg(1);

void BM_FillTranslucentGlyph(benchmark::State& state) {
  const Path glyph = filledGlyph();
  auto context = makeRasterContext(backendOf(state), kCanvas, kCanvas);
  for (auto _ : state) {
    context->fill(glyph, FillRule::Winding, {0.1, 0.2, 0.8, 0.5});
  }
  labelBackend(state);
}
BENCHMARK(BM_FillTranslucentGlyph)->Arg(0)->Arg(1);

void BM_StrokeOutlineIcon(benchmark::State& state) {
  const Path icon = outlineIcon();
  const StrokeStyle style{256.0 * 2 / 24, 4, LineCap::Round, LineJoin::Round};
  auto context = makeRasterContext(backendOf(state), kCanvas, kCanvas);
  for (auto _ : state) {
    context->stroke(icon, style, {0, 0, 0, 1});
  }
  labelBackend(state);
}
BENCHMARK(BM_StrokeOutlineIcon)->Arg(0)->Arg(1);

void BM_StrokeHairlineMiter(benchmark::State& state) {
  const Path icon = outlineIcon();
  const StrokeStyle style{1.5, 4, LineCap::Butt, LineJoin::Miter};
  auto context = makeRasterContext(backendOf(state), kCanvas, kCanvas);
  for (auto _ : state) {
    context->stroke(icon, style, {0, 0, 0, 1});
  }
  labelBackend(state);
}
BENCHMARK(BM_StrokeHairlineMiter)->Arg(0)->Arg(1);

void BM_ClipAndFill(benchmark::State& state) {
  const Path clip = makeOvalPath({28, 28, 200, 200});
  const Path glyph = filledGlyph();
  auto context = makeRasterContext(backendOf(state), kCanvas, kCanvas);
  for (auto _ : state) {
    context->save();
    context->clip(clip);
    context->fill(glyph, FillRule::EvenOdd, {0.8, 0.2, 0.1, 1});
    context->restore();
  }
  labelBackend(state);
}
BENCHMARK(BM_ClipAndFill)->Arg(0)->Arg(1);

// What rendering one symbol costs the backend: a fresh canvas, a few shapes, the image out.
void BM_WholeIcon(benchmark::State& state) {
  const Path glyph = filledGlyph();
  const Path icon = outlineIcon();
  const Path clip = makeOvalPath({28, 28, 200, 200});
  const StrokeStyle style{256.0 * 2 / 24, 4, LineCap::Round, LineJoin::Round};
  for (auto _ : state) {
    auto context = makeRasterContext(backendOf(state), kCanvas, kCanvas);
    context->fill(glyph, FillRule::EvenOdd, {0.1, 0.2, 0.8, 1});
    context->save();
    context->clip(clip);
    context->stroke(icon, style, {0, 0, 0, 0.8});
    context->restore();
    benchmark::DoNotOptimize(context->image());
  }
  labelBackend(state);
}
BENCHMARK(BM_WholeIcon)->Arg(0)->Arg(1);

void BM_NewCanvasAndImage(benchmark::State& state) {
  for (auto _ : state) {
    auto context = makeRasterContext(backendOf(state), kCanvas, kCanvas);
    benchmark::DoNotOptimize(context->image());
  }
  labelBackend(state);
}
BENCHMARK(BM_NewCanvasAndImage)->Arg(0)->Arg(1);

}  // namespace
}  // namespace tessaline
