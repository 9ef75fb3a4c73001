#pragma once

#include "tessaline/image.h"

namespace tessaline::cli::raster {

// Small pixel operations for the contact sheet. Images hold straight (not premultiplied) alpha.

// Resamples `source` to width x height by area averaging: every destination pixel is the mean of
// the source area it covers, weighted by coverage, computed on premultiplied colour so that the
// colour of transparent pixels does not bleed into the edges of shapes.
Image resizeBoxFiltered(const Image& source, int width, int height);

// Sets every pixel of the rectangle (clipped to the image) to `colour`.
void fillRect(Image& image, int x, int y, int width, int height, Rgba colour);

// Draws a rectangle outline `thickness` pixels wide just inside the given rectangle.
void strokeRect(Image& image, int x, int y, int width, int height, int thickness, Rgba colour);

// Fills the rectangle with squares of `square` pixels in two alternating colours, starting with
// `first` at its top-left corner.
void fillCheckerboard(Image& image, int x, int y, int width, int height, int square, Rgba first,
                      Rgba second);

// Composites `source` over `target` with its top-left corner at (x, y) (the "over" operator).
void compositeOver(Image& target, const Image& source, int x, int y);

// Fills the right triangle in the top-right corner of the rectangle whose legs run `size`
// pixels along its top and right edges.
void fillTopRightTriangle(Image& image, int right, int top, int size, Rgba colour);

// Draws both diagonals of the rectangle, `thickness` pixels wide.
void drawCross(Image& image, int x, int y, int width, int height, int thickness, Rgba colour);

}  // namespace tessaline::cli::raster
