#pragma once

#include <cstdint>

#include "platform/color.h"

namespace tessaline {

// Pixels are premultiplied 8-bit ARGB packed into one 32-bit word (alpha in the top byte), the
// layout of the reference backend's image surfaces.
using PremultipliedPixel = std::uint32_t;

inline std::uint32_t alphaOf(PremultipliedPixel p) {
  return p >> 24;
}

// a·b/255 rounded to nearest, exactly, for 8-bit a and b.
inline std::uint32_t multiply255(std::uint32_t a, std::uint32_t b) {
  const std::uint32_t t = a * b + 128;
  return (t + (t >> 8)) >> 8;
}

// Every channel of `p` times s/255, rounded as multiply255, two channels per multiplication.
inline PremultipliedPixel scalePixel(PremultipliedPixel p, std::uint32_t s) {
  std::uint32_t rb = (p & 0x00ff00ffu) * s + 0x00800080u;
  rb = ((rb + ((rb >> 8) & 0x00ff00ffu)) >> 8) & 0x00ff00ffu;
  std::uint32_t ag = ((p >> 8) & 0x00ff00ffu) * s + 0x00800080u;
  ag = (ag + ((ag >> 8) & 0x00ff00ffu)) & 0xff00ff00u;
  return rb | ag;
}

// scalePixel on two pixels at once: each 16-bit lane holds one channel times s, below 2^16.
inline std::uint64_t scalePixelPair(std::uint64_t pair, std::uint32_t s) {
  constexpr std::uint64_t kLanes = 0x00ff00ff00ff00ffu;
  constexpr std::uint64_t kHalf = 0x0080008000800080u;
  std::uint64_t rb = (pair & kLanes) * s + kHalf;
  rb = ((rb + ((rb >> 8) & kLanes)) >> 8) & kLanes;
  std::uint64_t ag = ((pair >> 8) & kLanes) * s + kHalf;
  ag = (ag + ((ag >> 8) & kLanes)) & ~kLanes;
  return rb | ag;
}

// Porter-Duff source-over of premultiplied pixels. No channel can exceed 255: each source
// channel is at most the source alpha, and the destination is scaled by what the alpha leaves.
inline PremultipliedPixel sourceOver(PremultipliedPixel source, PremultipliedPixel destination) {
  return source + scalePixel(destination, 255 - alphaOf(source));
}

// The premultiplied pixel of a straight-alpha colour. Components are clamped to 0...1 (NaN counts
// as 0) and quantised as the reference backend quantises them, to 16 bits and then to the top 8,
// so that flat areas come out identical on both backends.
PremultipliedPixel premultiply(const Color& color);

// The same premultiplied pixel with red and blue exchanged: the word whose little-endian bytes
// are R G B A, the order of a finished image. The native canvas keeps its pixels so, since a
// pixel whose alpha is 0 or 255 is then final as painted and only translucent pixels need
// converting when the canvas is handed over. (Compositing treats every channel alike.)
inline PremultipliedPixel toImageOrder(PremultipliedPixel p) {
  return (p & 0xff00ff00u) | ((p >> 16) & 0xffu) | ((p & 0xffu) << 16);
}

// Straight-alpha RGBA bytes of a premultiplied pixel; colour channels are divided by alpha and
// rounded to nearest, and a transparent pixel is (0, 0, 0, 0).
void unpremultiply(PremultipliedPixel p, std::uint8_t* rgba);

// Turns the premultiplied pixels of rows y0...y1 - 1, columns x0...x1 - 1, of a canvas `stride`
// pixels wide into straight-alpha RGBA bytes where they lie, exactly as unpremultiply does. As on
// any canvas that compositing produced, a pixel whose alpha is 0 must be all zeros.
void unpremultiplyInPlace(std::uint8_t* canvas, int stride, int x0, int y0, int x1, int y1);

// Turns `count` premultiplied pixels in image order (toImageOrder) at `pixels` into
// straight-alpha RGBA bytes where they lie, exactly as unpremultiply does; pixels whose alpha is
// 0 or 255 are left as they are.
void unpremultiplyImageOrder(std::uint8_t* pixels, int count);

}  // namespace tessaline
