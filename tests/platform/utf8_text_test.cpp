#include "platform/utf8_text.h"

#include <gtest/gtest.h>

namespace tessaline {
namespace {

TEST(Utf8Text, CountsUserPerceivedCharacters) {
  // é, €, an emoji, then "e" + combining acute, "(" + a variation selector, CR LF, and a mark
  // after a tab, which attaches to nothing.
  const Utf8Text text("a\u00e9\u20ac\U0001F600e\u0301(\uFE0F\r\nz\t\u0301");
  ASSERT_EQ(text.size(), 10u);
  EXPECT_EQ(text.codePoints().size(), 13u);
  EXPECT_EQ(text.character(1), U'\u00e9');
  EXPECT_EQ(text.character(3), U'\U0001F600');
  EXPECT_EQ(text.slice(1, 3), "\u00e9\u20ac");
  EXPECT_EQ(text.slice(4, 5), "e\u0301");
  // Characters of several code points match no single code point.
  for (std::size_t i : {4, 5, 6}) EXPECT_EQ(text.character(i), Utf8Text::kCompound) << i;
  EXPECT_EQ(text.slice(7, 8), "z");
  EXPECT_EQ(text.character(8), U'\t');
  EXPECT_EQ(text.character(9), U'\u0301');
  EXPECT_EQ(text.slice(10, 10), "");
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
