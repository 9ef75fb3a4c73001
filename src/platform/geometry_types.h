#pragma once

#include <cmath>

namespace tessaline {

// The platform's 64-bit coordinate types. The library's own records hold 32-bit floats and widen
// to these only when handing values to path, transform or raster calls.
struct Point {
  double x = 0;
  double y = 0;
  friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
  double width = 0;
  double height = 0;
  friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
  friend bool operator==(const Rect&, const Rect&) = default;
};

// A rectangle's width and height as the platform reports them: magnitudes, so a rectangle written
// with its far corner first is as large as the same one written the usual way round.
inline double widthOf(const Rect& rect) {
  return std::fabs(rect.width);
}
inline double heightOf(const Rect& rect) {
  return std::fabs(rect.height);
}

enum class FillRule { Winding, EvenOdd };

}  // namespace tessaline
