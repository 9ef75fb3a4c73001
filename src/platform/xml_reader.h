#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tessaline {

// Receives the element events of one XML document, in document order.
class XmlReaderCallbacks {
 public:
  // Alternating names and values, in document order, ending with a null pointer: the reader's
  // own array, valid during the call only.
  using Attributes = const char* const*;

  virtual ~XmlReaderCallbacks() = default;
  // An element start: its name exactly as written (prefix included) and its attributes in
  // document order, names and values as the reader delivers them (entities expanded).
  virtual void start(std::string_view name, Attributes attributes) = 0;
  // An element end; an empty element `<a/>` gives a start directly followed by its end.
  virtual void end(std::string_view name) = 0;
};

// Reads the whole of `text` as one XML document with namespace processing off, reporting element
// starts and ends to `callbacks` as they are met. Returns whether the document was well formed;
// on a failure the events reported before the error have been delivered all the same. Character
// data, comments and processing instructions are not reported.
//
// The encoding is the one the document declares, UTF-8 when it declares none. Besides UTF-8,
// UTF-16, ISO-8859-1 and US-ASCII, other spellings of UTF-8 ("utf8") and any encoding of one byte
// per character that the C library converts (windows-1252, ISO-8859-15, KOI8-R, ...) are read;
// names and values arrive as UTF-8.
bool readXml(std::string_view text, XmlReaderCallbacks& callbacks);

}  // namespace tessaline
