// The only file of the library that includes cairo's header.
#include "platform/cairo_raster_context.h"

#include <cairo.h>

#include <cmath>
#include <cstdint>
#include <cstring>

#include "platform/raster/pixel_ops.h"

namespace tessaline {
namespace {

cairo_line_cap_t toCairo(LineCap cap) {
  switch (cap) {
    case LineCap::Butt:
      return CAIRO_LINE_CAP_BUTT;
    case LineCap::Round:
      return CAIRO_LINE_CAP_ROUND;
    case LineCap::Square:
      return CAIRO_LINE_CAP_SQUARE;
  }
  return CAIRO_LINE_CAP_BUTT;
}

cairo_line_join_t toCairo(LineJoin join) {
  switch (join) {
    case LineJoin::Miter:
      return CAIRO_LINE_JOIN_MITER;
    case LineJoin::Round:
      return CAIRO_LINE_JOIN_ROUND;
    case LineJoin::Bevel:
      return CAIRO_LINE_JOIN_BEVEL;
  }
  return CAIRO_LINE_JOIN_MITER;
}

cairo_fill_rule_t toCairo(FillRule rule) {
  return rule == FillRule::EvenOdd ? CAIRO_FILL_RULE_EVEN_ODD : CAIRO_FILL_RULE_WINDING;
}

class CairoRasterContext final : public RasterContext {
 public:
  CairoRasterContext(int width, int height)
      : surface_(cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width > 0 ? width : 0,
                                            height > 0 ? height : 0)),
        cr_(cairo_create(surface_)),
        width_(width > 0 ? width : 0),
        height_(height > 0 ? height : 0) {
    cairo_set_antialias(cr_, CAIRO_ANTIALIAS_DEFAULT);
  }

  ~CairoRasterContext() override {
    cairo_destroy(cr_);
    cairo_surface_destroy(surface_);
  }

  CairoRasterContext(const CairoRasterContext&) = delete;
  CairoRasterContext& operator=(const CairoRasterContext&) = delete;

  void save() override {
    cairo_save(cr_);
    ++depth_;
  }

  void restore() override {
    // A restore without its save would put the cairo context into a permanent error state and
    // silently drop everything drawn afterwards; ignore it instead.
    if (depth_ == 0) return;
    cairo_restore(cr_);
    --depth_;
  }

  void clip(const Path& path) override {
    appendPath(path);
    cairo_set_fill_rule(cr_, CAIRO_FILL_RULE_WINDING);
    cairo_clip(cr_);
  }

  void fill(const Path& path, FillRule rule, const Color& color) override {
    appendPath(path);
    setSource(color);
    cairo_set_fill_rule(cr_, toCairo(rule));
    cairo_fill(cr_);
  }

  void stroke(const Path& path, const StrokeStyle& style, const Color& color) override {
    if (!std::isfinite(style.width) || !std::isfinite(style.miterLimit)) return;
    appendPath(path);
    setSource(color);
    cairo_set_line_width(cr_, style.width > 0 ? style.width : 0);
    cairo_set_miter_limit(cr_, style.miterLimit);
    cairo_set_line_cap(cr_, toCairo(style.cap));
    cairo_set_line_join(cr_, toCairo(style.join));
    cairo_stroke(cr_);
  }

  Image image() const override {
    Image out(width_, height_);
    cairo_surface_flush(surface_);
    const unsigned char* data = cairo_image_surface_get_data(surface_);
    if (data == nullptr) return out;
    const int stride = cairo_image_surface_get_stride(surface_);
    // ARGB32 is one native-endian premultiplied word per pixel, as the native backend's pixels.
    std::uint8_t* dst = out.bytes().data();
    const std::size_t rowBytes = static_cast<std::size_t>(width_) * 4;
    for (int y = 0; y < height_; ++y) {
      std::memcpy(dst + static_cast<std::size_t>(y) * rowBytes,
                  data + static_cast<std::ptrdiff_t>(y) * stride, rowBytes);
    }
    unpremultiplyInPlace(dst, width_, 0, 0, width_, height_);
    return out;
  }

 private:
  void setSource(const Color& color) {
    cairo_set_source_rgba(cr_, color.red, color.green, color.blue, color.alpha);
  }

  // Replaces cairo's current path with `path`. Quadratic segments become the equivalent cubics,
  // which needs the current point; Path keeps the same current-point rules as cairo (a close
  // returns to the subpath start).
  void appendPath(const Path& path) {
    cairo_new_path(cr_);
    Point current;
    Point subpathStart;
    path.forEach([&](const PathElement& element) {
      const auto& p = element.points;
      switch (element.verb) {
        case PathVerb::Move:
          cairo_move_to(cr_, p[0].x, p[0].y);
          current = subpathStart = p[0];
          break;
        case PathVerb::Line:
          cairo_line_to(cr_, p[0].x, p[0].y);
          current = p[0];
          break;
        case PathVerb::Quad: {
          const Point c1{current.x + 2.0 / 3.0 * (p[0].x - current.x),
                         current.y + 2.0 / 3.0 * (p[0].y - current.y)};
          const Point c2{p[1].x + 2.0 / 3.0 * (p[0].x - p[1].x),
                         p[1].y + 2.0 / 3.0 * (p[0].y - p[1].y)};
          cairo_curve_to(cr_, c1.x, c1.y, c2.x, c2.y, p[1].x, p[1].y);
          current = p[1];
          break;
        }
        case PathVerb::Cubic:
          cairo_curve_to(cr_, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
          current = p[2];
          break;
        case PathVerb::Close:
          cairo_close_path(cr_);
          current = subpathStart;
          break;
      }
    });
  }

  cairo_surface_t* surface_;
  cairo_t* cr_;
  int width_;
  int height_;
  int depth_ = 0;
};

}  // namespace

std::unique_ptr<RasterContext> makeCairoRasterContext(int width, int height) {
  return std::make_unique<CairoRasterContext>(width, height);
}

}  // namespace tessaline
