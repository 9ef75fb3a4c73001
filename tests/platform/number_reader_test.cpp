#include "platform/number_reader.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tessaline {
namespace {

TEST(NumberReader, ReadsTheLongestLeadingDecimalNumber) {
  struct Case {
    const char* text;
    float expected;
  };
  const Case cases[] = {
      {"10", 10},     {"10px", 10},   {"50%", 50},       {"  \t\n7", 7},   {"-3.5", -3.5f},
      {"+2", 2},      {".5", 0.5f},   {"-.5", -0.5f},    {"5.", 5},        {"1e3", 1000},
      {"1E-2", 0.01f}, {"2e", 2},     {"2e+", 2},        {"1.5.5", 1.5f},  {"10,20", 10},
      {"0x1A", 0},    {"3 4", 3},     {"1e+2x", 100},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(readLenientFloat(c.text), c.expected);
  }
}

TEST(NumberReader, GivesZeroWhenNoNumberStartsTheText) {
  for (const char* text : {"", " ", "auto", "-", ".", "-.", "+", "e5", "inf", "nan", "Infinity",
                           "x10", "--1"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(readLenientFloat(text), 0.0f);
  }
}

TEST(NumberReader, OutOfRangeMagnitudesSaturate) {
  EXPECT_EQ(readLenientFloat("1e60"), std::numeric_limits<float>::infinity());
  EXPECT_EQ(readLenientFloat("-1e60"), -std::numeric_limits<float>::infinity());
  EXPECT_EQ(readLenientFloat("1e-60"), 0.0f);
  EXPECT_EQ(readLenientFloat("0.00000000000000000000000000000000000000000000000001"), 0.0f);
}

TEST(NumberReader, RoundsToTheNearestFloat) {
  EXPECT_EQ(readLenientFloat("0.1"), 0.1f);
  EXPECT_EQ(readLenientFloat("3.14159265358979"), 3.14159265358979f);
  EXPECT_EQ(readLenientFloat("16777217"), 16777216.0f);
}

}  // namespace
}  // namespace tessaline
