// Clip outlines: `clipPath` elements kept in a definition's `defs`, and inline "path('...')".
#include <optional>
#include <string>
#include <string_view>

#include "geometry/path_builder.h"
#include "geometry/path_parser.h"
#include "parse/svg_component.h"
#include "parse/svg_definition.h"
#include "platform/character_search.h"
#include "platform/fatal.h"

namespace tessaline {
namespace {

constexpr const char* kInvalidDrawCallToClipPath = "Invalid Draw call to clip path";
constexpr const char* kInvalidClipPathPointer = "Invalid Clip Path Pointer";
constexpr const char* kUnableToFindClipPathData = "Unable to find clip path data";
constexpr const char* kUnableToFindClipPathForKey = "Unable to find clip path for key";

constexpr std::string_view kUrlPrefix = "url(#";
constexpr std::string_view kPathPrefix = "path('";
constexpr std::string_view kPathSuffix = "')";

}  // namespace

std::optional<std::string> ClipPathComponent::draw(SVGCanvasProtocol&, const std::optional<Rect>&,
                                                   const SVGFile&, const SVGDefinition&,
                                                   const PresentationAttributes*) const {
  // A clip path only ever restricts other shapes; it is never painted, not even through `use`.
  return kInvalidDrawCallToClipPath;
}

std::optional<Path> ClipPathComponent::getClipPath() const {
  // Only the first child counts, and only its outline: its own attributes, transform included,
  // are not applied.
  if (!definitions_ || definitions_->svgComponents.empty()) return std::nullopt;
  const auto* shape =
      dynamic_cast<const PresentationAttributeSVGComponent*>(definitions_->svgComponents[0].get());
  if (shape == nullptr) return std::nullopt;
  return shape->getDrawPath().path;
}

std::optional<Path> SVGDefinition::getClipPath(std::string_view key) const {
  if (!svgSubDefinitions) return std::nullopt;
  // No early exit: when several clip paths share an id, the last one decides, even when it has
  // no outline.
  std::optional<Path> result;
  for (const auto& component : svgSubDefinitions->svgComponents) {
    const auto* clip = dynamic_cast<const ClipPathComponent*>(component.get());
    if (clip != nullptr && clip->id && *clip->id == key) result = clip->getClipPath();
  }
  return result;
}

PresentationAttributeSVGComponent::ClipResult PresentationAttributeSVGComponent::getClipPath(
    const SVGDefinition& forSvg, const PresentationAttributes& useAttributes) const {
  if (!useAttributes.clipPath) return {};
  const std::string_view value = *useAttributes.clipPath;

  // Prefixes and closing marks count only as whole characters: a ")" or "'" that carries a
  // combining mark closes nothing, and a "#" or "'" with one opens nothing.
  const CharacterText characters(value);
  if (characters.startsWith(kUrlPrefix)) {
    const std::size_t close = characters.find(")");
    if (close == std::string_view::npos) return {std::nullopt, kUnableToFindClipPathForKey};
    // The key is taken as written, blanks included.
    const std::string_view key = value.substr(kUrlPrefix.size(), close - kUrlPrefix.size());
    if (std::optional<Path> path = forSvg.getClipPath(key)) return {std::move(path), std::nullopt};
    return {std::nullopt, kUnableToFindClipPathForKey};
  }

  if (characters.startsWith(kPathPrefix)) {
    const std::size_t close = characters.find(kPathSuffix);
    if (close == std::string_view::npos) return {std::nullopt, kUnableToFindClipPathData};
    // In "path(')" the closing quote found is the opening one, so the data would end before it
    // starts. That range check is a deliberate stop, kept rather than turned into a message.
    if (close < kPathPrefix.size()) {
      fatalError("clip-path \"path('\" data ends before it starts");
    }
    const std::string data(value.substr(kPathPrefix.size(), close - kPathPrefix.size()));
    // Inline clip data is all or nothing: any syntax error discards the whole outline.
    CGMutablePathWrapper builder;
    PathParser parser(data);
    PathParserResult parsed = parser.parse(builder);
    if (parsed.error) return {std::nullopt, std::move(parsed.error)};
    return {std::move(parsed.path), std::nullopt};
  }

  return {std::nullopt, kInvalidClipPathPointer};
}

}  // namespace tessaline
