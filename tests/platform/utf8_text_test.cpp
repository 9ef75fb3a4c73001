#include "platform/utf8_text.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace tessaline {
namespace {

TEST(Utf8Text, CountsUserPerceivedCharacters) {
  // Where characters break is checked by the conformance test below; here what they hold.
  // é, €, an emoji, then "e" + combining acute, "(" + a variation selector, CR LF, and a mark
  // after a tab, which attaches to nothing.
  const Utf8Text text("a\u00e9\u20ac\U0001F600e\u0301(\uFE0F\r\nz\t\u0301");
  ASSERT_EQ(text.size(), 10u);
  EXPECT_EQ(text.codePoints().size(), 13u);
  EXPECT_EQ(text.character(1), U'\u00e9');
  EXPECT_EQ(text.character(3), U'\U0001F600');
  EXPECT_EQ(text.slice(4, 5), "e\u0301");
  // Characters of several code points match no single code point.
  for (std::size_t i : {4, 5, 6}) EXPECT_EQ(text.character(i), Utf8Text::kCompound) << i;
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

// The UTF-8 bytes of code point c: a lead byte, then six bits a byte.
std::string utf8Of(char32_t c) {
  if (c < 0x80) return std::string(1, static_cast<char>(c));
  const int tail = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
  std::string bytes(1, static_cast<char>((0xFF00 >> (tail + 1)) | (c >> (6 * tail))));
  for (int i = tail - 1; i >= 0; --i) bytes += static_cast<char>(0x80 | ((c >> (6 * i)) & 0x3F));
  return bytes;
}

// Every case of the Unicode Consortium's own grapheme break test (from Debian's unicode-data,
// which scripts/bootstrap installs): "÷ 0020 × 0308 ÷" marks where characters begin. Its cases hold
// no surrogates, which UTF-8 cannot carry.
TEST(Utf8Text, BreaksCharactersAsTheUnicodeConformanceTestDoes) {
  std::ifstream file(TESSALINE_GRAPHEME_BREAK_TEST);
  ASSERT_TRUE(file) << "missing " << TESSALINE_GRAPHEME_BREAK_TEST << " (package unicode-data)";
  int cases = 0;
  for (std::string line; std::getline(file, line);) {
    std::istringstream tokens(line.substr(0, line.find('#')));
    std::string text;
    std::vector<std::size_t> expected;  // byte offsets where characters begin
    for (std::string token; tokens >> token;) {
      if (token == "\u00f7") {
        expected.push_back(text.size());
      } else if (token != "\u00d7") {
        text += utf8Of(static_cast<char32_t>(std::stoul(token, nullptr, 16)));
      }
    }
    if (expected.empty()) continue;  // a comment line
    ++cases;
    const Utf8Text characters(text);
    std::vector<std::size_t> starts(characters.size() + 1);
    for (std::size_t i = 0; i < starts.size(); ++i) starts[i] = characters.slice(0, i).size();
    EXPECT_EQ(starts, expected) << line;
  }
  EXPECT_GT(cases, 500);
}

}  // namespace
}  // namespace tessaline
