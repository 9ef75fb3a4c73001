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
    lines.push_back("+" + std::string(name));
    for (; attributes[0] != nullptr; attributes += 2) {
      lines.back().append(" ").append(attributes[0]).append("=").append(attributes[1]);
    }
  }
  void end(std::string_view name) override { lines.push_back("-" + std::string(name)); }
  Lines lines;
};

// A document declaring `encoding` whose one element has the attribute v="`value`".
std::string declaring(const char* encoding, const char* value) {
  return std::string("<?xml version=\"1.0\" encoding=\"") + encoding + "\"?><a v=\"" + value +
         "\"/>";
}

// Names and attributes as written, references in values expanded; declarations, comments, text
// and processing instructions give no events. A malformed document fails after reporting what came
// before. Besides the encodings the reader knows itself, one-byte encodings are read through the C
// library's tables and other spellings of UTF-8 as UTF-8, values arriving as UTF-8; other
// encodings of several bytes per character, bytes an encoding leaves undefined, malformed UTF-8
// and names nobody knows make the document not well formed.
TEST(XmlReader, ReportsElementsAsWrittenUntilTheDocumentProvesMalformed) {
  struct Case {
    std::string text;
    bool wellFormed;
    Lines lines;
  };
  const Case cases[] = {
      {"<?xml version=\"1.0\"?>\n<!-- note --><svg xmlns=\"http://www.w3.org/2000/svg\" "
       "xmlns:xlink=\"http://www.w3.org/1999/xlink\"><x:Rect Z=\"1\" a=\"2\" m='3'/>text<?pi x?>"
       "<use xlink:href=\"#a\" FILL=\"Red\" v=\"&lt;&amp;&#x41;&#66;&quot;\" w=\"x&#10;y\"></use>"
       "</svg>",
       true,
       {"+svg xmlns=http://www.w3.org/2000/svg xmlns:xlink=http://www.w3.org/1999/xlink",
        "+x:Rect Z=1 a=2 m=3", "-x:Rect", "+use xlink:href=#a FILL=Red v=<&AB\" w=x\ny", "-use",
        "-svg"}},
      {"", false, {}},
      {"<svg><g>", false, {"+svg", "+g"}},
      {"<svg></g>", false, {"+svg"}},
      {"<a/><b/>", false, {"+a", "-a"}},
      {"<a x=\"1\" x=\"2\"/>", false, {}},
      {"<a>&undefined;</a>", false, {"+a"}},
      {"<a>\xff</a>", false, {"+a"}},
      {"plain text", false, {}},
      {declaring("windows-1252", "\x80"), true, {"+a v=\u20ac", "-a"}},
      {declaring("KOI8-R", "\xc1"), true, {"+a v=\u0430", "-a"}},
      {declaring("ISO-8859-1", "\xa4"), true, {"+a v=\u00a4", "-a"}},
      {declaring("utf8", "\u00e9\U0001F600"), true, {"+a v=\u00e9\U0001F600", "-a"}},
      {declaring("UTF_8", "\xc0\xaf"), false, {}},  // an overlong form
      {declaring("windows-1252", "\x81"), false, {}},
      {declaring("Shift_JIS", "x"), false, {}},
      {declaring("no-such-encoding", "x"), false, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    Transcript transcript;
    EXPECT_EQ(readXml(c.text, transcript), c.wellFormed);
    EXPECT_EQ(transcript.lines, c.lines);
  }
}

}  // namespace
}  // namespace tessaline
