#include "platform/xml_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tessaline {
namespace {

using Lines = std::vector<std::string>;

// Writes each event as one line: "+name a=1 b=2" for a start, "-name" for an end.
struct Transcript final : XmlReaderCallbacks {
  void start(std::string_view name, Attributes attributes) override {
    std::string line = "+" + std::string(name);
    for (Attributes entry = attributes; entry[0] != nullptr; entry += 2) {
      line.append(" ").append(entry[0]).append("=").append(entry[1]);
    }
    lines.push_back(line);
  }
  void end(std::string_view name) override { lines.push_back("-" + std::string(name)); }
  Lines lines;
};

// Names and attributes as written, references in values expanded; declarations, comments, text
// and processing instructions give no events.
TEST(XmlReader, ReportsElementsWithNamesAndAttributesAsWritten) {
  Transcript transcript;
  ASSERT_TRUE(readXml(
      "<?xml version=\"1.0\"?>\n<!-- note --><svg xmlns=\"http://www.w3.org/2000/svg\" "
      "xmlns:xlink=\"http://www.w3.org/1999/xlink\"><x:Rect Z=\"1\" a=\"2\" m='3'/>text<?pi x?>"
      "<use xlink:href=\"#a\" FILL=\"Red\" v=\"&lt;&amp;&#x41;&#66;&quot;\" w=\"x&#10;y\"></use>"
      "</svg>",
      transcript));
  EXPECT_EQ(transcript.lines,
            (Lines{"+svg xmlns=http://www.w3.org/2000/svg xmlns:xlink=http://www.w3.org/1999/xlink",
                   "+x:Rect Z=1 a=2 m=3", "-x:Rect", "+use xlink:href=#a FILL=Red v=<&AB\" w=x\ny",
                   "-use", "-svg"}));
}

TEST(XmlReader, FailsOnMalformedDocumentsAfterReportingWhatCameBefore) {
  struct Case {
    const char* text;
    Lines before;
  };
  const Case cases[] = {
      {"", {}},
      {"<svg><g>", {"+svg", "+g"}},
      {"<svg></g>", {"+svg"}},
      {"<a/><b/>", {"+a", "-a"}},
      {"<a x=\"1\" x=\"2\"/>", {}},
      {"<a>&undefined;</a>", {"+a"}},
      {"<a>\xff</a>", {"+a"}},
      {"plain text", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Transcript transcript;
    EXPECT_FALSE(readXml(c.text, transcript));
    EXPECT_EQ(transcript.lines, c.before);
  }
}

// Besides the encodings the reader knows itself, one-byte encodings are read through the C
// library's tables and other spellings of UTF-8 as UTF-8, values arriving as UTF-8; other
// encodings of several bytes per character, bytes an encoding leaves undefined, malformed UTF-8
// and names nobody knows make the document not well formed.
TEST(XmlReader, ReadsDeclaredOneByteEncodings) {
  struct Case {
    const char* encoding;
    const char* value;
    bool wellFormed;
    Lines lines;
  };
  const Case cases[] = {
      {"windows-1252", "\x80", true, {"+a v=\u20ac", "-a"}},
      {"KOI8-R", "\xc1", true, {"+a v=\u0430", "-a"}},
      {"ISO-8859-1", "\xa4", true, {"+a v=\u00a4", "-a"}},
      {"utf8", "\u00e9\U0001F600", true, {"+a v=\u00e9\U0001F600", "-a"}},
      {"UTF_8", "\xc0\xaf", false, {}},  // an overlong form
      {"windows-1252", "\x81", false, {}},
      {"Shift_JIS", "x", false, {}},
      {"no-such-encoding", "x", false, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.encoding);
    Transcript transcript;
    const std::string text = std::string("<?xml version=\"1.0\" encoding=\"") + c.encoding +
                             "\"?><a v=\"" + c.value + "\"/>";
    EXPECT_EQ(readXml(text, transcript), c.wellFormed);
    EXPECT_EQ(transcript.lines, c.lines);
  }
}

}  // namespace
}  // namespace tessaline
