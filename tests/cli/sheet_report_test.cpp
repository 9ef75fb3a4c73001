// The sheet and report commands, run as a user would run them.
#include <algorithm>

#include "command_test.h"

namespace tessaline::testing {
namespace {

class SheetReportCommand : public CommandTest {};

// Height of the key band under each cell for cells narrower than 192 pixels: a 7-pixel font with
// 4 pixels above and below.
constexpr int kLabelBand = 15;

TEST_F(SheetReportCommand, SheetIsColumnsTimesCellsWithAKeyBandPerRow) {
  std::string five = "<svg>";
  for (const char* key : {"e", "d", "c", "b", "a"}) {
    five += std::string("<symbol id='") + key +
            "' viewBox='0 0 4 4'><circle cx='2' cy='2' r='1.5' fill='#2f6fde'/></symbol>";
  }
  write("five.svg", five + "</svg>");
  write("empty.svg", "<svg><g/></svg>");
  struct Case {
    std::vector<std::string> args;
    int width, height;
  };
  const Case cases[] = {
      {{"five.svg"}, 5 * 96, 96 + kLabelBand},  // default 8 columns, capped at 5
      {{"five.svg", "--columns", "2", "--cell", "48"}, 2 * 48, 3 * (48 + kLabelBand)},
      {{"five.svg", "--columns", "4", "--cell", "200"}, 4 * 200, 2 * (200 + 2 * kLabelBand)},
      {{"empty.svg", "--cell", "64"}, 64, 64 + kLabelBand},  // one "no symbols" cell
  };
  for (const Case& c : cases) {
    std::vector<std::string> args = {"sheet", "-o", "sheet.png"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    std::string label;
    for (const auto& arg : args) label += arg + " ";
    SCOPED_TRACE(label);
    const CommandResult result = run(args);
    ASSERT_EQ(result.status, 0) << result.err;
    const auto png = readPng(dir_ / "sheet.png");
    ASSERT_TRUE(png);
    EXPECT_EQ(png->width, c.width);
    EXPECT_EQ(png->height, c.height);
  }
}

TEST_F(SheetReportCommand, SheetMarksErrorsAndScalesDownWithoutDarkFringes) {
  // Two symbols that draw the same red square, the second with an unknown attribute, and a red
  // disc on transparency.
  write("three.svg", R"(<svg>
    <symbol id="a-clean" viewBox="0 0 24 24"><rect x="6" y="6" width="12" height="12" fill="#ff0000"/></symbol>
    <symbol id="b-faulty" viewBox="0 0 24 24" foo="1"><rect x="6" y="6" width="12" height="12" fill="#ff0000"/></symbol>
    <symbol id="c-disc" viewBox="0 0 7 7"><circle cx="3.5" cy="3.5" r="3.1" fill="#ff0000"/></symbol>
  </svg>)");
  const CommandResult result = run({"sheet", "three.svg", "-o", "sheet.png", "--cell", "96"});
  ASSERT_EQ(result.status, 0) << result.err;
  const auto png = readPng(dir_ / "sheet.png");
  ASSERT_TRUE(png);
  ASSERT_EQ(png->width, 3 * 96);
  const auto isRed = [](Pixel p) { return p[0] > 180 && p[1] < 90 && p[2] < 90; };
  // The drawings are identical, so the icon areas match pixel for pixel...
  for (int y = 20; y < 76; y += 5) {
    for (int x = 20; x < 76; x += 5) {
      const Pixel clean = png->at(x, y), faulty = png->at(96 + x, y);
      ASSERT_TRUE(std::equal(clean.begin(), clean.begin() + 3, faulty.begin()))
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
  // Averaging straight-alpha pixels would pull the disc's edge towards black; averaged
  // premultiplied, every pixel is a mix of red and the light checkerboard, so its red channel
  // never drops below the checkerboard's darker grey.
  int partlyCovered = 0;
  for (int y = 8; y < 88; ++y) {
    for (int x = 2 * 96 + 8; x < 2 * 96 + 88; ++x) {
      const Pixel p = png->at(x, y);
      ASSERT_GE(p[0], 225) << "at " << x << "," << y;
      if (p[1] > 10 && p[1] < 200) ++partlyCovered;
    }
  }
  EXPECT_GT(partlyCovered, 20) << "the disc's edge should be smoothed by the area filter";
}

TEST_F(SheetReportCommand, ReportListsEveryKeyWithItsImageAndErrors) {
  write("sprite.svg", R"(<svg>
    <symbol id="a&lt;b&amp;c" viewBox="0 0 4 4"><rect width="4" height="4" fill="#00ff00"/></symbol>
    <symbol id="home" viewBox="0 0 4 4" foo="1"><text/><rect width="2" height="2"/></symbol>
    <symbol id="star" viewBox="0 0 4 4"><circle cx="2" cy="2" r="1"/></symbol>
  </svg>)");
  write("empty.svg", "<svg><g/></svg>");
  const CommandResult result = run({"report", "sprite.svg", "-o", "out", "-j", "2"});
  ASSERT_EQ(result.status, 0) << result.err;
  const std::string html = readAll(dir_ / "out" / "index.html");

  // The image of "a<b&c" is named like render-all names it, and its '%' signs are themselves
  // encoded in the link; the key never appears unescaped.
  EXPECT_NE(html.find("<h2 class=\"key\">a&lt;b&amp;c</h2>"), std::string::npos);
  EXPECT_EQ(html.find("a<b"), std::string::npos);
  EXPECT_NE(html.find("src=\"images/a%253Cb%2526c.png\""), std::string::npos);
  EXPECT_TRUE(fs::is_regular_file(dir_ / "out" / "images" / "a%3Cb%26c.png"));
  for (const char* key : {"home", "star"}) {
    SCOPED_TRACE(key);
    EXPECT_NE(html.find(std::string("<h2 class=\"key\">") + key + "</h2>"), std::string::npos);
    EXPECT_NE(html.find(std::string("src=\"images/") + key + ".png\""), std::string::npos);
    const auto png = readPng(dir_ / "out" / "images" / (std::string(key) + ".png"));
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

  ASSERT_EQ(run({"report", "empty.svg", "-o", "empty"}).status, 0);
  const std::string empty = readAll(dir_ / "empty" / "index.html");
  EXPECT_NE(empty.find("This document has no symbols."), std::string::npos);
  EXPECT_EQ(empty.find("<article"), std::string::npos);
}

}  // namespace
}  // namespace tessaline::testing
