#include "platform/affine_transform.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tessaline {
namespace {

constexpr double kTolerance = 1e-12;  // a few ulps of the values used here

void expectNear(Point actual, Point expected) {
  EXPECT_NEAR(actual.x, expected.x, kTolerance);
  EXPECT_NEAR(actual.y, expected.y, kTolerance);
}

TEST(AffineTransform, LaterOperationsActOnThePointFirst) {
  // Translate then scale on the matrix means: scale the point, then translate it.
  const auto t = AffineTransform::makeTranslation(10, 20).scaled(2, 3);
  expectNear(t.apply({1, 1}), {12, 23});
  const auto s = AffineTransform::makeScale(2, 3).translated(10, 20);
  expectNear(s.apply({1, 1}), {22, 63});
}

TEST(AffineTransform, PositiveRotationTurnsXTowardY) {
  expectNear(AffineTransform::identity().rotated(M_PI / 2).apply({1, 0}), {0, 1});
}

TEST(AffineTransform, RotationAboutAPointEqualsTranslateRotateTranslate) {
  const auto about =
      AffineTransform::identity().translated(10, 10).rotated(M_PI / 2).translated(-10, -10);
  expectNear(about.apply({10, 10}), {10, 10});
  expectNear(about.apply({20, 10}), {10, 20});
}

TEST(AffineTransform, ConcatAppliesTheFirstArgumentFirst) {
  const auto t1 = AffineTransform::makeScale(2, 2);
  const auto t2 = AffineTransform::makeTranslation(5, 0);
  expectNear(AffineTransform::concat(t1, t2).apply({1, 1}), {7, 2});
  expectNear(AffineTransform::concat(t2, t1).apply({1, 1}), {12, 2});
}

}  // namespace
}  // namespace tessaline
