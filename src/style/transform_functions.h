#pragma once

#include <optional>
#include <string_view>

#include "platform/affine_transform.h"
#include "style/transform.h"

namespace tessaline {

// One function of a transform list. Applying it to a matrix M yields M · T: the function acts on
// a point first and M after it.
class Transform {
 public:
  virtual ~Transform() = default;
  // The base has no operation of its own and always reports "Invalid Transform".
  [[nodiscard]] virtual TransformResult transform(const AffineTransform& matrix) const;
};

// The factories `fromParameters` read the text between the parentheses: it is split on the blank
// alone (commas are not separators, so "10,20" is one piece reading as 10), empty pieces dropped,
// and each piece read leniently as a number. A number of pieces the function does not accept
// yields nullopt; the list parser then drops the function without a message.

// rotate(angle) or rotate(angle x y): degrees, about the origin or about (x, y).
class RotateTransform final : public Transform {
 public:
  [[nodiscard]] static std::optional<RotateTransform> fromParameters(std::string_view parameters);
  [[nodiscard]] TransformResult transform(const AffineTransform& matrix) const override;

  std::optional<float> angle;
  std::optional<float> x;
  std::optional<float> y;
};

// translate(x) or translate(x y); y is 0 when absent.
class TranslateTransform final : public Transform {
 public:
  [[nodiscard]] static std::optional<TranslateTransform> fromParameters(
      std::string_view parameters);
  [[nodiscard]] TransformResult transform(const AffineTransform& matrix) const override;

  std::optional<float> x;
  std::optional<float> y;
};

// scale(x) or scale(x y); y equals x when absent.
class ScaleTransform final : public Transform {
 public:
  [[nodiscard]] static std::optional<ScaleTransform> fromParameters(std::string_view parameters);
  [[nodiscard]] TransformResult transform(const AffineTransform& matrix) const override;

  std::optional<float> x;
  std::optional<float> y;
};

// matrix(a b c d e f): maps (x, y) to (a·x + c·y + e, b·x + d·y + f).
class MatrixTransform final : public Transform {
 public:
  [[nodiscard]] static std::optional<MatrixTransform> fromParameters(std::string_view parameters);
  [[nodiscard]] TransformResult transform(const AffineTransform& matrix) const override;

  std::optional<float> a;
  std::optional<float> b;
  std::optional<float> c;
  std::optional<float> d;
  std::optional<float> e;
  std::optional<float> f;
};

}  // namespace tessaline
