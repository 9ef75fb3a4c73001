#include "style/transform.h"

#include <algorithm>
#include <array>
#include <memory>

#include "api/svg_canvas.h"
#include "platform/utf8_text.h"
#include "style/transform_functions.h"

namespace tessaline {
namespace {

constexpr std::string_view kInvalidFunction = "Invalid transform function $functionName";
constexpr std::string_view kFailedToParse = "Failed to parse transforms";
constexpr std::string_view kFailedToPerform = "Failed to perform transform";

struct ParsedFunctions {
  std::optional<std::vector<std::unique_ptr<Transform>>> functions;
  std::optional<std::string> error;
};

// Position of the first `wanted` at or after `startAt` (at most text.size()), counted in
// characters. When there is none the answer is startAt + 1, not the end of the text: an unclosed
// "scale(22" therefore takes the single character after "(" as its parameters, and transform
// lists have always been read that way.
std::size_t getIndexOf(const Utf8Text& text, char32_t wanted, std::size_t startAt) {
  for (std::size_t i = startAt; i < text.size(); ++i) {
    if (text.character(i) == wanted) return i;
  }
  return startAt + 1;
}

// The function names, matched exactly: case-sensitive and untrimmed.
constexpr std::array<std::string_view, 4> kFunctionNames = {"rotate", "translate", "matrix",
                                                            "scale"};

bool isFunctionName(std::string_view name) {
  return std::find(kFunctionNames.begin(), kFunctionNames.end(), name) != kFunctionNames.end();
}

template <typename Function>
std::unique_ptr<Transform> boxed(std::optional<Function> function) {
  if (!function) return nullptr;
  return std::make_unique<Function>(std::move(*function));
}

// Builds one of the named functions; null when its parameter count is not accepted.
std::unique_ptr<Transform> makeFunction(std::string_view name, std::string_view parameters) {
  if (name == "rotate") return boxed(RotateTransform::fromParameters(parameters));
  if (name == "translate") return boxed(TranslateTransform::fromParameters(parameters));
  if (name == "matrix") return boxed(MatrixTransform::fromParameters(parameters));
  return boxed(ScaleTransform::fromParameters(parameters));
}

// The functions of a transform list in written order. Functions are separated by blanks only
// (not commas, tabs or line breaks); a name is the text from the current position up to "(".
// No list and no error means the text ended right after a "(".
ParsedFunctions parseFunctions(std::string_view transform) {
  const Utf8Text text(transform);
  std::vector<std::unique_ptr<Transform>> functions;
  std::size_t i = 0;
  while (i < text.size()) {
    // Without a "(" the name is the one character at i (open is then i + 1 <= size).
    const std::size_t open = getIndexOf(text, U'(', i);
    const std::string_view name = text.slice(i, open);
    // The name is judged before the parameters are cut out, so an unknown name never makes the
    // parameter range run past the end of the text. A known name was followed by "(", hence
    // open < size.
    if (!isFunctionName(name)) return {std::nullopt, std::string(kInvalidFunction)};
    const std::size_t close = getIndexOf(text, U')', open + 1);
    // Only "name(" at the very end puts the one-character fallback past the text.
    if (close > text.size()) return {};
    // A wrong number of parameters drops the function silently; the list goes on.
    if (auto function = makeFunction(name, text.slice(open + 1, close))) {
      functions.push_back(std::move(function));
    }
    i = close + 1;
    while (i < text.size() && text.character(i) == U' ') ++i;
  }
  return {std::move(functions), std::nullopt};
}

}  // namespace

TransformResult TransformHelper::getTransformMatrix(const std::optional<std::string>& transformStr,
                                                    const SVGCanvasProtocol& canvas,
                                                    const Rect& viewBox) {
  AffineTransform matrix = AffineTransform::identity();
  if (transformStr) {
    ParsedFunctions parsed = parseFunctions(*transformStr);
    if (parsed.error) return {std::nullopt, std::move(parsed.error)};
    if (!parsed.functions) return {std::nullopt, std::string(kFailedToParse)};
    for (const auto& function : *parsed.functions) {
      TransformResult step = function->transform(matrix);
      if (step.error) return {std::nullopt, std::move(step.error)};
      if (!step.matrix) return {std::nullopt, std::string(kFailedToPerform)};
      matrix = *step.matrix;
    }
  }
  const double s = convertXToVP(1.0f, viewBox, canvas);
  // The list acts on the point first, then the view-box-to-canvas scale.
  return {AffineTransform::concat(matrix, AffineTransform::makeScale(s, s)), std::nullopt};
}

float convertXToVP(float value, const Rect& viewBox, const SVGCanvasProtocol& canvas) {
  const double rx = widthOf(viewBox) / static_cast<double>(canvas.getWidth());
  const double ry = heightOf(viewBox) / static_cast<double>(canvas.getHeight());
  const double r = rx <= ry ? ry : rx;
  return static_cast<float>(static_cast<double>(value) / r);
}

}  // namespace tessaline
