// The render, render-all, sheet and report commands, run as a user would run them.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "command_test.h"

namespace tessaline::testing {
namespace {

constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};
constexpr Pixel kClear{0, 0, 0, 0};

// Either backend, in text or JSON: the PNG, the error texts on standard output and the exit
// status (1 when the key names no symbol, and then no PNG).
TEST_F(CommandTest, RenderWritesThePngAndPrintsItsErrorTexts) {
  const std::string errors = "Encountered unknown attribute for symbol: $attrName\nInvalid color\n";
  const std::string errorsJson = R"({"key":"with-errors","bitmap":true,"errors":[)"
                                 R"("Encountered unknown attribute for symbol: $attrName",)"
                                 R"("Invalid color"]})"
                                 "\n";
  const std::string missingJson =
      R"({"key":"Square","bitmap":false,"errors":["No SVG Definition found for key"]})"
      "\n";
  struct Case {
    std::vector<std::string> args;
    int status;
    std::string out;
    Pixel at70, at192;  // the pixels at (70, 70) and (192, 192)
  };
  const Case cases[] = {
      // The 24-unit box maps to 256 pixels: the square covers 64...192.
      {{"square"}, 0, "", kRed, kClear},
      {{"square", "--backend", "native"}, 0, "", kRed, kClear},
      {{"square", "--backend", "Cairo"}, 0, "", kRed, kClear},
      // The failing red shape is skipped; the blue one after it is still drawn.
      {{"with-errors"}, 0, errors, kClear, kBlue},
      {{"with-errors", "--json", "--backend", "cairo"}, 0, errorsJson, kClear, kBlue},
      {{"missing"}, 1, "No SVG Definition found for key\n", kClear, kClear},
      {{"Square", "--json"}, 1, missingJson, kClear, kClear},
  };
  for (const Case& c : cases) {
    std::vector<std::string> args{"render", kSample, c.args[0], "-o", "out.png"};
    args.insert(args.end(), c.args.begin() + 1, c.args.end());
    SCOPED_TRACE(::testing::PrintToString(c.args));
    fs::remove(dir_ / "out.png");
    const CommandResult r = run(args);
    EXPECT_EQ(r.status, c.status) << r.err;
    EXPECT_EQ(r.out, c.out);
    const auto png = readPng(dir_ / "out.png");
    ASSERT_EQ(png.has_value(), c.status == 0);
    if (!png) continue;
    EXPECT_EQ(png->width, 256);
    EXPECT_EQ(png->height, 256);
    EXPECT_EQ(png->at(70, 70), c.at70);
    EXPECT_EQ(png->at(192, 192), c.at192);
  }
}

TEST_F(CommandTest, RenderAllWritesWhatRenderingEachKeyAloneWouldInASortedIndex) {
  const CommandResult r = run({"render-all", kSample, "-o", "out/nested", "-j", "3"});
  ASSERT_EQ(r.status, 0) << r.err;
  // Standard error is not a terminal here: no progress bar.
  EXPECT_EQ(r.err, "");
  // Sorted by key; file names that are safe, distinct and not hidden.
  const std::pair<std::string, std::string> expected[] = {{"%2Ehidden", "%252Ehidden.png"},
                                                          {".hidden", "%2Ehidden.png"},
                                                          {"a/b", "a%2Fb.png"},
                                                          {"square", "square.png"},
                                                          {"with-errors", "with-errors.png"}};
  const auto index = nlohmann::json::parse(readAll(dir_ / "out/nested/index.json"));
  ASSERT_EQ(index.size(), std::size(expected));
  for (std::size_t i = 0; i < index.size(); ++i) {
    const auto& [key, file] = expected[i];
    EXPECT_EQ(index[i]["key"], key);
    EXPECT_EQ(index[i]["file"], file);
    // The same pixels and errors as rendering the key alone, read from standard input and by
    // default written under the same safe file name.
    const CommandResult single = run({"render", "-", key}, readAll(kSample));
    ASSERT_TRUE(readPng(dir_ / file)) << key;
    EXPECT_EQ(readAll(dir_ / "out/nested" / file), readAll(dir_ / file)) << key;
    std::string errors;
    for (const std::string error : index[i]["errors"]) errors += error + "\n";
    EXPECT_EQ(errors, single.out);
  }
}

TEST_F(CommandTest, SheetAndReportShowEverySymbolWithItsErrors) {
  // The same red square twice, the second with two errors; the first key is unsafe as a file
  // name and as markup.
  const std::string square = "<rect x='6' y='6' width='12' height='12' fill='#ff0000'/></symbol>";
  write("sprite.svg", "<svg><symbol id='a&lt;b&amp;c' viewBox='0 0 24 24'>" + square +
                          "<symbol id='b-faulty' viewBox='0 0 24 24' foo='1'><text/>" + square +
                          "</svg>");
  // Cells narrower than 192 pixels have a 15-pixel key band below; by default 8 columns of 96.
  ASSERT_EQ(
      run({"sheet", "sprite.svg", "-o", "small.png", "--columns", "1", "--cell", "48"}).status, 0);
  const auto small = readPng(dir_ / "small.png");
  ASSERT_TRUE(small);
  EXPECT_EQ(small->width, 48);
  EXPECT_EQ(small->height, 2 * (48 + 15));
  const CommandResult sheet = run({"sheet", "sprite.svg", "-o", "sheet.png"});
  ASSERT_EQ(sheet.status, 0) << sheet.err;
  const auto png = readPng(dir_ / "sheet.png");
  ASSERT_TRUE(png);
  ASSERT_EQ(png->width, 2 * 96);
  EXPECT_EQ(png->height, 96 + 15);
  const auto isRed = [](Pixel p) { return p[0] > 180 && p[1] < 90 && p[2] < 90; };
  // Both icons are drawn, but only the faulty one has the red corner and frame.
  EXPECT_TRUE(isRed(png->at(48, 48)) && isRed(png->at(96 + 48, 48)));
  for (const auto& [x, y] :
       std::vector<std::pair<int, int>>{{94, 1}, {88, 2}, {1, 60}, {48, 110}}) {
    EXPECT_FALSE(isRed(png->at(x, y))) << x << "," << y;
    EXPECT_TRUE(isRed(png->at(96 + x, y))) << x << "," << y;
  }

  const CommandResult report = run({"report", "sprite.svg", "-o", "out", "-j", "2"});
  ASSERT_EQ(report.status, 0) << report.err;
  const std::string html = readAll(dir_ / "out" / "index.html");
  // The image is named like render-all names it, and its '%' signs are encoded in the link.
  EXPECT_NE(html.find("src=\"images/a%253Cb%2526c.png\""), std::string::npos);
  const auto image = readPng(dir_ / "out" / "images" / "a%3Cb%26c.png");
  ASSERT_TRUE(image);
  EXPECT_EQ(image->at(128, 128), kRed);
  EXPECT_TRUE(fs::is_regular_file(dir_ / "out" / "images" / "b-faulty.png"));
  // Error texts, in order, on the card of their symbol.
  EXPECT_NE(html.find("data-key=\"b-faulty\" data-errors=\"2\""), std::string::npos);
  EXPECT_NE(html.find("<li>Encountered unknown attribute for symbol: $attrName</li>\n"
                      "<li>Encountered unknown SVG component: text</li>"),
            std::string::npos);

  write("empty.svg", "<svg><g/></svg>");
  ASSERT_EQ(run({"report", "empty.svg", "-o", "empty"}).status, 0);
  const std::string empty = readAll(dir_ / "empty" / "index.html");
  EXPECT_NE(empty.find("This document has no symbols."), std::string::npos);
  EXPECT_EQ(empty.find("<article"), std::string::npos);
}

}  // namespace
}  // namespace tessaline::testing
