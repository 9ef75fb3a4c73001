#include "platform/color.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace tessaline {
namespace {

// The colour whose components are the bytes of 0xRRGGBBAA, each divided by 255.
Color rgba(std::uint32_t value) {
  return {((value >> 24) & 0xFF) / 255.0, ((value >> 16) & 0xFF) / 255.0,
          ((value >> 8) & 0xFF) / 255.0, (value & 0xFF) / 255.0};
}

TEST(ColorFromHexString, SixOrEightDigitsWithOptionalHash) {
  EXPECT_EQ(Color::fromHexString("#FF8000"), (Color{1.0, 128 / 255.0, 0.0, 1.0}));
  EXPECT_EQ(Color::fromHexString("ff8000"), (Color{1.0, 128 / 255.0, 0.0, 1.0}));
  EXPECT_EQ(Color::fromHexString("#11223344"), rgba(0x11223344));
  EXPECT_EQ(Color::fromHexString("aAbBcCdD"), rgba(0xAABBCCDD));
}

TEST(ColorFromHexString, OtherLengthsFail) {
  for (const char* text :
       {"", "#", "#fff", "fff", "#fffff", "#fffffff", "#fffffffff", "##ffffff", "ffffffffff"}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(Color::fromHexString(text));
  }
}

TEST(ColorFromHexString, ReadsTheLongestLeadingRunOfHexDigits) {
  // Trailing garbage ends the number without failing it; "FF" is appended before scanning.
  EXPECT_EQ(Color::fromHexString("#12zzzz"), rgba(0x12));
  EXPECT_EQ(Color::fromHexString("#123456zz"), rgba(0x123456));
  // Nothing to read fails.
  for (const char* text : {"#gg0000", "#zzzzzz", "-1234567", "+1234567", "#        "}) {
    SCOPED_TRACE(text);
    EXPECT_FALSE(Color::fromHexString(text));
  }
}

TEST(ColorFromHexString, ScannerPrefixAndLeadingWhiteSpace) {
  EXPECT_EQ(Color::fromHexString("0x123456"), rgba(0x123456));
  EXPECT_EQ(Color::fromHexString("#0X1234"), rgba(0x1234FF));
  // "0x" without a digit after it reads as the single digit 0.
  EXPECT_EQ(Color::fromHexString("#0xzzzz"), rgba(0));
  EXPECT_EQ(Color::fromHexString("0x"), std::nullopt);  // two characters: wrong length
  // White space before the number is skipped, line breaks and no-break spaces included.
  EXPECT_EQ(Color::fromHexString(" 1234567"), rgba(0x1234567));
  EXPECT_EQ(Color::fromHexString("#\t\n1234"), rgba(0x1234FF));
  EXPECT_EQ(Color::fromHexString("#\u00A012345"), rgba(0x12345FF));
  // ...but not inside it.
  EXPECT_EQ(Color::fromHexString("#12 345"), rgba(0x12));
}

TEST(ColorFromHexString, LengthsCountCharactersNotBytes) {
  // Six characters (seven bytes), so "FF" is appended and the scan stops at the "é".
  EXPECT_EQ(Color::fromHexString("#12345é"), rgba(0x12345));
  // Eight bytes but seven characters.
  EXPECT_FALSE(Color::fromHexString("123456é"));
  // A combining mark joins the character before it: six characters, so "FF" is appended; the
  // scanner then stops at the mark, below the character level.
  EXPECT_EQ(Color::fromHexString("#ff0000\u0301"), rgba(0xFF0000));
}

}  // namespace
}  // namespace tessaline
