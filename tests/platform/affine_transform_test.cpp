#include "platform/affine_transform.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tessaline {
namespace {

TEST(AffineTransform, ComposesInThePlatformsOrder) {
  const auto scale = AffineTransform::makeScale(2, 2);
  const auto shift = AffineTransform::makeTranslation(5, 0);
  const auto identity = AffineTransform::identity();
  struct Case {
    AffineTransform transform;
    Point point, expected;
  };
  const Case cases[] = {
      // A later operation acts on the point first: scale, then translate.
      {AffineTransform::makeTranslation(10, 20).scaled(2, 3), {1, 1}, {12, 23}},
      {AffineTransform::makeScale(2, 3).translated(10, 20), {1, 1}, {22, 63}},
      // A positive rotation turns x toward y; about a point it is translate, rotate, translate.
      {identity.rotated(M_PI / 2), {1, 0}, {0, 1}},
      {identity.translated(10, 10).rotated(M_PI / 2).translated(-10, -10), {20, 10}, {10, 20}},
      // concat applies its first argument first.
      {AffineTransform::concat(scale, shift), {1, 1}, {7, 2}},
      {AffineTransform::concat(shift, scale), {1, 1}, {12, 2}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "(" << c.expected.x << ", " << c.expected.y << ")");
    const Point mapped = c.transform.apply(c.point);
    EXPECT_NEAR(mapped.x, c.expected.x, 1e-12);  // a few ulps of the values used here
    EXPECT_NEAR(mapped.y, c.expected.y, 1e-12);
  }
}

}  // namespace
}  // namespace tessaline
