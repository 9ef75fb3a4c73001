#include "geometry/path_parser.h"

#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace tessaline {
namespace {

struct Case {
  std::string_view d;
  std::string_view path;
  std::optional<std::string> error = std::nullopt;
};

// Parses each `d` through the real builder; the result's path is the builder's.
void expectParses(std::initializer_list<Case> cases) {
  for (const Case& c : cases) {
    SCOPED_TRACE(::testing::Message() << "d = \"" << c.d << "\"");
    CGMutablePathWrapper builder;
    const PathParserResult result = PathParser(c.d).parse(builder);
    EXPECT_EQ(result.path, builder.path());
    EXPECT_EQ(result.path.dump(6), c.path);
    EXPECT_EQ(result.error, c.error);
  }
}

const std::string kNoX = "L/l command must have an X value";
const std::string kNoY = "L/l command must have an Y value";

TEST(PathParser, ReadsCommandsNumbersAndSeparatorsWithTheirQuirks) {
  // Only spaces and commas are skipped before the first command, which must be a move.
  for (std::string_view d : {"", ", ,", "Z", "\tM0 0"}) {
    expectParses({{d, "", "SVG must start with m or M"}});
  }
  expectParses({
      {" ,m10 20", "M 10 20"},  // a first `m` is relative to (0, 0)
      // Further parameters repeat the command in force, each relative one resolved against the
      // point the previous one reached; coordinates after a move are lines.
      {"M10 20 30 40", "M 10 20 L 30 40"},
      {"m10 20 5 5", "M 10 20 L 15 25"},
      {"M0 0 h1 2 3", "M 0 0 L 1 0 L 3 0 L 6 0"},
      // Separators are spaces and commas, any number of them, or none before a letter.
      {"M0,,0L 10 , 10", "M 0 0 L 10 10"},
      {"M0\t0", "", "M/m command must have an Y value"},
      // The letter lookahead skips spaces only: after a comma the implicit line finds a letter
      // where it looks for a number, and a separator after the last parameter repeats the command.
      {"M0 0,L1 1", "M 0 0", kNoX},
      {"M0 0 L1 1,", "M 0 0 L 1 1", kNoX},
      // Plain decimals: a second point or a minus starts the next number; a sign or a point alone
      // reads as 0; no exponent (`e` ends the number) and no plus sign.
      {"M0 0 L1.5.5 -.25 3", "M 0 0 L 1.5 0.5 L -0.25 3"},
      {"M0 0 L10-20-30", "M 0 0 L 10 -20", kNoY},
      {"M0 0 L- .", "M 0 0 L 0 0"},
      {"M0 0 L1e5", "M 0 0", kNoY},
      {"M0 0 L1 1e5", "M 0 0 L 1 1", "Encountered unknown path command: e"},
      {"M0 0 L+5 5", "M 0 0", kNoX},
      // Z takes no parameters; an error keeps the path so far.
      {"M0 0 L1 1 ZM2 2 L3 3z", "M 0 0 L 1 1 Z M 2 2 L 3 3 Z"},
      // The text is indexed by user-perceived character: "1" with a combining accent is one
      // character, not a digit. The Kelvin sign lower-cases to "k", so it is an (unknown) command
      // letter; carrying an accent it is no longer a letter.
      {"M0 0 L1 1\xCC\x81", "M 0 0", kNoY},
      {"M0 0 L1 1 \xE2\x84\xAA 2 2", "M 0 0 L 1 1",
       "Encountered unknown path command: \xE2\x84\xAA"},
      {"M0 0 L1 1 \xE2\x84\xAA\xCC\x81", "M 0 0 L 1 1", kNoX},
  });
}

// Each command's messages, in parameter order: "<letters> command must have an <name> value".
TEST(PathParser, ReportsEveryMissingParameterByName) {
  const std::vector<std::pair<std::string_view, std::vector<std::string>>> commands = {
      {"Mm", {"M/m X", "M/m Y"}},
      {"Ll", {"L/l X", "L/l Y"}},
      {"Hh", {"H/h X"}},
      {"Vv", {"V/v Y"}},
      {"Cc", {"C/c x1", "C/c y1", "C/c x2", "C/c y2", "C/c X", "C/c Y"}},
      {"Ss", {"S/s x2", "S/s y2", "S/s X", "S/s Y"}},
      {"Qq", {"Q/q x1", "Q/q y1", "Q/q X", "Q/q Y"}},
      {"Tt", {"Q/q X", "Q/q Y"}},
      {"Aa",
       {"A/a rx", "A/a ry", "A/a xAxisRotation", "A/a largeArcFlag", "A/a sweepFlag", "A/a X",
        "A/a Y"}},
  };
  for (const auto& [letters, parameters] : commands) {
    for (char letter : letters) {
      std::string d = std::string("M0 0 ") + letter;
      for (const std::string& parameter : parameters) {
        const std::string message =
            parameter.substr(0, 3) + " command must have an " + parameter.substr(4) + " value";
        // Nothing of the failing command reaches the path.
        expectParses({{d, "M 0 0", message}});
        d += d.back() == letter ? "1" : " 1";
      }
    }
  }
}

// Records arcs and moves; only an arc's end point is relative, radii, rotation and flags pass
// as read. A compact flag pair is one number: the large-arc flag is 1 ("01") and the sweep 10.
TEST(PathParser, PassesArcsWithTheCurrentPointAndAbsoluteEnd) {
  struct RecordingBuilder : CGMutablePathWrapper {
    void move(Point to) override { log << "move " << to.x << ' ' << to.y << ';'; }
    void arcTo(float x0, float y0, float rx, float ry, float rotation, float large, float sweep,
               float x, float y) override {
      log << "arc " << x0 << ' ' << y0 << ' ' << rx << ' ' << ry << ' ' << rotation << ' ' << large
          << ' ' << sweep << ' ' << x << ' ' << y << ';';
    }
    std::ostringstream log;
  };
  for (const auto& [d, error, log] :
       {std::tuple{"M10 20 a5 6 30 1 0 10 -5 A1 2 3 0 1 7 8", std::optional<std::string>(),
                   "move 10 20;arc 10 20 5 6 30 1 0 20 15;arc 20 15 1 2 3 0 1 7 8;"},
        {"M0 0 A5 5 0 01 10 10", "A/a command must have an Y value", "move 0 0;"}}) {
    RecordingBuilder builder;
    EXPECT_EQ(PathParser(d).parse(builder).error, error);
    EXPECT_EQ(builder.log.str(), log);
  }
}

TEST(PathParserDeathTest, TrailingSpacesAfterTheLastCommandReadPastTheEnd) {
  // Spaces after the last parameter make the letter lookahead read one past the end of the text.
  for (const char* d : {"M0 0 L1 1 ", "M0 0 Z "}) {
    CGMutablePathWrapper builder;
    EXPECT_DEATH(PathParser(d).parse(builder), "path data read past its end") << d;
  }
}

}  // namespace
}  // namespace tessaline
