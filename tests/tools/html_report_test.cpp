// The report page's markup: escaping, image links and the hooks its script and tests rely on.
#include "html_report.h"

#include <gtest/gtest.h>

#include <array>

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
  EXPECT_EQ(encodeUrlPath("images/a%3C b#?.png"), "images/a%253C%20b%23%3F.png");
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

  for (const char* part : {
           "<h1>&lt;sprite&gt;.svg</h1>",
           "3 symbols, <span class=\"error-count\">2 with errors</span>",
           "<article class=\"card\" data-key=\"home\" data-errors=\"0\">",
           "<article class=\"card has-errors\" data-key=\"x&lt;y\" data-errors=\"2\">",
           // Every image reports back to the page's script, which keeps the counts on <body>.
           "<img class=\"symbol\" src=\"images/x%253Cy.png\" alt=\"x&lt;y\" width=\"128\" "
           "height=\"128\" onload=\"tessalineImageDone(this, true)\" "
           "onerror=\"tessalineImageDone(this, false)\">",
           "<li>Encountered unknown path command: &lt;</li>\n<li>b &amp; c</li>",
           "<div class=\"picture no-image\">no image</div>",
           "<script>tessalineStart();</script>",
       }) {
    EXPECT_NE(html.find(part), std::string::npos) << part;
  }
  EXPECT_EQ(html.find("x<y"), std::string::npos);
  EXPECT_EQ(html.find("http"), std::string::npos) << "the page must not reach the network";
}

TEST(ContactSheetLayout, CapsColumnsAtTheSymbolCountAndStacksRows) {
  // {symbols, columns, cell, width, height}; below each row of cells a band for the keys.
  const std::array<int, 5> cases[] = {
      {23, 8, 96, 768, 3 * (96 + 15)},
      {3, 8, 96, 288, 96 + 15},
      {0, 8, 96, 96, 96 + 15},           // one "no symbols" cell
      {9, 4, 192, 768, 3 * (192 + 30)},  // cells from 192 pixels write keys twice as large
  };
  for (const auto& [count, columns, cell, width, height] : cases) {
    const ContactSheet sheet(static_cast<std::size_t>(count), columns, cell);
    EXPECT_EQ(sheet.width(), width) << count << " symbols, " << columns << " columns";
    EXPECT_EQ(sheet.height(), height) << count << " symbols, " << columns << " columns";
  }
  // The icon keeps a margin inside its cell.
  EXPECT_EQ(ContactSheet(1, 1, 96).iconSize(), 80);
}

}  // namespace
}  // namespace tessaline::cli
