#include "style/paint.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "style/size_only_canvas.h"

namespace tessaline {
namespace {

using A = PresentationAttributes;
using Field = std::optional<std::string> A::*;
using Cap = PaintStrokeCap;
using Join = PaintStrokeLineJoin;
using Paints = std::vector<const Paint*>;

// A null text leaves the attribute absent. The view box gives two pixels per unit.
PresentationPaint resolve(const char* fill, const char* stroke,
                          std::initializer_list<std::pair<Field, const char*>> more = {}) {
  A attributes;
  if (fill) attributes.fill = fill;
  if (stroke) attributes.stroke = stroke;
  for (const auto& [field, value] : more) {
    if (value) attributes.*field = value;
  }
  return PresentationPaint::get(testing::SizeOnlyCanvas(256, 256), {0, 0, 128, 128}, attributes);
}

std::string show(const char* text) {
  return text ? '"' + std::string(text) + '"' : "absent";
}

TEST(PresentationPaint, ImplicitBlackFillAndFillBeforeStroke) {
  const PresentationPaint none = resolve(nullptr, nullptr);
  EXPECT_FALSE(none.error);
  EXPECT_FALSE(none.stroke);
  ASSERT_TRUE(none.fill);
  EXPECT_EQ(none.fill->color, Color::black());
  EXPECT_EQ(none.fill->alpha, 255);
  EXPECT_EQ(none.getPaints(), Paints{&*none.fill});

  const PresentationPaint both = resolve("#ff0000", "#0000ff");
  ASSERT_TRUE(both.fill && both.stroke);
  EXPECT_EQ(both.getPaints(), (Paints{&*both.fill, &*both.stroke}));
  EXPECT_EQ(both.fill->color, (Color{1, 0, 0, 1}));
  EXPECT_EQ(both.stroke->color, (Color{0, 0, 1, 1}));
}

TEST(PresentationPaint, NoneOrEmptyDropsAPaintAndAnInvalidColorDropsEvery) {
  struct Case {
    const char *fill, *stroke;
    bool hasFill, hasStroke, invalid;
  };
  const Case cases[] = {
      {"none", nullptr, 0, 0, 0},  {"NONE", nullptr, 0, 0, 0},  {"", nullptr, 1, 0, 0},
      {nullptr, "none", 1, 0, 0},  {nullptr, "", 1, 0, 0},      {"none", "none", 0, 0, 0},
      {"none", "#fff", 0, 1, 0},   {"#fff", "#000", 1, 1, 0},   {"red", "#000", 0, 0, 1},
      {"#000", "red", 0, 0, 1},    {"abc", "", 0, 0, 1},        {"xabc", "", 0, 0, 1},
      {"rgb(0,0,0)", "", 0, 0, 1}, {"#12345", "none", 0, 0, 1}, {"none", "#ggg", 0, 0, 1}};
  for (const Case& c : cases) {
    SCOPED_TRACE(show(c.fill) + " / " + show(c.stroke));
    const PresentationPaint paint = resolve(c.fill, c.stroke);
    EXPECT_EQ(paint.error, c.invalid ? std::optional<std::string>("Invalid color") : std::nullopt);
    EXPECT_EQ(paint.fill.has_value(), c.hasFill);
    EXPECT_EQ(paint.stroke.has_value(), c.hasStroke);
    EXPECT_EQ(paint.getPaints().size(), std::size_t{c.hasFill} + c.hasStroke);
  }
}

TEST(PresentationPaint, ColorStrings) {
  for (const auto& [text, expected] : {std::pair{"#abc", *Color::fromHexString("#aabbcc")},
                                       {"aabbcc", *Color::fromHexString("#aabbcc")},
                                       {"#aabbcc80", *Color::fromHexString("#aabbcc80")},
                                       {"currentColor", Color::black()},
                                       {"CURRENTCOLOR", Color::black()}}) {
    SCOPED_TRACE(text);
    const PresentationPaint paint = resolve(text, nullptr);
    ASSERT_TRUE(paint.fill);
    EXPECT_EQ(paint.fill->color, expected);
  }
  // The implicit black fill takes the opacities too.
  EXPECT_EQ(resolve(nullptr, nullptr, {{&A::fillOpacity, "0.25"}}).fill->alpha, 63);
}

// Opacity is multiplied by 255 in float, truncated and clamped; a fill opacity replaces it for
// the fill only, and an empty one counts as absent.
TEST(PresentationPaint, OpacityAndFillOpacity) {
  struct Case {
    const char *opacity, *fillOpacity;
    std::int64_t fill, stroke;
  };
  const Case cases[] = {
      {"0.5", nullptr, 127, 127}, {"0.999", nullptr, 254, 254}, {"1", nullptr, 255, 255},
      {"2", nullptr, 255, 255},   {"-1", nullptr, 0, 0},        {"-0.001", nullptr, 0, 0},
      {"abc", nullptr, 0, 0},     {"0.2px", nullptr, 51, 51},   {"1e30", nullptr, 255, 255},
      {"-1e30", nullptr, 0, 0},   {"1e39", nullptr, 255, 255},  {"-1e39", nullptr, 0, 0},
      {"0.5", "1", 255, 127},     {nullptr, "0.5", 127, 255},   {"0.5", "", 127, 127}};
  for (const Case& c : cases) {
    SCOPED_TRACE(show(c.opacity) + " / " + show(c.fillOpacity));
    const PresentationPaint paint =
        resolve("#fff", "#000", {{&A::opacity, c.opacity}, {&A::fillOpacity, c.fillOpacity}});
    ASSERT_TRUE(paint.fill && paint.stroke);
    EXPECT_EQ(paint.fill->alpha, c.fill);
    EXPECT_EQ(paint.stroke->alpha, c.stroke);
  }
}

// The stroke of "#000" with one more attribute set; a stroke alone draws no implicit fill.
StrokePaint strokeWith(Field field, const char* value) {
  const PresentationPaint paint = resolve(nullptr, "#000", {{field, value}});
  EXPECT_FALSE(paint.error || paint.fill) << value;
  const StrokePaint none(Color{}, -1, -1, -1, Cap::Butt, Join::Miter);
  EXPECT_EQ(paint.stroke.value_or(none).color, Color::black()) << value;
  EXPECT_EQ(paint.stroke.value_or(none).alpha, 255) << value;
  return paint.stroke.value_or(none);
}

// Widths are converted to pixels, the miter limit is at least 1, and caps and joins fold case
// but are not trimmed.
TEST(PresentationPaint, StrokeAttributes) {
  const StrokePaint defaults = strokeWith(&A::stroke, "#000");
  EXPECT_EQ(defaults.strokeWidth, 2.0f);  // 1 unit at two pixels per unit
  EXPECT_EQ(defaults.strokeMiter, 4.0f);
  EXPECT_EQ(defaults.strokeCap, Cap::Butt);
  EXPECT_EQ(defaults.strokeLine, Join::Miter);
  for (auto [text, width] :
       {std::pair{"3", 6.0f}, {"2px", 4.0f}, {" 0.25", 0.5f}, {"abc", 0.0f}, {"", 2.0f}}) {
    EXPECT_EQ(strokeWith(&A::strokeWidth, text).strokeWidth, width) << text;
  }
  for (auto [text, miter] : {std::pair{"0.5", 1.0f},
                             {"1", 1.0f},
                             {"-3", 1.0f},
                             {"abc", 1.0f},
                             {"1.5", 1.5f},
                             {"10", 10.0f},
                             {"", 4.0f}}) {
    EXPECT_EQ(strokeWith(&A::strokeMiterLimit, text).strokeMiter, miter) << text;
  }
  for (auto [text, cap] : {std::pair{"butt", Cap::Butt},
                           {"Round", Cap::Round},
                           {"SQUARE", Cap::Square},
                           {" round", Cap::Butt},
                           {"bogus", Cap::Butt}}) {
    EXPECT_EQ(strokeWith(&A::strokeLineCap, text).strokeCap, cap) << text;
  }
  for (auto [text, join] : {std::pair{"ARCS", Join::Miter},
                            {"Miter-Clip", Join::Miter},
                            {"bevel", Join::Bevel},
                            {"ROUND", Join::Round},
                            {"round ", Join::Miter},
                            {"bogus", Join::Miter}}) {
    EXPECT_EQ(strokeWith(&A::strokeLineJoin, text).strokeLine, join) << text;
  }
}

}  // namespace
}  // namespace tessaline
