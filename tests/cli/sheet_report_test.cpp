// The sheet and report commands, run as a user would run them.
#include <gtest/gtest.h>
#include <png.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "command_test.h"

namespace {

namespace fs = std::filesystem;

// Height of the key band under each cell for cells narrower than 192 pixels: a 7-pixel font with
// 4 pixels above and below.
constexpr int kLabelBand = 15;

// Two symbols that draw the same red square; the second one has an unknown attribute.
constexpr const char* kCleanAndFaulty = R"(<svg>
  <symbol id="a-clean" viewBox="0 0 24 24"><rect x="6" y="6" width="12" height="12" fill="#ff0000"/></symbol>
  <symbol id="b-faulty" viewBox="0 0 24 24" foo="1"><rect x="6" y="6" width="12" height="12" fill="#ff0000"/></symbol>
</svg>)";

using Result = tessaline::testing::CommandResult;
using tessaline::testing::readAll;
const auto& readSheet = tessaline::testing::readRgbaPng;

class SheetReportCommand : public tessaline::testing::CommandTest {};

// Five symbols, no errors.
std::string fiveSymbols() {
  std::string text = "<svg>";
  for (const char* key : {"e", "d", "c", "b", "a"}) {
    text +=
        std::string("<symbol id=\"") + key +
        "\" viewBox=\"0 0 4 4\"><circle cx=\"2\" cy=\"2\" r=\"1.5\" fill=\"#2f6fde\"/></symbol>";
  }
  return text + "</svg>";
}

TEST_F(SheetReportCommand, SheetIsColumnsTimesCellsWithAKeyBandPerRow) {
  write("five.svg", fiveSymbols());
  struct Case {
    std::vector<std::string> options;
    int width, height;
  };
  const std::vector<Case> cases = {
      {{}, 5 * 96, 96 + kLabelBand},  // default 8 columns, capped at 5
      {{"--columns", "2", "--cell", "48"}, 2 * 48, 3 * (48 + kLabelBand)},
      {{"--columns", "5", "--cell", "40"}, 5 * 40, 40 + kLabelBand},
      {{"--columns", "4", "--cell", "200"}, 4 * 200, 2 * (200 + 2 * kLabelBand)},  // doubled font
  };
  for (const Case& c : cases) {
    std::string label = "options:";
    for (const auto& option : c.options) label += " " + option;
    SCOPED_TRACE(label);
    std::vector<std::string> args = {"sheet", "five.svg", "-o", "sheet.png"};
    args.insert(args.end(), c.options.begin(), c.options.end());
    const Result result = run(args);
    ASSERT_EQ(result.status, 0) << result.err;
    const auto png = readSheet(dir_ / "sheet.png");
    ASSERT_TRUE(png);
    EXPECT_EQ(png->width, c.width);
    EXPECT_EQ(png->height, c.height);
  }
}

TEST_F(SheetReportCommand, SheetMarksCellsOfSymbolsWithErrors) {
  write("two.svg", kCleanAndFaulty);
  const Result result = run({"sheet", "two.svg", "-o", "sheet.png", "--cell", "96"});
  ASSERT_EQ(result.status, 0) << result.err;
  const auto png = readSheet(dir_ / "sheet.png");
  ASSERT_TRUE(png);
  ASSERT_EQ(png->width, 2 * 96);

  const auto isRed = [](tessaline::testing::RgbaPng::Pixel p) {
    return p.r > 180 && p.g < 90 && p.b < 90;
  };
  // The drawings are identical, so the icon areas match pixel for pixel...
  for (int y = 20; y < 76; y += 5) {
    for (int x = 20; x < 76; x += 5) {
      const auto clean = png->at(x, y);
      const auto faulty = png->at(96 + x, y);
      ASSERT_EQ(std::tie(clean.r, clean.g, clean.b), std::tie(faulty.r, faulty.g, faulty.b))
          << "at " << x << "," << y;
    }
  }
  // ...and the icon itself is there: the red square fills the middle of the cell.
  EXPECT_TRUE(isRed(png->at(48, 48)));
  // Only the faulty one has the red corner and frame.
  for (const auto& [x, y] :
       std::vector<std::pair<int, int>>{{94, 1}, {88, 2}, {1, 60}, {48, 110}}) {
    SCOPED_TRACE("offset " + std::to_string(x) + "," + std::to_string(y));
    EXPECT_FALSE(isRed(png->at(x, y)));
    EXPECT_TRUE(isRed(png->at(96 + x, y)));
  }
}

TEST_F(SheetReportCommand, SheetScalesRendersDownWithoutDarkFringes) {
  // A red disc on transparency: averaging straight-alpha pixels would pull edge pixels towards
  // black; averaged premultiplied, every pixel of the icon is a mix of red and the light
  // checkerboard, so its red channel never drops below the checkerboard's darker grey.
  write("disc.svg",
        "<svg><symbol id=\"disc\" viewBox=\"0 0 7 7\"><circle cx=\"3.5\" cy=\"3.5\" r=\"3.1\" "
        "fill=\"#ff0000\"/></symbol></svg>");
  const Result result = run({"sheet", "disc.svg", "-o", "sheet.png", "--cell", "96"});
  ASSERT_EQ(result.status, 0) << result.err;
  const auto png = readSheet(dir_ / "sheet.png");
  ASSERT_TRUE(png);
  int partlyCovered = 0;
  for (int y = 8; y < 88; ++y) {
    for (int x = 8; x < 88; ++x) {
      const auto p = png->at(x, y);
      ASSERT_GE(p.r, 225) << "at " << x << "," << y;
      if (p.g > 10 && p.g < 200) ++partlyCovered;
    }
  }
  EXPECT_GT(partlyCovered, 20) << "the disc's edge should be smoothed by the area filter";
}

TEST_F(SheetReportCommand, UsageAndInputOutputErrorsExitWithTwoAndOneLine) {
  write("five.svg", fiveSymbols());
  fs::create_directories(dir_ / "folder");
  struct Case {
    std::vector<std::string> args;
    std::string message;
  };
  const std::vector<Case> cases = {
      {{"sheet", "five.svg"}, "--output is required"},
      {{"sheet", "missing.svg", "-o", "s.png"}, "cannot read missing.svg"},
      {{"sheet", "five.svg", "-o", "s.png", "--columns", "0"}, "--columns"},
      {{"sheet", "five.svg", "-o", "s.png", "--cell", "8"}, "--cell"},
      {{"sheet", "five.svg", "-o", "s.png", "--cell", "big"}, "--cell"},
      {{"sheet", "five.svg", "-o", "no/such/folder/s.png"}, "cannot write no/such/folder/s.png"},
      {{"sheet", "five.svg", "-o", "folder"}, "cannot write folder"},
      {{"report", "five.svg"}, "--output is required"},
      {{"report", "missing.svg", "-o", "out"}, "cannot read missing.svg"},
      {{"report", "five.svg", "-o", "five.svg"}, "cannot create five.svg/images"},
      {{"report", "five.svg", "-o", "out", "-j", "0"}, "--jobs"},
  };
  for (const Case& c : cases) {
    std::string label;
    for (const auto& arg : c.args) label += arg + " ";
    SCOPED_TRACE(label);
    const Result result = run(c.args);
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find(c.message), std::string::npos) << result.err;
    EXPECT_EQ(result.err.rfind("tessaline: ", 0), 0u) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  }
}

TEST_F(SheetReportCommand, EmptyDocumentGivesOneCellSheetAndAnEmptyReport) {
  write("empty.svg", "<svg><g/></svg>");
  ASSERT_EQ(run({"sheet", "empty.svg", "-o", "sheet.png", "--cell", "64"}).status, 0);
  const auto png = readSheet(dir_ / "sheet.png");
  ASSERT_TRUE(png);
  EXPECT_EQ(png->width, 64);
  EXPECT_EQ(png->height, 64 + kLabelBand);

  ASSERT_EQ(run({"report", "empty.svg", "-o", "out"}).status, 0);
  const std::string html = readAll(dir_ / "out" / "index.html");
  EXPECT_NE(html.find("This document has no symbols."), std::string::npos);
  EXPECT_EQ(html.find("<article"), std::string::npos);
}

TEST_F(SheetReportCommand, ReportListsEveryKeyWithItsImageAndEscapedTexts) {
  write("sprite.svg", R"(<svg>
    <symbol id="a&lt;b&amp;c" viewBox="0 0 4 4"><rect width="4" height="4" fill="#00ff00"/></symbol>
    <symbol id="home" viewBox="0 0 4 4" foo="1"><text/><rect width="2" height="2"/></symbol>
    <symbol id="star" viewBox="0 0 4 4"><circle cx="2" cy="2" r="1"/></symbol>
  </svg>)");
  const Result result = run({"report", "sprite.svg", "-o", "out", "-j", "2"});
  ASSERT_EQ(result.status, 0) << result.err;
  const std::string html = readAll(dir_ / "out" / "index.html");

  // Keys, escaped wherever they appear; the image of "a<b&c" is named like render-all names it,
  // and its '%' signs are themselves encoded in the link.
  EXPECT_NE(html.find("data-key=\"a&lt;b&amp;c\""), std::string::npos);
  EXPECT_NE(html.find("<h2 class=\"key\">a&lt;b&amp;c</h2>"), std::string::npos);
  EXPECT_EQ(html.find("a<b"), std::string::npos);
  EXPECT_NE(html.find("src=\"images/a%253Cb%2526c.png\""), std::string::npos);
  EXPECT_TRUE(fs::is_regular_file(dir_ / "out" / "images" / "a%3Cb%26c.png"));
  for (const char* key : {"home", "star"}) {
    SCOPED_TRACE(key);
    EXPECT_NE(html.find(std::string("<h2 class=\"key\">") + key + "</h2>"), std::string::npos);
    EXPECT_NE(html.find(std::string("src=\"images/") + key + ".png\""), std::string::npos);
    const auto png = readSheet(dir_ / "out" / "images" / (std::string(key) + ".png"));
    ASSERT_TRUE(png);
    EXPECT_EQ(png->width, 256);
    EXPECT_EQ(png->height, 256);
  }
  // Error texts, in order, on the card of their symbol.
  EXPECT_NE(html.find("data-key=\"home\" data-errors=\"2\""), std::string::npos);
  const std::size_t first =
      html.find("<li>Encountered unknown attribute for symbol: $attrName</li>");
  const std::size_t second = html.find("<li>Encountered unknown SVG component: text</li>");
  ASSERT_NE(first, std::string::npos);
  ASSERT_NE(second, std::string::npos);
  EXPECT_LT(first, second);
  EXPECT_NE(html.find("data-key=\"star\" data-errors=\"0\""), std::string::npos);
  // Self-contained: nothing is fetched from a network.
  EXPECT_EQ(html.find("http://"), std::string::npos);
  EXPECT_EQ(html.find("https://"), std::string::npos);
}

}  // namespace
