#include "platform/color.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <utility>

namespace tessaline {
namespace {

// In order: six or eight characters with an optional "#" (six are opaque: "FF" is appended), and
// other lengths or a second "#" fail; the longest leading run of hex digits is read, and no digit
// (a sign included) fails; the scanner's "0x" prefix, and "0x" with no digit after it as the digit
// 0; white space (line breaks, no-break space) is skipped before the number but ends it inside.
// Lengths count characters, not bytes: "#12345é" is six characters, gets "FF" and stops at the
// "é"; "123456é" is eight bytes but seven characters; a combining mark joins the character before
// it for the length, but the scanner reads code points and stops at the mark. A Hangul syllable
// spelled in jamo is one character; a soft hyphen is a control that nothing joins.
TEST(ColorFromHexString, FollowsThePlatformScanner) {
  // Expected colours as 0xRRGGBBAA, each byte divided by 255.
  const auto colour = [](std::uint32_t v) {
    return Color{(v >> 24) / 255.0, ((v >> 16) & 0xFF) / 255.0, ((v >> 8) & 0xFF) / 255.0,
                 (v & 0xFF) / 255.0};
  };
  const std::pair<const char*, std::uint32_t> cases[] = {
      {"#FF8000", 0xFF8000FF},
      {"ff8000", 0xFF8000FF},
      {"#11223344", 0x11223344},
      {"aAbBcCdD", 0xAABBCCDD},
      {"#12zzzz", 0x12},
      {"#123456zz", 0x123456},
      {"0x123456", 0x123456},
      {"#0X1234", 0x1234FF},
      {"#0xzzzz", 0},
      {" 1234567", 0x1234567},
      {"#\t\n1234", 0x1234FF},
      {"#\u00A012345", 0x12345FF},
      {"#12 345", 0x12},
      {"#12345é", 0x12345},
      {"#ff0000\u0301", 0xFF0000},
      {"#12345\u1100\u1161", 0x12345},
  };
  for (const auto& [text, v] : cases) EXPECT_EQ(Color::fromHexString(text), colour(v)) << text;
  for (const char* text : {"", "#fff", "#fffff", "#fffffff", "#fffffffff", "##ffffff", "#gg0000",
                           "-1234567", "#        ", "0x", "123456é", "12345\u00AD\u0301"}) {
    EXPECT_EQ(Color::fromHexString(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace tessaline
