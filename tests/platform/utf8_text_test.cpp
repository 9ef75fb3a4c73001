#include "platform/utf8_text.h"

#include <gtest/gtest.h>

namespace tessaline {
namespace {

TEST(Utf8Text, CountsUserPerceivedCharacters) {
  // é, €, an emoji, then "e" + combining acute, "(" + a variation selector, and CR LF.
  const Utf8Text text("a\u00e9\u20ac\U0001F600e\u0301(\uFE0F\r\nz");
  ASSERT_EQ(text.size(), 8u);
  EXPECT_EQ(text.character(1), U'\u00e9');
  EXPECT_EQ(text.character(3), U'\U0001F600');
  EXPECT_EQ(text.slice(1, 3), "\u00e9\u20ac");
  EXPECT_EQ(text.slice(4, 5), "e\u0301");
  // Characters of several code points match no single code point.
  EXPECT_EQ(text.character(4), Utf8Text::kCompound);
  EXPECT_EQ(text.character(5), Utf8Text::kCompound);
  EXPECT_EQ(text.character(6), Utf8Text::kCompound);
  EXPECT_EQ(text.slice(7, 8), "z");
  EXPECT_EQ(text.slice(8, 8), "");
  EXPECT_EQ(text.codePoints().size(), 11u);
}

TEST(Utf8Text, NothingAttachesToAControlCharacter) {
  const Utf8Text text("\t\u0301");
  ASSERT_EQ(text.size(), 2u);
  EXPECT_EQ(text.character(0), U'\t');
  EXPECT_EQ(text.character(1), U'\u0301');
}

TEST(Utf8Text, MalformedBytesAreCharactersOfTheirOwn) {
  for (const char* bytes :
       {"\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80\x80", "\xE2\x82"}) {
    SCOPED_TRACE(testing::PrintToString(bytes));
    const Utf8Text text(bytes);
    EXPECT_EQ(text.size(), std::string_view(bytes).size());
    for (std::size_t i = 0; i < text.size(); ++i) EXPECT_EQ(text.character(i), U'\uFFFD');
  }
  // A broken sequence does not swallow the character after it.
  const Utf8Text text("\xE2\x82x");
  ASSERT_EQ(text.size(), 3u);
  EXPECT_EQ(text.character(2), U'x');
}

}  // namespace
}  // namespace tessaline
