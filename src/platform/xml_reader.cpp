#include "platform/xml_reader.h"

#include <expat.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <memory>
#include <type_traits>

#include "platform/xml_encodings.h"

namespace tessaline {
namespace {

struct ParserDeleter {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};
using ParserHandle = std::unique_ptr<std::remove_pointer_t<XML_Parser>, ParserDeleter>;

void XMLCALL onStart(void* userData, const XML_Char* name, const XML_Char** attributes) {
  static_cast<XmlReaderCallbacks*>(userData)->start(name, attributes);
}

void XMLCALL onEnd(void* userData, const XML_Char* name) {
  static_cast<XmlReaderCallbacks*>(userData)->end(name);
}

}  // namespace

bool readXml(std::string_view text, XmlReaderCallbacks& callbacks) {
  // No namespace separator: names arrive exactly as written, "x:rect" included.
  ParserHandle parser(XML_ParserCreate(encodingOverride(text)));
  if (!parser) return false;
  XML_SetUserData(parser.get(), &callbacks);
  XML_SetElementHandler(parser.get(), onStart, onEnd);
  readDeclaredEncodings(parser.get());

  // Handed over in pieces: expat copies what it is given into a buffer of its own, and a whole
  // document at once would double the memory a large sprite costs. The final flag marks the last
  // piece; the events are the same however the text is cut.
  constexpr std::size_t kPieceBytes = 64 * 1024;
  do {
    const std::size_t length = std::min(text.size(), kPieceBytes);
    const bool isFinal = length == text.size();
    if (XML_Parse(parser.get(), text.data(), static_cast<int>(length),
                  isFinal ? XML_TRUE : XML_FALSE) != XML_STATUS_OK) {
      return false;
    }
    text.remove_prefix(length);
  } while (!text.empty());
  return true;
}

}  // namespace tessaline
