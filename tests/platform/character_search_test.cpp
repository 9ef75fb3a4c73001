#include "platform/character_search.h"

#include <gtest/gtest.h>

namespace tessaline {
namespace {

using Pieces = std::vector<std::string_view>;
constexpr auto npos = std::string_view::npos;

// A combining acute accent (U+0301) makes the character before it a different character, so
// it no longer matches a prefix, a search or a separator; ASCII text behaves as bytes.
TEST(CharacterSearch, MatchesWholeCharactersOnly) {
  EXPECT_TRUE(CharacterText("url(#a)").startsWith("url(#"));
  EXPECT_TRUE(CharacterText("url(#\u00e9)").startsWith("url(#"));
  EXPECT_FALSE(CharacterText("url(#\u0301a)").startsWith("url(#"));
  EXPECT_FALSE(CharacterText("url").startsWith("url(#"));

  EXPECT_EQ(CharacterText("a)b)").find(")"), 1u);
  EXPECT_EQ(CharacterText("a)b)").find(")", 2), 3u);
  EXPECT_EQ(CharacterText("url(#c)\u0301").find(")"), npos);
  EXPECT_EQ(CharacterText("a)\u0301b)").find(")"), 5u);
  // CR LF is one character: neither half is found on its own.
  EXPECT_EQ(CharacterText("a\r\nb").find("\n"), npos);
  EXPECT_EQ(CharacterText("a\r\nb").find("\r\n"), 1u);
}

TEST(CharacterSearch, SplitsAtWholeCharacterSeparators) {
  EXPECT_EQ(splitOnCharacters("a  b", " "), (Pieces{"a", "", "b"}));
  EXPECT_EQ(splitOnCharacters("", ";"), (Pieces{""}));
  EXPECT_EQ(splitOnCharacters("\u00e9;x;", ";"), (Pieces{"\u00e9", "x", ""}));
  EXPECT_EQ(splitOnCharacters("fill:red;\u0301stroke:blue", ";"),
            (Pieces{"fill:red;\u0301stroke:blue"}));
  EXPECT_EQ(splitOnCharacters("2 \u0301 3", " "), (Pieces{"2 \u0301", "3"}));
}

// Trimming goes code point by code point from both ends; a broken sequence at the end is no
// space, and neither is a character merely ending in a space separator's last bytes.
TEST(CharacterSearch, TrimsSpaceSeparatorsAndTabsAtBothEnds) {
  EXPECT_EQ(trimSpacesAndTabs("\t\u00a0 a b\u3000\u2009"), "a b");
  EXPECT_EQ(trimSpacesAndTabs("\u3000\u00a0"), "");
  EXPECT_EQ(trimSpacesAndTabs(" \u0301a "), "\u0301a");
  EXPECT_EQ(trimSpacesAndTabs("\na\r"), "\na\r");
  EXPECT_EQ(trimSpacesAndTabs("a\xe3\x80"), "a\xe3\x80");          // U+3000 cut short
  EXPECT_EQ(trimSpacesAndTabs("a\x80\x80\x80"), "a\x80\x80\x80");  // stray continuation bytes
  EXPECT_EQ(trimSpacesAndTabs("a\xe3\x80\x80\x80"), "a\xe3\x80\x80\x80");  // U+3000, one byte on
  EXPECT_EQ(trimSpacesAndTabs("\xe3\x80\x80\x80"), "\x80");
}

}  // namespace
}  // namespace tessaline
