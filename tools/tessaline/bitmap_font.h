#pragma once

#include <string>
#include <string_view>

#include "tessaline/image.h"

namespace tessaline::cli::raster {

// A 5 x 7 pixel font for printable ASCII, built in because the command links no font library.
// Each glyph advances 6 pixels (one blank column); lines are 7 pixels tall, all times `scale`.
class BitmapFont {
 public:
  static constexpr int kGlyphWidth = 5;
  static constexpr int kGlyphHeight = 7;
  static constexpr int kAdvance = kGlyphWidth + 1;

  // Pixel width of `text` drawn at `scale`, without the trailing blank column.
  static int textWidth(std::string_view text, int scale);

  // `text` as drawable characters: each character outside printable ASCII (one byte, or one
  // UTF-8 sequence) becomes '?'. When the result is wider than `maxWidth` pixels it is cut and
  // ends in an ellipsis (one glyph of three dots, written as the byte '\x7f').
  static std::string fitText(std::string_view text, int maxWidth, int scale);

  // Draws `text` with its top-left corner at (x, y); pixels outside the image are skipped.
  static void drawText(Image& image, int x, int y, std::string_view text, Rgba colour, int scale);
};

}  // namespace tessaline::cli::raster
