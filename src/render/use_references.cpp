// `use` elements: draw an element of the definition's `defs`, or another symbol of the document.
#include <optional>
#include <string>
#include <vector>

#include "parse/svg_component.h"
#include "parse/svg_definition.h"
#include "platform/character_search.h"
#include "tessaline/svg_file.h"

#ifdef TESSALINE_FUZZING
#include "platform/fatal.h"
#endif

namespace tessaline {
namespace {

constexpr const char* kNoLinkKeyFound = "No link key found";
constexpr const char* kNoSvgFoundForHrefLink = "No SVG found for href link";
constexpr const char* kErrorSeparator = ", ";

std::optional<std::string> keyOf(const std::string& reference) {
  // Only same-document references ("#id") name a key; "#" alone names nothing, and neither does
  // a "#" that carries a combining mark, which is another character.
  if (reference.size() > 1 && CharacterText(reference).startsWith("#")) return reference.substr(1);
  return std::nullopt;
}

std::string joinErrors(const std::vector<std::string>& errors) {
  std::string joined;
  for (std::size_t i = 0; i < errors.size(); ++i) {
    if (i > 0) joined += kErrorSeparator;
    joined += errors[i];
  }
  return joined;
}

#ifdef TESSALINE_FUZZING
// References recurse without limit, so a symbol that uses itself exhausts the stack. The fuzzing
// build stops such chains through the fatal-stop hook so they are told apart from real faults.
// Thread-local rather than threaded through the calls: this exists in the fuzzing build only.
constexpr int kFuzzingUseDepthLimit = 24;
thread_local int useDepth = 0;

struct UseDepthGuard {
  UseDepthGuard() {
    if (++useDepth > kFuzzingUseDepthLimit) {
      --useDepth;  // this guard's destructor will not run; the outer ones unwind the rest
      fatalError("use references nest too deeply");
    }
  }
  ~UseDepthGuard() { --useDepth; }
  UseDepthGuard(const UseDepthGuard&) = delete;
  UseDepthGuard& operator=(const UseDepthGuard&) = delete;
};
#endif

}  // namespace

std::optional<std::string> UseComponent::getLinkKey() const {
  if (auto key = keyOf(href)) return key;
  return keyOf(hrefLink);
}

std::optional<std::string> UseComponent::draw(SVGCanvasProtocol& canvas,
                                              const std::optional<Rect>& viewBox,
                                              const SVGFile& svgFile, const SVGDefinition& forSvg,
                                              const PresentationAttributes* joinAttributes) const {
  const std::optional<std::string> key = getLinkKey();
  if (!key) return kNoLinkKeyFound;
#ifdef TESSALINE_FUZZING
  const UseDepthGuard depthGuard;
#endif

  // An element of this definition's `defs` gets only the `use` element's own styling; what the
  // `use` inherited stops here.
  if (forSvg.svgSubDefinitions) {
    for (const auto& component : forSvg.svgSubDefinitions->svgComponents) {
      if (component->id && *component->id == *key) {
        return component->draw(canvas, viewBox, svgFile, forSvg, &attributes);
      }
    }
  }

  // Another symbol is drawn with the merged styling, scaled from its box into this one.
  const auto symbol = svgFile.symbolDefinitions.find(*key);
  if (symbol != svgFile.symbolDefinitions.end() && symbol->second) {
    const PresentationAttributes merged = PresentationAttributes::join(&attributes, joinAttributes);
    return joinErrors(symbol->second->draw(canvas, svgFile, &merged, viewBox));
  }
  return kNoSvgFoundForHrefLink;
}

}  // namespace tessaline
