#include "tessaline/svg_file.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "geometry/basic_shapes.h"
#include "parse/attribute_set_interner.h"
#include "parse/definition_builder.h"
#include "parse/element_handlers.h"
#include "parse/folded_name.h"
#include "parse/svg_definition.h"
#include "platform/character_search.h"
#include "platform/number_reader.h"
#include "platform/xml_reader.h"
#include "style/presentation_attributes.h"

namespace tessaline {
namespace {

// The placeholder is deliberately left unfilled: this is the established wording.
constexpr std::string_view kUnknownSymbolAttribute =
    "Encountered unknown attribute for symbol: $attrName";
constexpr std::string_view kNoDefinitionForKey = "No SVG Definition found for key";

// "a b c d" split on single blanks (not on a blank carrying a combining mark). The third and
// fourth numbers are the far corner, not a size, which is how the documents this library serves
// were written; anything but exactly four pieces (commas, doubled blanks, a trailing blank) gives
// no box at all.
std::optional<Rect> readViewBox(std::string_view value) {
  std::string_view pieces[4];
  std::size_t count = 0;
  CharacterSplitter splitter(value, " ");
  for (std::string_view piece; splitter.next(piece);) {
    if (count == 4) return std::nullopt;
    pieces[count++] = piece;
  }
  if (count != 4) return std::nullopt;
  const float a = readLenientFloat(pieces[0]);
  const float b = readLenientFloat(pieces[1]);
  const float c = readLenientFloat(pieces[2]);
  const float d = readLenientFloat(pieces[3]);
  return Rect{a, b, c - a, d - b};
}

using SymbolTable = std::map<std::string, std::shared_ptr<const SVGDefinition>>;

// Builds the symbol table straight from the XML reader's callbacks: tags are handled as they
// are met, viewing the reader's own text, and nothing of the document is recorded on the way.
// What it builds is kept only once the whole document has been read and found well formed.
class SpriteReader final : public XmlReaderCallbacks {
 public:
  SpriteReader() : builder_(interner_, /*deferFatalStops=*/true) {}

  void start(std::string_view name, Attributes attributes) override {
    if (oversized_) return;
    views_.clear();
    for (Attributes entry = attributes; entry[0] != nullptr; entry += 2) {
      views_.push_back({entry[0], entry[1]});
      if (oversized(views_.back().name) || oversized(views_.back().value)) return;
    }
    if (oversized(name) || stopped()) return;
    const SVGTag tag{name, views_};
    if (current_) {
      builder_.start(tag);
    } else if (FoldedName(name) == "symbol") {
      // Only symbols become entries; every other element is walked past, so a symbol nested in
      // any other element (outside a symbol) is still found.
      beginSymbol(tag);
    }
  }

  void end(std::string_view name) override {
    if (oversized(name) || stopped() || !current_) return;
    if (builder_.end(name)) finishSymbol();
  }

  // Completes what the end of the document leaves open and hands over the table, or an empty
  // one when the document was not well formed.
  SymbolTable finish(bool wellFormed) {
    if (!wellFormed || oversized_) return {};
    if (const std::optional<std::string>& points = builder_.deferredPointList()) {
      // The stop a polygon makes while building, made now that the document is known to be
      // well formed, as it always was.
      const PolygonComponent stop(std::nullopt, *points, ComponentAttributes());
    }
    if (current_) {
      while (!builder_.endOfEvents()) {
      }
      finishSymbol();
    }
    return std::move(table_);
  }

 private:
  bool stopped() const { return oversized_ || builder_.deferredPointList().has_value(); }

  // A name or value of 2 GiB or more: no icon has one, and such a document is treated like one
  // that is not well formed rather than stopping the host.
  bool oversized(std::string_view text) {
    if (text.size() > UINT32_MAX / 2) oversized_ = true;
    return oversized_;
  }

  // A symbol start tag. Without an id it becomes no definition and its content is walked past
  // like any other element's.
  void beginSymbol(const SVGTag& tag) {
    StyledAttributes styled = interner_.apply(nullptr, tag);
    const ConsumedAttributes consumed = styled.consumed;

    std::optional<std::string_view> id;
    std::optional<std::string_view> width;
    std::optional<std::string_view> height;
    std::optional<Rect> viewBox;
    std::size_t unknown = 0;
    for (const SVGAttributeView& attribute : tag.attributes) {
      switch (attributeNameFor(attribute.name)) {
        case AttributeName::Id:
          id = attribute.value;
          break;
        case AttributeName::Width:
          width = attribute.value;
          break;
        case AttributeName::Height:
          height = attribute.value;
          break;
        case AttributeName::Xmlns:
          // Namespace declarations are the document's business, not the symbol's.
          break;
        case AttributeName::ViewBox:
          // A malformed one leaves the box of an earlier, valid one (say "viewBox" before
          // "VIEWBOX") in place.
          if (std::optional<Rect> box = readViewBox(attribute.value)) viewBox = box;
          break;
        default:
          if (!consumed.contains(attribute.name)) ++unknown;
          break;
      }
    }
    if (!id) return;

    auto definition = std::make_shared<SVGDefinition>();
    for (std::size_t i = 0; i < unknown; ++i) {
      definition->errorMessages.emplace_back(kUnknownSymbolAttribute);
    }
    definition->id = *id;
    if (viewBox) {
      definition->viewBox = viewBox;
    } else if (width && height && !width->empty() && !height->empty()) {
      // Units such as "px" fall away in the lenient conversion.
      definition->viewBox = Rect{0, 0, readLenientFloat(*width), readLenientFloat(*height)};
    }
    builder_.begin(*definition, InheritedAttributes(std::move(styled.attributes)));
    current_ = std::move(definition);
  }

  void finishSymbol() {
    // A later symbol with the same id replaces the earlier one. Sprites tend to list their
    // symbols in id order: the end of the table is tried first, and the search made only when
    // the id does not go there.
    const std::string& key = current_->id;
    table_.insert_or_assign(table_.end(), key, std::move(current_));
    current_ = nullptr;
  }

  // Sprites repeat the same styling across symbols as much as within one.
  AttributeSetInterner interner_;
  DefinitionBuilder builder_;
  std::vector<SVGAttributeView> views_;
  std::shared_ptr<SVGDefinition> current_;  // the symbol being built, if any
  SymbolTable table_;
  bool oversized_ = false;
};

}  // namespace

SVGFile::SVGFile(std::string_view rawFile) {
  SpriteReader reader;
  const bool wellFormed = readXml(rawFile, reader);
  symbolDefinitions = reader.finish(wellFormed);
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
