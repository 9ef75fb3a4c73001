#include "platform/utf8_text.h"

#include <gtest/gtest.h>

namespace tessaline {
namespace {

TEST(Utf8Text, CountsCodePoints) {
  const Utf8Text text("a\u00e9\u20ac\U0001F600z");
  ASSERT_EQ(text.size(), 5u);
  EXPECT_EQ(text.codePoint(1), U'\u00e9');
  EXPECT_EQ(text.codePoint(2), U'\u20ac');
  EXPECT_EQ(text.codePoint(3), U'\U0001F600');
  EXPECT_EQ(text.slice(1, 3), "\u00e9\u20ac");
  EXPECT_EQ(text.slice(4, 5), "z");
  EXPECT_EQ(text.slice(5, 5), "");
}

TEST(Utf8Text, MalformedBytesAreCharactersOfTheirOwn) {
  for (const char* bytes :
       {"\xC3", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80\x80", "\xE2\x82"}) {
    SCOPED_TRACE(testing::PrintToString(bytes));
    const Utf8Text text(bytes);
    EXPECT_EQ(text.size(), std::string_view(bytes).size());
    for (std::size_t i = 0; i < text.size(); ++i) EXPECT_EQ(text.codePoint(i), U'\uFFFD');
  }
  // A broken sequence does not swallow the character after it.
  const Utf8Text text("\xE2\x82x");
  ASSERT_EQ(text.size(), 3u);
  EXPECT_EQ(text.codePoint(2), U'x');
}

}  // namespace
}  // namespace tessaline
