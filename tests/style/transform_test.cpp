#include "style/transform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "style/size_only_canvas.h"
#include "style/transform_functions.h"

namespace tessaline {
namespace {

using testing::SizeOnlyCanvas;

// The rotation constant sits ~1.5e-7 below pi, so a "right angle" turns points of size ~10 by
// ~1e-6 less than exactly; other results are exact up to double rounding.
constexpr double kTolerance = 1e-5;

const SizeOnlyCanvas kCanvas(256, 256);
constexpr Rect kUnitBox{0, 0, 256, 256};  // one pixel per view-box unit

AffineTransform matrixFor(const std::string& transform, const Rect& viewBox = kUnitBox) {
  const TransformResult result = TransformHelper::getTransformMatrix(transform, kCanvas, viewBox);
  EXPECT_FALSE(result.error) << *result.error;
  EXPECT_TRUE(result.matrix);
  return result.matrix.value_or(AffineTransform{});
}

std::string errorFor(const std::string& transform) {
  const TransformResult result = TransformHelper::getTransformMatrix(transform, kCanvas, kUnitBox);
  EXPECT_FALSE(result.matrix);
  return result.error.value_or("<no error>");
}

void expectMaps(const AffineTransform& m, Point from, Point to) {
  const Point actual = m.apply(from);
  EXPECT_NEAR(actual.x, to.x, kTolerance);
  EXPECT_NEAR(actual.y, to.y, kTolerance);
}

TEST(ConvertXToVP, DividesByTheLargerViewBoxToCanvasRatio) {
  const SizeOnlyCanvas square(200, 200);
  EXPECT_EQ(convertXToVP(3.0f, {0, 0, 100, 50}, square), 6.0f);  // rx 0.5 wins
  EXPECT_EQ(convertXToVP(3.0f, {0, 0, 50, 100}, square), 6.0f);  // ry 0.5 wins
  EXPECT_EQ(convertXToVP(3.0f, {0, 0, 100, 100}, SizeOnlyCanvas(200, 100)), 3.0f);
  EXPECT_EQ(convertXToVP(3.0f, {0, 0, 400, 400}, square), 1.5f);
  // The view box origin plays no part.
  EXPECT_EQ(convertXToVP(3.0f, {-70, 900, 100, 50}, square), 6.0f);
}

TEST(TransformHelper, NoTransformGivesThePureViewportScale) {
  const Rect box{0, 0, 100, 50};
  const SizeOnlyCanvas canvas(200, 200);
  for (const std::optional<std::string>& text : {std::optional<std::string>{}, {""}}) {
    SCOPED_TRACE(text.value_or("<absent>"));
    const TransformResult result = TransformHelper::getTransformMatrix(text, canvas, box);
    ASSERT_TRUE(result.matrix);
    EXPECT_FALSE(result.error);
    EXPECT_EQ(*result.matrix, AffineTransform::makeScale(2, 2));
  }
}

TEST(TransformHelper, RightmostFunctionActsFirstAndTheViewportScaleLast) {
  expectMaps(matrixFor("translate(10 0) scale(2)"), {1, 1}, {12, 2});
  expectMaps(matrixFor("scale(2) translate(10 0)"), {1, 1}, {22, 2});
  expectMaps(matrixFor("translate(10 0) matrix(2 0 0 2 0 0)"), {1, 1}, {12, 2});
  // Half-size view box: two pixels per unit, applied after the list.
  expectMaps(matrixFor("translate(10 0)", {0, 0, 128, 128}), {1, 1}, {22, 2});
}

TEST(TransformHelper, BasicFunctions) {
  expectMaps(matrixFor("translate(5)"), {1, 1}, {6, 1});
  expectMaps(matrixFor("translate(5 7)"), {1, 1}, {6, 8});
  expectMaps(matrixFor("scale(2)"), {3, 4}, {6, 8});
  expectMaps(matrixFor("scale(2 3)"), {3, 4}, {6, 12});
  expectMaps(matrixFor("matrix(1 2 3 4 5 6)"), {1, 1}, {9, 12});
  expectMaps(matrixFor("rotate(90)"), {1, 0}, {0, 1});
  EXPECT_EQ(matrixFor("matrix(1 0 0 1 5 5)"), matrixFor("translate(5 5)"));
}

TEST(TransformHelper, RotationAboutAPoint) {
  const AffineTransform about = matrixFor("rotate(90 10 10)");
  expectMaps(about, {10, 10}, {10, 10});
  expectMaps(about, {20, 10}, {10, 20});
  // Commas do not separate parameters: one piece, read as 90, about the origin.
  const AffineTransform origin = matrixFor("rotate(90,10,10)");
  expectMaps(origin, {10, 10}, {-10, 10});
}

TEST(TransformHelper, RotationUsesTheFloatAngleWithTheFixedPiConstant) {
  // (angle × 3.1415925f) / 180 in float; the literals below are those float results, which
  // differ from both float(pi) and a double computation.
  EXPECT_EQ(matrixFor("rotate(180)"), AffineTransform::identity().rotated(0x1.921fb4p+1f));
  EXPECT_NE(matrixFor("rotate(180)"), AffineTransform::identity().rotated(M_PI));
  EXPECT_EQ(matrixFor("rotate(5)"), AffineTransform::identity().rotated(0x1.657182p-4f));
  EXPECT_NE(matrixFor("rotate(5)"), AffineTransform::identity().rotated(5 * M_PI / 180));
}

TEST(TransformHelper, ParametersSplitOnBlanksAndReadLeniently) {
  expectMaps(matrixFor("translate(10,20)"), {0, 0}, {10, 0});
  expectMaps(matrixFor("translate(  10   20 )"), {0, 0}, {10, 20});
  expectMaps(matrixFor("translate(1e1 2px)"), {0, 0}, {10, 2});
  expectMaps(matrixFor("translate(abc 3)"), {0, 0}, {0, 3});
}

TEST(TransformHelper, WrongParameterCountsDropTheFunctionSilently) {
  const AffineTransform translate5 = matrixFor("translate(5)");
  for (const char* text :
       {"rotate(90 10) translate(5)", "translate(5) rotate(90 10 10 10)",
        "translate(1 2 3) translate(5)", "scale() translate(5)", "translate(5) matrix(1 0 0 1 5)",
        "matrix(1 0 0 1 5 5 5)translate(5)", "scale(1 2 3)translate(5)"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(matrixFor(text), translate5);
  }
}

TEST(TransformHelper, FunctionsAreSeparatedByBlanksOnly) {
  const AffineTransform expected = matrixFor("translate(10) rotate(45)");
  EXPECT_EQ(matrixFor("translate(10)rotate(45)"), expected);
  EXPECT_EQ(matrixFor("translate(10)   rotate(45)   "), expected);
  for (const char* text :
       {"translate(10), rotate(45)", "translate(10)\trotate(45)", "translate(10)\nrotate(45)"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(errorFor(text), "Invalid transform function $functionName");
  }
}

TEST(TransformHelper, UnknownNamesEndParsingWithTheLiteralMessage) {
  for (const char* text : {"skewX(30)", "skewY(30)", " scale(2)", "Scale(2)", "SCALE(2)",
                           "scale (2)", "scale(2) x", "scale(2) xyz", "scale(2) rotate", "(", ")",
                           "x", "()", "scale(2) é", "translate(5) foo(1) scale(2)",
                           // "(" with a combining mark is another character, not a "(".
                           "scale(\u03012)"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(errorFor(text), "Invalid transform function $functionName");
  }
}

TEST(TransformHelper, UnclosedParametersTakeOneCharacter) {
  // Without ")" the parameter text is the one character after "(".
  expectMaps(matrixFor("scale(22"), {1, 1}, {2, 2});
  expectMaps(matrixFor("translate(12"), {0, 0}, {1, 0});
  expectMaps(matrixFor("scale(2"), {1, 1}, {2, 2});
  // Counted in characters, not bytes: the multi-byte "€" is that one character and reads as 0.
  expectMaps(matrixFor("scale(€"), {1, 1}, {0, 0});
  // The character after the parameter stands in for ")" and is skipped, whatever it is.
  EXPECT_EQ(matrixFor("scale(23 rotate(90"), matrixFor("scale(2) rotate(9)"));
  EXPECT_EQ(matrixFor("scale(23rotate(9"), matrixFor("scale(2) rotate(9)"));
  EXPECT_EQ(errorFor("scale(234 rotate(9"), "Invalid transform function $functionName");
  // A later ")" closes the parameters, however far away it is.
  expectMaps(matrixFor("scale(22 translate(5)"), {1, 1}, {22, 0});
}

TEST(TransformHelper, TextEndingRightAfterAnOpeningParenthesisFailsToParse) {
  for (const char* text : {"scale(", "rotate(", "matrix(", "translate(10) scale("}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(errorFor(text), "Failed to parse transforms");
  }
}

TEST(TransformFunctions, MissingFieldsReportTheirFunction) {
  EXPECT_EQ(Transform().transform({}).error, "Invalid Transform");
  EXPECT_EQ(RotateTransform().transform({}).error, "Invalid parameters for Rotation");
  EXPECT_EQ(TranslateTransform().transform({}).error, "Invalid parameters for Translate");
  EXPECT_EQ(ScaleTransform().transform({}).error, "Invalid parameters for Scale");
  MatrixTransform partial = *MatrixTransform::fromParameters("1 0 0 1 5 5");
  partial.f.reset();
  EXPECT_EQ(partial.transform({}).error, "Invalid parameters for Matrix");
  EXPECT_FALSE(partial.transform({}).matrix);

  // A rotation centre needs both coordinates; with one it turns about the origin.
  RotateTransform rotate = *RotateTransform::fromParameters("90 10 10");
  rotate.y.reset();
  const TransformResult aboutOrigin = rotate.transform({});
  ASSERT_TRUE(aboutOrigin.matrix);
  expectMaps(*aboutOrigin.matrix, {10, 10}, {-10, 10});
}

}  // namespace
}  // namespace tessaline
