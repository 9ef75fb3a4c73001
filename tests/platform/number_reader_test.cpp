#include "platform/number_reader.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <utility>

namespace tessaline {
namespace {

// Where no number starts the text the answer is 0, and inf and nan are not numbers here. Values
// round to the nearest float; out of range magnitudes saturate.
TEST(NumberReader, ReadsTheLongestLeadingDecimalNumber) {
  constexpr float kInf = std::numeric_limits<float>::infinity();
  const std::pair<const char*, float> cases[] = {
      {"10", 10},      {"10px", 10},   {"50%", 50},      {"  \t\n7", 7},  {"-3.5", -3.5f},
      {"+2", 2},       {".5", 0.5f},   {"-.5", -0.5f},   {"5.", 5},       {"1e3", 1000},
      {"1E-2", 0.01f}, {"2e", 2},      {"2e+", 2},       {"1.5.5", 1.5f}, {"10,20", 10},
      {"0x1A", 0},     {"3 4", 3},     {"1e+2x", 100},   {"", 0},         {" ", 0},
      {"auto", 0},     {"-", 0},       {".", 0},         {"-.", 0},       {"+", 0},
      {"e5", 0},       {"inf", 0},     {"nan", 0},       {"Infinity", 0}, {"x10", 0},
      {"--1", 0},      {"1e60", kInf}, {"-1e60", -kInf}, {"1e-60", 0},
  };
  for (const auto& [text, expected] : cases) EXPECT_EQ(readLenientFloat(text), expected) << text;
  EXPECT_EQ(readLenientFloat("3.14159265358979"), 3.14159265358979f);
  EXPECT_EQ(readLenientFloat("0.00000000000000000000000000000000000000000000000001"), 0.0f);
}

// Short decimals take a quicker road than the general conversion; both must give the same bits,
// including around the largest integer a float holds and with ten digits after the point.
TEST(NumberReader, ShortDecimalsRoundExactlyAsTheGeneralConversion) {
  const auto expectSameAsFromChars = [](const std::string& text) {
    float expected = 0;
    std::from_chars(text.data(), text.data() + text.size(), expected);
    const float read = readLenientFloat(text), negated = readLenientFloat("-" + text);
    ASSERT_EQ(std::memcmp(&read, &expected, sizeof read), 0) << text;
    expected = -expected;  // -0 too
    ASSERT_EQ(std::memcmp(&negated, &expected, sizeof negated), 0) << text;
  };
  std::mt19937 engine(11);
  for (int i = 0; i < 200000; ++i) {
    std::string text;
    for (int k = static_cast<int>(engine() % 9); k > 0; --k) text += char('0' + engine() % 10);
    text += '.';
    for (int k = static_cast<int>(engine() % 12); k > 0; --k) text += char('0' + engine() % 10);
    if (text != ".") expectSameAsFromChars(text);
  }
  for (const char* text : {"16777216", "16777217", "1.6777217", "0.0000000001", "0.00000000001",
                           "999999999", "1677721.6", "0", "0.0"}) {
    expectSameAsFromChars(text);
  }
}

}  // namespace
}  // namespace tessaline
