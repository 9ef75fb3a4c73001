// The report page's markup: escaping, image links and the hooks its script and tests rely on.
#include "html_report.h"

#include <gtest/gtest.h>

#include "contact_sheet.h"

namespace tessaline::cli {
namespace {

TEST(EscapeHtml, EscapesMarkupAndRepairsInvalidUtf8) {
  const std::string bad = "\xEF\xBF\xBD";  // U+FFFD for each byte that is not valid UTF-8
  const std::pair<std::string, std::string> cases[] = {
      {"a<b>&\"c'", "a&lt;b&gt;&amp;&quot;c&#39;"},
      {"plain-key_1", "plain-key_1"},
      {"caf\xC3\xA9 \xE2\x9C\x93 \xF0\x9F\x99\x82", "caf\xC3\xA9 \xE2\x9C\x93 \xF0\x9F\x99\x82"},
      {"a\x80z", "a" + bad + "z"},                  // lone continuation byte
      {"a\xE2\x9C", "a" + bad + bad},               // truncated sequence at the end
      {"\xC0\xBC", bad + bad},                      // overlong '<'
      {"\xED\xA0\x80", bad + bad + bad},            // surrogate
      {"\xF4\x90\x80\x80", bad + bad + bad + bad},  // past U+10FFFF
  };
  for (const auto& [input, expected] : cases) EXPECT_EQ(escapeHtml(input), expected) << input;
}

TEST(EncodeUrlPath, EncodesPercentSignsOfImageNames) {
  EXPECT_EQ(encodeUrlPath("images/home.png"), "images/home.png");
  EXPECT_EQ(encodeUrlPath("images/a%3Cb.png"), "images/a%253Cb.png");
  EXPECT_EQ(encodeUrlPath("images/a b#?.png"), "images/a%20b%23%3F.png");
}

TEST(RenderReportHtml, WritesOneCardPerEntryWithEscapedKeysAndErrors) {
  ReportPage page;
  page.documentName = "<sprite>.svg";
  page.version = "9.9";
  page.entries = {
      {"home", std::string("images/home.png"), {}},
      {"x<y", std::string("images/x%3Cy.png"), {"Encountered unknown path command: <", "b & c"}},
      {"gone", std::nullopt, {"No SVG Definition found for key"}},
  };
  const std::string html = renderReportHtml(page);

  EXPECT_NE(html.find("<h1>&lt;sprite&gt;.svg</h1>"), std::string::npos);
  EXPECT_NE(html.find("3 symbols, <span class=\"error-count\">2 with errors</span>"),
            std::string::npos);
  EXPECT_NE(html.find("<article class=\"card\" data-key=\"home\" data-errors=\"0\">"),
            std::string::npos);
  EXPECT_NE(html.find("<article class=\"card has-errors\" data-key=\"x&lt;y\" data-errors=\"2\">"),
            std::string::npos);
  EXPECT_NE(html.find("src=\"images/x%253Cy.png\" alt=\"x&lt;y\""), std::string::npos);
  EXPECT_NE(html.find("<li>Encountered unknown path command: &lt;</li>\n<li>b &amp; c</li>"),
            std::string::npos);
  EXPECT_NE(html.find("<div class=\"picture no-image\">no image</div>"), std::string::npos);
  EXPECT_EQ(html.find("x<y"), std::string::npos);
  // Every image reports back to the page's script, which keeps the counts on <body>.
  std::size_t images = 0;
  for (std::size_t at = html.find("<img "); at != std::string::npos;
       at = html.find("<img ", at + 1)) {
    ++images;
    const std::string tag = html.substr(at, html.find('>', at) - at);
    EXPECT_NE(tag.find("onload=\"tessalineImageDone(this, true)\""), std::string::npos) << tag;
    EXPECT_NE(tag.find("onerror=\"tessalineImageDone(this, false)\""), std::string::npos) << tag;
  }
  EXPECT_EQ(images, 2u);
  EXPECT_NE(html.find("<script>tessalineStart();</script>"), std::string::npos);
  EXPECT_EQ(html.find("http"), std::string::npos) << "the page must not reach the network";
}

TEST(ContactSheetLayout, CapsColumnsAtTheSymbolCountAndStacksRows) {
  struct Case {
    std::size_t count;
    int columns, cell;
    int expectColumns, expectRows, expectWidth, expectHeight;
  };
  const Case cases[] = {
      {23, 8, 96, 8, 3, 768, 3 * (96 + 15)},
      {3, 8, 96, 3, 1, 288, 96 + 15},
      {0, 8, 96, 1, 1, 96, 96 + 15},  // one "no symbols" cell
      {10, 1, 48, 1, 10, 48, 10 * (48 + 15)},
      {9, 4, 256, 4, 3, 1024, 3 * (256 + 30)},  // large cells write keys twice as large
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::to_string(c.count) + " symbols, " + std::to_string(c.columns) + " columns");
    const ContactSheet sheet(c.count, c.columns, c.cell);
    EXPECT_EQ(sheet.columns(), c.expectColumns);
    EXPECT_EQ(sheet.rows(), c.expectRows);
    EXPECT_EQ(sheet.width(), c.expectWidth);
    EXPECT_EQ(sheet.height(), c.expectHeight);
    const Image image = sheet.compose(std::vector<SheetCell>(c.count));
    EXPECT_EQ(image.width(), c.expectWidth);
    EXPECT_EQ(image.height(), c.expectHeight);
  }
  // The icon keeps a margin inside its cell.
  EXPECT_EQ(ContactSheet(1, 1, 96).iconSize(), 80);
}

}  // namespace
}  // namespace tessaline::cli
