#include "tessaline/svg_file.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "parse/attribute_set_interner.h"
#include "parse/svg_definition.h"
#include "parse/svg_xml_parser.h"
#include "platform/ascii_case.h"
#include "platform/number_reader.h"
#include "style/presentation_attributes.h"

namespace tessaline {
namespace {

// The placeholder is deliberately left unfilled: this is the established wording.
constexpr std::string_view kUnknownSymbolAttribute =
    "Encountered unknown attribute for symbol: $attrName";
constexpr std::string_view kNoDefinitionForKey = "No SVG Definition found for key";

// "a b c d" split on single blanks. The third and fourth numbers are the far corner, not a size,
// which is how the documents this library serves were written; anything but exactly four pieces
// (commas, doubled blanks, a trailing blank) gives no box at all.
std::optional<Rect> readViewBox(std::string_view value) {
  std::vector<std::string_view> pieces;
  while (true) {
    const std::size_t blank = value.find(' ');
    pieces.push_back(value.substr(0, blank));
    if (blank == std::string_view::npos) break;
    value.remove_prefix(blank + 1);
  }
  if (pieces.size() != 4) return std::nullopt;
  const float a = readLenientFloat(pieces[0]);
  const float b = readLenientFloat(pieces[1]);
  const float c = readLenientFloat(pieces[2]);
  const float d = readLenientFloat(pieces[3]);
  return Rect{a, b, c - a, d - b};
}

// Reads one symbol start tag into a new definition and parses its content. nullptr when the tag
// has no id: its content is then left to the document loop.
std::shared_ptr<SVGDefinition> readSymbol(const SVGEvent& tag, SVGXMLParser& parser,
                                          AttributeSetInterner& interner) {
  auto definition = std::make_shared<SVGDefinition>();
  PresentationAttributes symbolAttributes;
  const std::vector<std::string> consumed = symbolAttributes.parse(tag);

  std::optional<std::string> id;
  std::optional<std::string> width;
  std::optional<std::string> height;
  std::optional<Rect> viewBox;
  for (const auto& [name, value] : tag.attributes) {
    const std::string folded = foldAsciiCase(name);
    if (folded == "id") {
      id = value;
    } else if (folded == "width") {
      width = value;
    } else if (folded == "height") {
      height = value;
    } else if (folded == "xmlns") {
      // Namespace declarations are the document's business, not the symbol's.
    } else if (folded == "viewbox") {
      viewBox = readViewBox(value);
    } else if (std::ranges::find(consumed, folded) == consumed.end()) {
      definition->errorMessages.emplace_back(kUnknownSymbolAttribute);
    }
  }
  if (!id) return nullptr;

  definition->id = *id;
  if (viewBox) {
    definition->viewBox = viewBox;
  } else if (width && height && !width->empty() && !height->empty()) {
    // Units such as "px" fall away in the lenient conversion.
    definition->viewBox = Rect{0, 0, readLenientFloat(*width), readLenientFloat(*height)};
  }
  definition->parseData(parser, &symbolAttributes, &interner);
  return definition;
}

}  // namespace

SVGFile::SVGFile(std::string_view rawFile) {
  SVGXMLParser parser(rawFile);
  // Sprites repeat the same styling across symbols as much as within one.
  AttributeSetInterner interner;
  // Only symbols become entries; every other element is walked past, so a symbol nested in any
  // other element (outside a symbol) is still found.
  for (const SVGEvent* event = parser.nextEvent();
       event != nullptr && event->eventType != EventType::EndOfDocument;
       event = parser.nextEvent()) {
    if (event->eventType != EventType::StartTag || foldAsciiCase(event->name) != "symbol") continue;
    if (std::shared_ptr<SVGDefinition> definition = readSymbol(*event, parser, interner)) {
      // A later symbol with the same id replaces the earlier one.
      const std::string key = definition->id;
      symbolDefinitions.insert_or_assign(key, std::move(definition));
    }
  }
}

SVGFile::~SVGFile() = default;
SVGFile::SVGFile(SVGFile&&) noexcept = default;
SVGFile& SVGFile::operator=(SVGFile&&) noexcept = default;

TessalineResponse SVGFile::getUIImageForKey(const std::string& key, RasterBackend backend) const {
  auto found = symbolDefinitions.find(key);
  if (found == symbolDefinitions.end()) {
    return TessalineResponse(key, std::nullopt, {std::string(kNoDefinitionForKey)});
  }
  return TessalineUtil::loadSVGImage(TessalineRequest(
      *this, found->second, key, TessalineUtil::kImageSize, TessalineUtil::kImageSize, backend));
}

}  // namespace tessaline
