#include "platform/xml_encodings.h"

#include <iconv.h>

#include <bit>
#include <cctype>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace tessaline {
namespace {

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

bool mapOneByteEncoding(const char* name, XML_Encoding* info) {
  // Code points come out as 32-bit numbers in the machine's own byte order.
  constexpr const char* kCodePoints =
      std::endian::native == std::endian::little ? "UTF-32LE" : "UTF-32BE";
  const iconv_t opened = iconv_open(kCodePoints, name);
  if (opened == reinterpret_cast<iconv_t>(-1)) return false;
  const IconvHandle converter(opened);
  for (int byte = 0; byte < 256; ++byte) {
    const int codePoint = codePointOfByte(converter.get(), static_cast<unsigned char>(byte));
    if (codePoint == -2) return false;
    info->map[byte] = codePoint;
  }
  info->data = nullptr;
  info->convert = nullptr;
  info->release = nullptr;
  return true;
}

// "utf8", "UTF_8" and the like: the name without case, hyphens and underscores.
bool namesUtf8(std::string_view name) {
  std::string bare;
  for (const char c : name) {
    if (c != '-' && c != '_')
      bare.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(c))));
  }
  return bare == "utf8";
}

int XMLCALL onUnknownEncoding(void*, const XML_Char* name, XML_Encoding* info) {
  return mapOneByteEncoding(name, info) ? XML_STATUS_OK : XML_STATUS_ERROR;
}

bool isXmlSpace(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

// The encoding the XML declaration at the start of `text` names, if it names one.
std::optional<std::string_view> declaredEncoding(std::string_view text) {
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);  // a byte order mark
  if (!text.starts_with("<?xml")) return std::nullopt;
  const std::string_view declaration = text.substr(0, text.find("?>"));
  std::size_t at = declaration.find("encoding");
  if (at == std::string_view::npos) return std::nullopt;
  at += std::string_view("encoding").size();
  while (at < declaration.size() && isXmlSpace(declaration[at])) ++at;
  if (at >= declaration.size() || declaration[at] != '=') return std::nullopt;
  ++at;
  while (at < declaration.size() && isXmlSpace(declaration[at])) ++at;
  if (at >= declaration.size() || (declaration[at] != '"' && declaration[at] != '\'')) {
    return std::nullopt;
  }
  const std::size_t close = declaration.find(declaration[at], at + 1);
  if (close == std::string_view::npos) return std::nullopt;
  return declaration.substr(at + 1, close - at - 1);
}

}  // namespace

const char* encodingOverride(std::string_view text) {
  const std::optional<std::string_view> declared = declaredEncoding(text);
  return declared && namesUtf8(*declared) ? "UTF-8" : nullptr;
}

void readDeclaredEncodings(XML_Parser parser) {
  XML_SetUnknownEncodingHandler(parser, onUnknownEncoding, nullptr);
}

}  // namespace tessaline
