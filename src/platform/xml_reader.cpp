#include "platform/xml_reader.h"

#include <expat.h>
#include <iconv.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <type_traits>

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

struct IconvCloser {
  void operator()(iconv_t converter) const { iconv_close(converter); }
};
using IconvHandle = std::unique_ptr<std::remove_pointer_t<iconv_t>, IconvCloser>;

// The code point of the single byte `byte` in the converter's encoding, -1 for a byte that is no
// character there, or -2 for one that only begins a character of several bytes.
int codePointOfByte(iconv_t converter, unsigned char byte) {
  char in = static_cast<char>(byte);
  char* inPointer = &in;
  std::size_t inLeft = 1;
  std::uint32_t out = 0;
  char* outPointer = reinterpret_cast<char*>(&out);
  std::size_t outLeft = sizeof out;
  iconv(converter, nullptr, nullptr, nullptr, nullptr);  // back to the initial shift state
  if (iconv(converter, &inPointer, &inLeft, &outPointer, &outLeft) ==
      static_cast<std::size_t>(-1)) {
    return errno == EINVAL ? -2 : -1;
  }
  // A byte that converts to nothing (a shift sequence) or to several characters is not one
  // character either.
  if (outLeft != 0 || inLeft != 0 || out > 0x10FFFF) return -1;
  return static_cast<int>(out);
}

// The reader knows UTF-8, UTF-16, ISO-8859-1 and US-ASCII by itself. Documents that declare
// another encoding are read as the platform's XML parser reads them: any encoding of one byte per
// character that the C library converts (windows-1252, ISO-8859-15, KOI8-R, ...) is taken byte
// by byte through its table. Encodings of several bytes per character are refused, which makes
// the document not well formed.
int XMLCALL onUnknownEncoding(void*, const XML_Char* name, XML_Encoding* info) {
  // Code points come out as 32-bit numbers in the machine's own byte order.
  constexpr const char* kCodePoints =
      std::endian::native == std::endian::little ? "UTF-32LE" : "UTF-32BE";
  const iconv_t opened = iconv_open(kCodePoints, name);
  if (opened == reinterpret_cast<iconv_t>(-1)) return XML_STATUS_ERROR;
  const IconvHandle converter(opened);
  for (int byte = 0; byte < 256; ++byte) {
    const int codePoint = codePointOfByte(converter.get(), static_cast<unsigned char>(byte));
    if (codePoint == -2) return XML_STATUS_ERROR;
    info->map[byte] = codePoint;
  }
  info->data = nullptr;
  info->convert = nullptr;
  info->release = nullptr;
  return XML_STATUS_OK;
}

}  // namespace

bool readXml(std::string_view text, XmlReaderCallbacks& callbacks) {
  // A null encoding and no namespace separator: names arrive exactly as written, "x:rect" included.
  ParserHandle parser(XML_ParserCreate(nullptr));
  if (!parser) return false;
  XML_SetUserData(parser.get(), &callbacks);
  XML_SetElementHandler(parser.get(), onStart, onEnd);
  XML_SetUnknownEncodingHandler(parser.get(), onUnknownEncoding, nullptr);

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
