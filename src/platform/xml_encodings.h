#pragma once

#include <expat.h>

#include <string_view>

namespace tessaline {

// The reader knows UTF-8, UTF-16, ISO-8859-1 and US-ASCII by itself. Documents that declare
// another encoding are read as the platform's XML parser reads them, in two parts:

// The encoding to create the parser with for `text`: "UTF-8" when its declaration spells UTF-8
// another way ("utf8", "UTF_8"), which the reader would not recognise; otherwise null, and the
// declaration decides.
const char* encodingOverride(std::string_view text);

// Lets `parser` read any declared encoding of one byte per character that the C library converts
// (windows-1252, ISO-8859-15, KOI8-R, ...), through the library's table. Other encodings of
// several bytes per character are refused, which makes the document not well formed, as does a
// byte the encoding leaves undefined.
void readDeclaredEncodings(XML_Parser parser);

}  // namespace tessaline
