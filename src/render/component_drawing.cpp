// How a shape becomes pixels: styling, transform, outline, paint and clip, then painting.
#include <optional>
#include <string>

#include "api/svg_canvas.h"
#include "parse/svg_component.h"
#include "parse/svg_definition.h"
#include "style/paint.h"
#include "style/presentation_attributes.h"
#include "style/transform.h"

namespace tessaline {
namespace {

constexpr const char* kInvalidViewBox = "Invalid ViewBox";
constexpr const char* kInvalidTransformMatrix = "Invalid transform matrix";
constexpr const char* kInvalidPath = "Invalid path";
constexpr const char* kUnableToTransform = "Unable to transform";

// Pairs the canvas's clipPath (which always saves) with exactly one restoreClipPath.
class ClipScope {
 public:
  ClipScope(SVGCanvasProtocol& canvas, const std::optional<Path>& clip) : canvas_(canvas) {
    canvas_.clipPath(clip);
  }
  ~ClipScope() { canvas_.restoreClipPath(); }
  ClipScope(const ClipScope&) = delete;
  ClipScope& operator=(const ClipScope&) = delete;

 private:
  SVGCanvasProtocol& canvas_;
};

}  // namespace

// Every early return comes before the graphics state is touched, so a shape that fails draws
// nothing and leaves the canvas as it was.
std::optional<std::string> PresentationAttributeSVGComponent::draw(
    SVGCanvasProtocol& canvas, const std::optional<Rect>& viewBox, const SVGFile&,
    const SVGDefinition& forSvg, const PresentationAttributes* joinAttributes) const {
  if (!viewBox) return kInvalidViewBox;

  // The element's own styling wins over what it inherits.
  const PresentationAttributes merged = PresentationAttributes::join(&attributes, joinAttributes);

  // One matrix serves both the outline and the clip path, so a clip follows the shape it clips.
  const TransformResult transform =
      TransformHelper::getTransformMatrix(merged.transform, canvas, *viewBox);
  if (transform.error) return transform.error;
  if (!transform.matrix) return kInvalidTransformMatrix;

  // The subclass's own message is dropped when it gives no outline at all.
  DrawPathResult outline = getDrawPath();
  if (!outline.path) return kInvalidPath;

  const PresentationPaint paint = PresentationPaint::get(canvas, *viewBox, merged);
  if (paint.error) return paint.error;

  const std::optional<Path> transformed = std::move(*outline.path).transformed(*transform.matrix);
  if (!transformed) return kUnableToTransform;

  const ClipResult clip = getClipPath(forSvg, merged);
  if (clip.error) return clip.error;
  // A clip outline that cannot be transformed counts as no clip at all.
  std::optional<Path> transformedClip;
  if (clip.path) transformedClip = clip.path->transformed(*transform.matrix);

  {
    const ClipScope scope(canvas, transformedClip);
    for (const Paint* each : paint.getPaints()) {
      canvas.drawPath(*transformed, *each, outline.fillRule);
    }
  }

  // An outline that came with a warning is both drawn and reported.
  return outline.message;
}

}  // namespace tessaline
