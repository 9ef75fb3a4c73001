#include "style/paint.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "style/size_only_canvas.h"

namespace tessaline {
namespace {

using testing::SizeOnlyCanvas;

const SizeOnlyCanvas kCanvas(256, 256);
constexpr Rect kHalfBox{0, 0, 128, 128};  // two pixels per view-box unit

PresentationPaint resolve(const PresentationAttributes& attributes) {
  return PresentationPaint::get(kCanvas, kHalfBox, attributes);
}

PresentationAttributes fillAndStroke(std::string fill, std::string stroke) {
  PresentationAttributes attributes;
  attributes.fill = std::move(fill);
  attributes.stroke = std::move(stroke);
  return attributes;
}

// The stroke paint for "#000" with one more stroke attribute set.
StrokePaint strokeWith(std::optional<std::string> PresentationAttributes::*field,
                       std::string value) {
  PresentationAttributes attributes;
  attributes.stroke = "#000";
  attributes.*field = std::move(value);
  const PresentationPaint paint = resolve(attributes);
  EXPECT_TRUE(paint.stroke) << *(attributes.*field);
  return paint.stroke.value_or(
      StrokePaint(Color{}, -1, -1, -1, PaintStrokeCap::Butt, PaintStrokeLineJoin::Miter));
}

TEST(PresentationPaint, NoAttributesGiveAnOpaqueBlackFill) {
  const PresentationPaint paint = resolve({});
  EXPECT_FALSE(paint.error);
  EXPECT_FALSE(paint.stroke);
  ASSERT_TRUE(paint.fill);
  EXPECT_EQ(paint.fill->color, Color::black());
  EXPECT_EQ(paint.fill->alpha, 255);
  ASSERT_EQ(paint.getPaints().size(), 1u);
  EXPECT_EQ(paint.getPaints()[0], &*paint.fill);
}

TEST(PresentationPaint, StrokeDefaultsAndNoImplicitFill) {
  PresentationAttributes attributes;
  attributes.stroke = "#000";
  const PresentationPaint paint = resolve(attributes);
  EXPECT_FALSE(paint.error);
  EXPECT_FALSE(paint.fill);
  ASSERT_TRUE(paint.stroke);
  EXPECT_EQ(paint.stroke->color, Color::black());
  EXPECT_EQ(paint.stroke->alpha, 255);
  EXPECT_EQ(paint.stroke->strokeWidth, 2.0f);  // 1 unit at two pixels per unit
  EXPECT_EQ(paint.stroke->strokeMiter, 4.0f);
  EXPECT_EQ(paint.stroke->strokeCap, PaintStrokeCap::Butt);
  EXPECT_EQ(paint.stroke->strokeLine, PaintStrokeLineJoin::Miter);
}

TEST(PresentationPaint, FillAndStrokePresence) {
  struct Case {
    std::optional<std::string> fill, stroke;
    bool hasFill, hasStroke;
  };
  for (const Case& c : {Case{"none", {}, false, false}, Case{"NONE", {}, false, false},
                        Case{"", {}, true, false}, Case{{}, "none", true, false},
                        Case{{}, "", true, false}, Case{"none", "none", false, false},
                        Case{"none", "#fff", false, true}, Case{"#fff", "#000", true, true}}) {
    SCOPED_TRACE(c.fill.value_or("<absent>") + " / " + c.stroke.value_or("<absent>"));
    PresentationAttributes attributes;
    attributes.fill = c.fill;
    attributes.stroke = c.stroke;
    const PresentationPaint paint = resolve(attributes);
    EXPECT_FALSE(paint.error);
    EXPECT_EQ(paint.fill.has_value(), c.hasFill);
    EXPECT_EQ(paint.stroke.has_value(), c.hasStroke);
  }
}

TEST(PresentationPaint, PaintsComeFillFirst) {
  const PresentationPaint paint = resolve(fillAndStroke("#ff0000", "#0000ff"));
  ASSERT_EQ(paint.getPaints().size(), 2u);
  EXPECT_EQ(paint.getPaints()[0], &*paint.fill);
  EXPECT_EQ(paint.getPaints()[1], &*paint.stroke);
  EXPECT_EQ(paint.fill->color, (Color{1, 0, 0, 1}));
  EXPECT_EQ(paint.stroke->color, (Color{0, 0, 1, 1}));
}

TEST(PresentationPaint, ColorStrings) {
  struct Case {
    const char* text;
    Color expected;
  };
  for (const Case& c :
       {Case{"#abc", *Color::fromHexString("#aabbcc")},
        Case{"#f80", *Color::fromHexString("#ff8800")},
        Case{"aabbcc", *Color::fromHexString("#aabbcc")},
        Case{"#aabbcc80", *Color::fromHexString("#aabbcc80")}, Case{"currentColor", Color::black()},
        Case{"CURRENTCOLOR", Color::black()}}) {
    SCOPED_TRACE(c.text);
    PresentationAttributes attributes;
    attributes.fill = c.text;
    const PresentationPaint paint = resolve(attributes);
    ASSERT_TRUE(paint.fill);
    EXPECT_EQ(paint.fill->color, c.expected);
  }
}

TEST(PresentationPaint, InvalidColorsDropEveryPaint) {
  for (const auto& attributes :
       {fillAndStroke("red", "#000"), fillAndStroke("#000", "red"), fillAndStroke("abc", ""),
        fillAndStroke("xabc", ""), fillAndStroke("rgb(0,0,0)", ""), fillAndStroke("#12345", "none"),
        fillAndStroke("none", "#ggg")}) {
    SCOPED_TRACE(attributes.fill.value_or("") + " / " + attributes.stroke.value_or(""));
    const PresentationPaint paint = resolve(attributes);
    EXPECT_EQ(paint.error, "Invalid color");
    EXPECT_FALSE(paint.fill);
    EXPECT_FALSE(paint.stroke);
    EXPECT_TRUE(paint.getPaints().empty());
  }
}

TEST(PresentationPaint, OpacityTruncatesAndClamps) {
  struct Case {
    const char* opacity;
    std::int64_t alpha;
  };
  for (const Case& c : {Case{"0.5", 127}, Case{"0.999", 254}, Case{"1", 255}, Case{"2", 255},
                        Case{"-1", 0}, Case{"-0.001", 0}, Case{"abc", 0}, Case{"0.2px", 51},
                        Case{"1e30", 255}, Case{"-1e30", 0}, Case{"1e39", 255}, Case{"-1e39", 0}}) {
    SCOPED_TRACE(c.opacity);
    PresentationAttributes attributes = fillAndStroke("#fff", "#000");
    attributes.opacity = c.opacity;
    const PresentationPaint paint = resolve(attributes);
    ASSERT_TRUE(paint.fill && paint.stroke);
    EXPECT_EQ(paint.fill->alpha, c.alpha);
    EXPECT_EQ(paint.stroke->alpha, c.alpha);
  }
}

TEST(PresentationPaint, FillOpacityReplacesOpacityForTheFillOnly) {
  PresentationAttributes attributes = fillAndStroke("#fff", "#000");
  attributes.opacity = "0.5";
  attributes.fillOpacity = "1";
  PresentationPaint paint = resolve(attributes);
  EXPECT_EQ(paint.fill->alpha, 255);
  EXPECT_EQ(paint.stroke->alpha, 127);

  attributes.opacity.reset();
  attributes.fillOpacity = "0.5";
  paint = resolve(attributes);
  EXPECT_EQ(paint.fill->alpha, 127);
  EXPECT_EQ(paint.stroke->alpha, 255);

  // An empty value counts as absent.
  attributes.opacity = "0.5";
  attributes.fillOpacity = "";
  paint = resolve(attributes);
  EXPECT_EQ(paint.fill->alpha, 127);

  // The implicit black fill takes the opacities too.
  PresentationAttributes implicit;
  implicit.fillOpacity = "0.25";
  EXPECT_EQ(resolve(implicit).fill->alpha, 63);
}

TEST(PresentationPaint, StrokeWidthIsConvertedToPixels) {
  const auto width = [](std::string value) {
    return strokeWith(&PresentationAttributes::strokeWidth, std::move(value)).strokeWidth;
  };
  EXPECT_EQ(width("3"), 6.0f);
  EXPECT_EQ(width("2px"), 4.0f);
  EXPECT_EQ(width(" 0.25"), 0.5f);
  EXPECT_EQ(width("abc"), 0.0f);
  EXPECT_EQ(width(""), 2.0f);
}

TEST(PresentationPaint, MiterLimitIsAtLeastOne) {
  const auto miter = [](std::string value) {
    return strokeWith(&PresentationAttributes::strokeMiterLimit, std::move(value)).strokeMiter;
  };
  EXPECT_EQ(miter("0.5"), 1.0f);
  EXPECT_EQ(miter("1"), 1.0f);
  EXPECT_EQ(miter("-3"), 1.0f);
  EXPECT_EQ(miter("abc"), 1.0f);
  EXPECT_EQ(miter("1.5"), 1.5f);
  EXPECT_EQ(miter("10"), 10.0f);
  EXPECT_EQ(miter(""), 4.0f);
}

TEST(PresentationPaint, CapsAndJoinsFoldCaseWithoutTrimming) {
  const auto cap = [](std::string value) {
    return strokeWith(&PresentationAttributes::strokeLineCap, std::move(value)).strokeCap;
  };
  EXPECT_EQ(cap("butt"), PaintStrokeCap::Butt);
  EXPECT_EQ(cap("Round"), PaintStrokeCap::Round);
  EXPECT_EQ(cap("SQUARE"), PaintStrokeCap::Square);
  EXPECT_EQ(cap(" round"), PaintStrokeCap::Butt);
  EXPECT_EQ(cap("bogus"), PaintStrokeCap::Butt);

  const auto join = [](std::string value) {
    return strokeWith(&PresentationAttributes::strokeLineJoin, std::move(value)).strokeLine;
  };
  EXPECT_EQ(join("ARCS"), PaintStrokeLineJoin::Miter);
  EXPECT_EQ(join("Miter-Clip"), PaintStrokeLineJoin::Miter);
  EXPECT_EQ(join("bevel"), PaintStrokeLineJoin::Bevel);
  EXPECT_EQ(join("ROUND"), PaintStrokeLineJoin::Round);
  EXPECT_EQ(join("round "), PaintStrokeLineJoin::Miter);
  EXPECT_EQ(join("bogus"), PaintStrokeLineJoin::Miter);
}

}  // namespace
}  // namespace tessaline
