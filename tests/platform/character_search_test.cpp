#include "platform/character_search.h"

#include <gtest/gtest.h>

namespace tessaline {
namespace {

using Pieces = std::vector<std::string_view>;
constexpr auto npos = std::string_view::npos;

// A combining acute accent (U+0301) makes the character before it a different character, so
// it no longer matches a prefix, a search or a separator; ASCII text behaves as bytes.
TEST(CharacterSearch, MatchesWholeCharactersOnly) {
  EXPECT_TRUE(startsWithCharacters("url(#a)", "url(#"));
  EXPECT_TRUE(startsWithCharacters("url(#\u00e9)", "url(#"));
  EXPECT_FALSE(startsWithCharacters("url(#\u0301a)", "url(#"));
  EXPECT_FALSE(startsWithCharacters("url", "url(#"));

  EXPECT_EQ(findCharacters("a)b)", ")"), 1u);
  EXPECT_EQ(findCharacters("a)b)", ")", 2), 3u);
  EXPECT_EQ(findCharacters("url(#c)\u0301", ")"), npos);
  EXPECT_EQ(findCharacters("a)\u0301b)", ")"), 5u);
  // CR LF is one character: neither half is found on its own.
  EXPECT_EQ(findCharacters("a\r\nb", "\n"), npos);
  EXPECT_EQ(findCharacters("a\r\nb", "\r\n"), 1u);
}

TEST(CharacterSearch, SplitsAtWholeCharacterSeparators) {
  EXPECT_EQ(splitOnCharacters("a  b", " "), (Pieces{"a", "", "b"}));
  EXPECT_EQ(splitOnCharacters("", ";"), (Pieces{""}));
  EXPECT_EQ(splitOnCharacters("\u00e9;x;", ";"), (Pieces{"\u00e9", "x", ""}));
  EXPECT_EQ(splitOnCharacters("fill:red;\u0301stroke:blue", ";"),
            (Pieces{"fill:red;\u0301stroke:blue"}));
  EXPECT_EQ(splitOnCharacters("2 \u0301 3", " "), (Pieces{"2 \u0301", "3"}));
}

}  // namespace
}  // namespace tessaline
