#include "style/paint.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "platform/case_folding.h"
#include "platform/number_reader.h"
#include "platform/utf8_text.h"
#include "style/transform.h"

namespace tessaline {
namespace {

constexpr std::string_view kInvalidColor = "Invalid color";

constexpr float kDefaultStrokeWidth = 1.0f;
constexpr float kDefaultMiterLimit = 4.0f;
constexpr float kMinimumMiterLimit = 1.0f;
constexpr std::int64_t kOpaque = 255;

template <typename Value>
struct Keyword {
  std::string_view name;  // lower case
  Value value;
};

// Sorted by name for the binary search in lookUpKeyword.
constexpr std::array<Keyword<PaintStrokeCap>, 3> kCaps{{
    {"butt", PaintStrokeCap::Butt},
    {"round", PaintStrokeCap::Round},
    {"square", PaintStrokeCap::Square},
}};

constexpr std::array<Keyword<PaintStrokeLineJoin>, 5> kJoins{{
    {"arcs", PaintStrokeLineJoin::Miter},
    {"bevel", PaintStrokeLineJoin::Bevel},
    {"miter", PaintStrokeLineJoin::Miter},
    {"miter-clip", PaintStrokeLineJoin::Miter},
    {"round", PaintStrokeLineJoin::Round},
}};

// The keyword's value for `text` folded to lower case; `fallback` when absent or unknown.
template <typename Value, std::size_t N>
Value lookUpKeyword(const std::array<Keyword<Value>, N>& table,
                    const std::optional<std::string>& text, Value fallback) {
  if (!text) return fallback;
  const std::string folded = foldCase(*text);
  const auto found = std::lower_bound(
      table.begin(), table.end(), folded,
      [](const Keyword<Value>& keyword, const std::string& name) { return keyword.name < name; });
  return found != table.end() && found->name == folded ? found->value : fallback;
}

bool hasValue(const std::optional<std::string>& text) {
  return text && !text->empty();
}

bool equalsFolded(const std::optional<std::string>& text, std::string_view lowerCase) {
  return text && foldCase(*text) == lowerCase;
}

// An opacity as a paint alpha: times 255 in float, truncated toward zero, clamped to 0...255.
// The comparisons come before the conversion so that huge and infinite products clamp instead of
// overflowing the integer; a NaN product (not produced by the number reader) counts as 0.
std::int64_t alphaFromOpacity(const std::string& opacity) {
  const float product = readLenientFloat(opacity) * 255.0f;
  if (!(product > 0.0f)) return 0;
  if (product >= static_cast<float>(kOpaque)) return kOpaque;
  return static_cast<std::int64_t>(product);
}

StrokePaint makeStrokePaint(Color color, const SVGCanvasProtocol& canvas, const Rect& viewBox,
                            const PresentationAttributes& attributes) {
  const float width = hasValue(attributes.strokeWidth) ? readLenientFloat(*attributes.strokeWidth)
                                                       : kDefaultStrokeWidth;
  float miter = kDefaultMiterLimit;
  if (hasValue(attributes.strokeMiterLimit)) {
    miter = std::max(readLenientFloat(*attributes.strokeMiterLimit), kMinimumMiterLimit);
  }
  return StrokePaint(color, kOpaque, convertXToVP(width, viewBox, canvas), miter,
                     lookUpKeyword(kCaps, attributes.strokeLineCap, PaintStrokeCap::Butt),
                     lookUpKeyword(kJoins, attributes.strokeLineJoin, PaintStrokeLineJoin::Miter));
}

PresentationPaint failed(std::string error) {
  PresentationPaint result;
  result.error = std::move(error);
  return result;
}

}  // namespace

PresentationPaint PresentationPaint::get(const SVGCanvasProtocol& canvas, const Rect& viewBox,
                                         const PresentationAttributes& attributes) {
  PresentationPaint result;
  // The stroke is resolved first, so its error wins over the fill's.
  if (hasValue(attributes.stroke)) {
    ColorResult color = getColor(attributes.stroke);
    if (color.error) return failed(std::move(*color.error));
    if (color.color) result.stroke = makeStrokePaint(*color.color, canvas, viewBox, attributes);
  }
  if (hasValue(attributes.fill)) {
    ColorResult color = getColor(attributes.fill);
    if (color.error) return failed(std::move(*color.error));
    if (color.color) result.fill = FillPaint(*color.color, kOpaque);
  }
  // Only an unstroked shape falls back to a black fill: a stroked outline with no fill given is
  // drawn unfilled. Established icons rely on this, so it stays.
  if (!result.fill && !result.stroke && !equalsFolded(attributes.fill, "none")) {
    result.fill = FillPaint(Color::black(), kOpaque);
  }
  if (hasValue(attributes.opacity)) {
    const std::int64_t alpha = alphaFromOpacity(*attributes.opacity);
    if (result.stroke) result.stroke->alpha = alpha;
    if (result.fill) result.fill->alpha = alpha;
  }
  // fill-opacity replaces, rather than multiplies, the fill's opacity.
  if (hasValue(attributes.fillOpacity) && result.fill) {
    result.fill->alpha = alphaFromOpacity(*attributes.fillOpacity);
  }
  return result;
}

std::vector<const Paint*> PresentationPaint::getPaints() const {
  std::vector<const Paint*> paints;
  if (fill) paints.push_back(&*fill);
  if (stroke) paints.push_back(&*stroke);
  return paints;
}

PresentationPaint::ColorResult PresentationPaint::getColor(
    const std::optional<std::string>& colorString) {
  if (!hasValue(colorString)) return {Color::black(), std::nullopt};
  if (equalsFolded(colorString, "none")) return {std::nullopt, std::nullopt};
  if (equalsFolded(colorString, "currentcolor")) return {Color::black(), std::nullopt};
  std::string hex = *colorString;
  // A four-character colour ("#f80") doubles each of its last three characters ("#ff8800"); the
  // first character is left for the hex reader to judge.
  const Utf8Text characters(hex);
  if (characters.size() == 4) {
    std::string expanded(characters.slice(0, 1));
    for (std::size_t i = 1; i < 4; ++i) {
      expanded += characters.slice(i, i + 1);
      expanded += characters.slice(i, i + 1);
    }
    hex = std::move(expanded);
  }
  const std::optional<Color> color = Color::fromHexString(hex);
  if (!color) return {std::nullopt, std::string(kInvalidColor)};
  return {*color, std::nullopt};
}

}  // namespace tessaline
