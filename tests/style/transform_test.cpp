#include "style/transform.h"

#include <gtest/gtest.h>

#include <string>

#include "style/style_test_helpers.h"
#include "style/transform_functions.h"

namespace tessaline {
namespace {

using testing::SizeOnlyCanvas;

// The rotation constant sits ~1.5e-7 below pi, so a "right angle" turns points of size ~10 by
// ~1e-6 less than exactly; other results are exact up to double rounding.
constexpr double kTolerance = 1e-5;

const SizeOnlyCanvas kCanvas(256, 256);
constexpr Rect kUnitBox{0, 0, 256, 256};  // one pixel per view-box unit

TransformResult resultFor(const std::string& transform, const Rect& viewBox = kUnitBox) {
  return TransformHelper::getTransformMatrix(transform, kCanvas, viewBox);
}

AffineTransform matrixFor(const std::string& transform, const Rect& viewBox = kUnitBox) {
  const TransformResult result = resultFor(transform, viewBox);
  EXPECT_EQ(result.error, std::nullopt) << transform;
  return result.matrix.value();
}

void expectMaps(const AffineTransform& m, Point from, Point to) {
  const Point actual = m.apply(from);
  EXPECT_NEAR(actual.x, to.x, kTolerance);
  EXPECT_NEAR(actual.y, to.y, kTolerance);
}

TEST(ConvertXToVP, DividesByTheLargerViewBoxToCanvasRatio) {
  const SizeOnlyCanvas square(200, 200);
  EXPECT_EQ(convertXToVP(3.0f, {-70, 900, 100, 50}, square), 6.0f);  // rx 0.5 wins
  EXPECT_EQ(convertXToVP(3.0f, {0, 0, 50, 100}, square), 6.0f);      // ry 0.5 wins
  EXPECT_EQ(convertXToVP(3.0f, {0, 0, 100, 100}, SizeOnlyCanvas(200, 100)), 3.0f);
  // A box whose far corner lies left of or above its origin has a negative size; the ratios use
  // its magnitude, so the larger one still wins.
  EXPECT_EQ(convertXToVP(3.0f, {0, 0, -100, 50}, square), 6.0f);
  EXPECT_EQ(convertXToVP(3.0f, {0, 0, 50, -100}, square), 6.0f);
}

// The rightmost function acts first and the viewport scale last. Functions are separated by spaces
// or nothing, and one with the wrong number of parameters is dropped silently. Parameters split on
// blanks only (so "rotate(90,10,10)" is one piece, read as 90, about the origin) and are read
// leniently; a blank carrying a combining mark is no blank. Without ")" the parameter text is the
// one character after "(", counted in characters, not bytes ("€" reads as 0), and the character
// after it is skipped whatever it is; a later ")" closes the parameters however far away it is.
TEST(TransformHelper, MapsPoints) {
  struct Case {
    const char* text;
    double fromX, fromY, toX, toY;
  };
  const Case cases[] = {{"", 1, 1, 1, 1},
                        {"translate(10 0) scale(2)", 1, 1, 12, 2},
                        {"translate(10 0) matrix(2 0 0 2 0 0)", 1, 1, 12, 2},
                        {"translate(10)rotate(90)   ", 1, 0, 10, 1},
                        {"scale(2 3)", 3, 4, 6, 12},
                        {"matrix(1 2 3 4 5 6)", 1, 1, 9, 12},
                        {"rotate(90 10 10)", 20, 10, 10, 20},
                        {"rotate(90,10,10)", 10, 10, -10, 10},
                        {"rotate(90 10) translate(5)", 1, 1, 6, 1},
                        {"translate(1 2 3) scale() translate(5)", 1, 1, 6, 1},
                        {"translate(5) matrix(1 0 0 1 5)", 1, 1, 6, 1},
                        {"translate(  10   20 )", 0, 0, 10, 20},
                        {"translate(1e1 2px)", 0, 0, 10, 2},
                        {"translate(abc 3)", 0, 0, 0, 3},
                        {"scale(2 \u0301)", 1, 1, 2, 2},
                        {"scale(22", 1, 1, 2, 2},
                        {"scale(€", 1, 1, 0, 0},
                        {"scale(23translate(5", 1, 1, 12, 2},
                        {"scale(22 translate(5)", 1, 1, 22, 0}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    expectMaps(matrixFor(c.text), {c.fromX, c.fromY}, {c.toX, c.toY});
  }
  // Half-size view box: two pixels per unit, applied after the list.
  expectMaps(matrixFor("translate(10 0)", {0, 0, 128, 128}), {1, 1}, {22, 2});
}

// Unknown names and separators other than spaces end parsing with the literal message; text
// ending right after an opening parenthesis fails to parse.
TEST(TransformHelper, Errors) {
  const auto expectError = [](const char* text, const char* error) {
    EXPECT_EQ(resultFor(text).error, error) << text;
    EXPECT_FALSE(resultFor(text).matrix) << text;
  };
  for (const char* text : {"translate(10), rotate(45)", "translate(10)\trotate(45)",
                           "scale(234 rotate(9", "skewX(30)", " scale(2)", "Scale(2)", "scale (2)",
                           "scale(2) x", "()", "scale(\u03012)"}) {  // a combining mark on "("
    expectError(text, "Invalid transform function $functionName");
  }
  for (const char* text : {"scale(", "translate(10) scale("}) {
    expectError(text, "Failed to parse transforms");
  }
}

TEST(TransformHelper, RotationUsesTheFloatAngleWithTheFixedPiConstant) {
  // (angle × 3.1415925f) / 180 in float: the literal is that float result, which differs from
  // both float(pi) and a double computation, so exact equality tells them apart.
  EXPECT_EQ(matrixFor("rotate(5)"), AffineTransform::identity().rotated(0x1.657182p-4f));
}

TEST(TransformFunctions, MissingFieldsReportTheirFunction) {
  EXPECT_EQ(Transform().transform({}).error, "Invalid Transform");
  EXPECT_EQ(RotateTransform().transform({}).error, "Invalid parameters for Rotation");
  EXPECT_EQ(TranslateTransform().transform({}).error, "Invalid parameters for Translate");
  EXPECT_EQ(ScaleTransform().transform({}).error, "Invalid parameters for Scale");
  MatrixTransform partial = *MatrixTransform::fromParameters("1 0 0 1 5 5");
  partial.f.reset();
  EXPECT_EQ(partial.transform({}).error, "Invalid parameters for Matrix");

  // A rotation centre needs both coordinates; with one it turns about the origin.
  RotateTransform rotate = *RotateTransform::fromParameters("90 10 10");
  rotate.y.reset();
  ASSERT_TRUE(rotate.transform({}).matrix);
  expectMaps(*rotate.transform({}).matrix, {10, 10}, {-10, 10});
}

}  // namespace
}  // namespace tessaline
