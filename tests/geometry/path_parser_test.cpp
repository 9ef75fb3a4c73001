#include "geometry/path_parser.h"

#include <gtest/gtest.h>

#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace tessaline {
namespace {

struct Parsed {
  std::string path;
  std::optional<std::string> error;
};

Parsed parse(std::string_view d) {
  CGMutablePathWrapper builder;
  PathParserResult result = PathParser(d).parse(builder);
  EXPECT_EQ(result.path, builder.path());
  return {result.path.dump(6), result.error};
}

void expectParse(std::string_view d, std::string_view path,
                 std::optional<std::string> error = std::nullopt) {
  SCOPED_TRACE(::testing::Message() << "d = \"" << d << "\"");
  const Parsed parsed = parse(d);
  EXPECT_EQ(parsed.path, path);
  EXPECT_EQ(parsed.error, error);
}

// Records every builder call, to see the arguments of arcs and the order of calls.
class RecordingBuilder : public CGMutablePathWrapper {
 public:
  void move(Point to) override { log << "move " << to.x << ' ' << to.y << ';'; }
  void addLine(Point to) override { log << "line " << to.x << ' ' << to.y << ';'; }
  void closeSubpath() override { log << "close;"; }
  void arcTo(float lastX, float lastY, float rx, float ry, float rotation, float largeArc,
             float sweep, float x, float y) override {
    log << "arc " << lastX << ' ' << lastY << ' ' << rx << ' ' << ry << ' ' << rotation << ' '
        << largeArc << ' ' << sweep << ' ' << x << ' ' << y << ';';
  }
  std::ostringstream log;
};

TEST(PathParser, KeepsTheTextAsGiven) {
  EXPECT_EQ(PathParser(" M1,2 ").d, " M1,2 ");
}

TEST(PathParser, MustStartWithAMove) {
  for (std::string_view d : {"", "   ", ", ,", "L 1 1", "Z", "1 2", "\tM0 0", "\xC3\xA9M0 0"}) {
    expectParse(d, "", "SVG must start with m or M");
  }
  // Leading spaces and commas are skipped; a first `m` is relative to (0, 0).
  expectParse(" ,M1 2", "M 1 2");
  expectParse("m10 20", "M 10 20");
}

TEST(PathParser, RepeatsTheCommandInForceForFurtherParameters) {
  expectParse("M10 20", "M 10 20");
  expectParse("M10 20 30 40", "M 10 20 L 30 40");
  expectParse("m10 20 5 5", "M 10 20 L 15 25");
  expectParse("M0 0 L1 1 2 2 3 3", "M 0 0 L 1 1 L 2 2 L 3 3");
  // Each relative repetition is resolved against the point the previous one reached.
  expectParse("m0 0 l1 1 1 1", "M 0 0 L 1 1 L 2 2");
  expectParse("M0 0 h1 2 3", "M 0 0 L 1 0 L 3 0 L 6 0");
  expectParse("M0 0 Q1 1 2 0 3 -1 4 0", "M 0 0 Q 1 1 2 0 Q 3 -1 4 0");
  // A move repeated explicitly is another move.
  expectParse("M0 0 M5 5 6 6", "M 0 0 M 5 5 L 6 6");
}

TEST(PathParser, SeparatorsAreOnlySpacesAndCommas) {
  EXPECT_EQ(parse("M0,0L10,10").path, parse("M0 0 L10 10").path);
  expectParse("M0,,0 L 10 , 10", "M 0 0 L 10 10");
  // The letter lookahead skips spaces only: after a comma no command letter is seen, so the
  // move's implicit line looks for a number and finds the letter.
  expectParse("M0 0,L1 1", "M 0 0", "L/l command must have an X value");
  expectParse("M0\t0", "", "M/m command must have an Y value");
  expectParse("M0 0\nL1 1", "M 0 0", "L/l command must have an X value");
  // A separator after the last parameter repeats the command, which then finds no number.
  expectParse("M0 0 L1 1,", "M 0 0 L 1 1", "L/l command must have an X value");
}

TEST(PathParser, ReadsPlainDecimalNumbers) {
  expectParse("M0 0 L1-2", "M 0 0 L 1 -2");
  expectParse("M0 0 L.5.5", "M 0 0 L 0.5 0.5");
  expectParse("M0 0 L1.5.5 -.25 3", "M 0 0 L 1.5 0.5 L -0.25 3");
  expectParse("M0 0 L10-20-30", "M 0 0 L 10 -20", "L/l command must have an Y value");
  expectParse("M0 0 L-.5 007.250", "M 0 0 L -0.5 7.25");
  // A sign or a point alone is a number, and reads as 0.
  expectParse("M0 0 L- .", "M 0 0 L 0 0");
  expectParse("M0 0 L-. 3", "M 0 0 L 0 3");
  // No exponent: `e` ends the number and is then read as a command letter or a missing number.
  expectParse("M0 0 L1e5", "M 0 0", "L/l command must have an Y value");
  expectParse("M0 0 L1 1e5", "M 0 0 L 1 1", "Encountered unknown path command: e");
  // No plus sign.
  expectParse("M0 0 L+5 5", "M 0 0", "L/l command must have an X value");
}

TEST(PathParser, ReportsUnknownCommandsWithTheLetter) {
  expectParse("M0 0 X1 1", "M 0 0", "Encountered unknown path command: X");
  expectParse("M0 0 L1 1 b", "M 0 0 L 1 1", "Encountered unknown path command: b");
  // Any letter outside the twenty commands, in either case.
  expectParse("M0 0 E", "M 0 0", "Encountered unknown path command: E");
}

TEST(PathParser, ReportsEveryMissingParameterByName) {
  struct Command {
    std::string_view letters;
    std::vector<std::string_view> messages;
  };
  const std::vector<Command> commands = {
      {"Mm", {"M/m command must have an X value", "M/m command must have an Y value"}},
      {"Ll", {"L/l command must have an X value", "L/l command must have an Y value"}},
      {"Hh", {"H/h command must have an X value"}},
      {"Vv", {"V/v command must have an Y value"}},
      {"Cc",
       {"C/c command must have an x1 value", "C/c command must have an y1 value",
        "C/c command must have an x2 value", "C/c command must have an y2 value",
        "C/c command must have an X value", "C/c command must have an Y value"}},
      {"Ss",
       {"S/s command must have an x2 value", "S/s command must have an y2 value",
        "S/s command must have an X value", "S/s command must have an Y value"}},
      {"Qq",
       {"Q/q command must have an x1 value", "Q/q command must have an y1 value",
        "Q/q command must have an X value", "Q/q command must have an Y value"}},
      {"Tt", {"Q/q command must have an X value", "Q/q command must have an Y value"}},
      {"Aa",
       {"A/a command must have an rx value", "A/a command must have an ry value",
        "A/a command must have an xAxisRotation value",
        "A/a command must have an largeArcFlag value", "A/a command must have an sweepFlag value",
        "A/a command must have an X value", "A/a command must have an Y value"}},
  };
  for (const Command& command : commands) {
    for (char letter : command.letters) {
      std::string parameters;
      for (std::size_t given = 0; given < command.messages.size(); ++given) {
        const std::string d = std::string("M0 0 ") + letter + parameters;
        SCOPED_TRACE(d);
        const Parsed parsed = parse(d);
        EXPECT_EQ(parsed.error, std::string(command.messages[given]));
        // Nothing of the failing command reaches the path.
        EXPECT_EQ(parsed.path, "M 0 0");
        parameters += given == 0 ? "1" : " 1";
      }
    }
  }
}

TEST(PathParser, ResolvesRelativeCoordinatesAgainstTheCurrentPoint) {
  expectParse("M1 1 c1 1 2 2 3 3", "M 1 1 C 2 2 3 3 4 4");
  expectParse("M1 1 q1 0 2 2", "M 1 1 Q 2 1 3 3");
  expectParse("M1 1 h5 v5 H0 V0", "M 1 1 L 6 1 L 6 6 L 0 6 L 0 0");
  // After a close the current point is the subpath start.
  expectParse("M0 0 L1 1 Z m1 1 l1 0", "M 0 0 L 1 1 Z M 1 1 L 2 1");
  expectParse("M5 5 l1 0 z l0 2 Z", "M 5 5 L 6 5 Z L 5 7 Z");
}

TEST(PathParser, SmoothCubicReflectsTheLastControlPoint) {
  expectParse("M0 0 C0 10 10 10 10 0 S20 -10 20 0", "M 0 0 C 0 10 10 10 10 0 C 10 -10 20 -10 20 0");
  expectParse("M0 0 C0 10 10 10 10 0 s10 -10 10 0", "M 0 0 C 0 10 10 10 10 0 C 10 -10 20 -10 20 0");
  // After a line the reflection is the current point; no check of the previous command's kind.
  expectParse("M0 0 L5 5 S10 0 10 10", "M 0 0 L 5 5 C 5 5 10 0 10 10");
  // After a quadratic it reflects the quadratic's control point.
  expectParse("M0 0 Q5 5 10 0 S20 0 20 0", "M 0 0 Q 5 5 10 0 C 15 -5 20 0 20 0");
  // A close moves the current point back but keeps the last control point: 2·(0, 0) − (3, 4).
  expectParse("M0 0 C1 2 3 4 5 6 Z S1 1 2 2", "M 0 0 C 1 2 3 4 5 6 Z C -3 -4 1 1 2 2");
}

TEST(PathParser, SmoothQuadraticReflectsAndLowerCaseTOffsetsAgain) {
  expectParse("M0 0 Q5 5 10 0 T20 0", "M 0 0 Q 5 5 10 0 Q 15 -5 20 0");
  expectParse("M0 0 Q5 5 10 0 T20 0 T30 0", "M 0 0 Q 5 5 10 0 Q 15 -5 20 0 Q 25 5 30 0");
  // Lower-case t: the reflection is offset by the current point once more, 3·(10, 0) − (5, 5).
  expectParse("M0 0 Q5 5 10 0 t10 0", "M 0 0 Q 5 5 10 0 Q 25 -5 20 0");
  // ... and the next reflection starts from that control point: 2·(20, 0) − (25, −5).
  expectParse("M0 0 Q5 5 10 0 t10 0 T30 0", "M 0 0 Q 5 5 10 0 Q 25 -5 20 0 Q 15 5 30 0");
  // From the origin the extra offset is invisible.
  expectParse("M0 0 t10 0", "M 0 0 Q 0 0 10 0");
}

TEST(PathParser, PassesArcsWithTheCurrentPointAndAbsoluteEnd) {
  {
    RecordingBuilder builder;
    const PathParserResult result =
        PathParser("M10 20 a5 6 30 1 0 10 -5 A1 2 3 0 1 7 8").parse(builder);
    EXPECT_FALSE(result.error);
    // Only the end point is relative; radii, rotation and flags pass as read.
    EXPECT_EQ(builder.log.str(), "move 10 20;arc 10 20 5 6 30 1 0 20 15;arc 20 15 1 2 3 0 1 7 8;");
  }
  {
    // A compact flag pair is one number: the large-arc flag is 1 ("01") and the sweep flag 10.
    RecordingBuilder builder;
    const PathParserResult result = PathParser("M0 0 A5 5 0 01 10 10").parse(builder);
    EXPECT_EQ(result.error, "A/a command must have an Y value");
    EXPECT_EQ(builder.log.str(), "move 0 0;");
  }
  // Through the real builder an arc ends at its end point (up to the float arithmetic of the
  // arc: its sweep may be short of the exact angle by about 3e-7).
  CGMutablePathWrapper builder;
  const PathParserResult half = PathParser("M0 0 A5 5 0 0 1 10 0").parse(builder);
  EXPECT_EQ(half.error, std::nullopt);
  ASSERT_TRUE(half.path.currentPoint());
  EXPECT_NEAR(half.path.currentPoint()->x, 10, 1e-5);
  EXPECT_NEAR(half.path.currentPoint()->y, 0, 1e-5);
}

TEST(PathParser, CloseNeedsNoParameters) {
  expectParse("M0 0 L1 1 Z", "M 0 0 L 1 1 Z");
  expectParse("M0 0 L1 1 ZM2 2 L3 3z", "M 0 0 L 1 1 Z M 2 2 L 3 3 Z");
}

TEST(PathParser, KeepsThePartialPathOnError) {
  expectParse("M0 0 L10", "M 0 0", "L/l command must have an Y value");
  expectParse("M0 0 L10 10 C1 2 3", "M 0 0 L 10 10", "C/c command must have an y2 value");
}

TEST(PathParser, CountsUserPerceivedCharacters) {
  // "1" with a combining acute accent is one character, and not a digit.
  expectParse("M0 0 L1 1\xCC\x81", "M 0 0", "L/l command must have an Y value");
  // The same text without the accent parses.
  expectParse("M0 0 L1 1", "M 0 0 L 1 1");
  // Text after non-ASCII characters is indexed by character, not by byte.
  expectParse("M0 0 L10 10 20 20\xC3\xA9", "M 0 0 L 10 10 L 20 20",
              "L/l command must have an X value");
  expectParse("M0 0 \xE2\x82\xAC", "M 0 0", "L/l command must have an X value");
  // The Kelvin sign lower-cases to "k", so it is taken as a command letter, and an unknown one.
  expectParse("M0 0 L1 1 \xE2\x84\xAA 2 2", "M 0 0 L 1 1",
              "Encountered unknown path command: \xE2\x84\xAA");
  // A Kelvin sign carrying an accent is no longer a letter.
  expectParse("M0 0 L1 1 \xE2\x84\xAA\xCC\x81", "M 0 0 L 1 1", "L/l command must have an X value");
}

using PathParserDeathTest = ::testing::Test;

TEST(PathParserDeathTest, TrailingSpacesAfterTheLastCommandReadPastTheEnd) {
  // Spaces after the last parameter make the letter lookahead read one past the end of the text.
  EXPECT_DEATH(parse("M0 0 L1 1 "), "path data read past its end");
  EXPECT_DEATH(parse("M0 0 Z "), "path data read past its end");
  EXPECT_DEATH(parse("M0 0 L1 1   "), "path data read past its end");
}

}  // namespace
}  // namespace tessaline
