// Pixel helpers of the contact sheet: area-averaged resizing, compositing and the built-in font.
#include "raster_ops.h"

#include <gtest/gtest.h>

#include "bitmap_font.h"

namespace tessaline::cli::raster {
namespace {

constexpr Rgba kInk{0, 0, 0, 255};

Image row(std::initializer_list<Rgba> pixels) {
  Image image(static_cast<int>(pixels.size()), 1);
  int x = 0;
  for (const Rgba& pixel : pixels) image.setPixel(x++, 0, pixel);
  return image;
}

TEST(ResizeBoxFiltered, AveragesCoveredAreaOnPremultipliedColour) {
  // Opaque red beside faint blue, colour weighted by alpha. Premultiplied mean: r 127.5,
  // b 25.5, a 153; back to straight alpha: r 212.5, b 42.5.
  const Rgba mean = resizeBoxFiltered(row({{255, 0, 0, 255}, {0, 0, 255, 51}}), 1, 1).pixel(0, 0);
  EXPECT_EQ(mean.a, 153);
  EXPECT_NEAR(mean.r, 212, 1);
  EXPECT_EQ(mean.g, 0);
  EXPECT_NEAR(mean.b, 42, 1);

  // A ratio that is not a whole number shares boundary pixels by coverage: the first pixel
  // covers source pixels 0 and half of 1, fully opaque; the second half of 1 and all of 2
  // (transparent), one third opaque, keeping its colour; the rest stays (0, 0, 0, 0).
  const Rgba green{10, 200, 30, 255};
  const Image out = resizeBoxFiltered(row({green, green, {}, {}, {}, {}}), 4, 1);
  EXPECT_EQ(out.pixel(0, 0), green);
  EXPECT_EQ(out.pixel(1, 0), (Rgba{10, 200, 30, 85}));
  EXPECT_EQ(out.pixel(2, 0), (Rgba{0, 0, 0, 0}));
}

TEST(ResizeBoxFiltered, KeepsUniformImagesUniformAtEverySize) {
  const Rgba colour{40, 90, 200, 180};
  Image source(256, 256);
  fillRect(source, 0, 0, 256, 256, colour);
  for (const int size : {1, 7, 80, 255, 300}) {
    const Image out = resizeBoxFiltered(source, size, size);
    ASSERT_EQ(out.width(), size);
    ASSERT_EQ(out.height(), size);
    for (int at = 0; at < size; at += std::max(1, size / 7)) {
      ASSERT_EQ(out.pixel(at, size - 1 - at), colour) << size << ": " << at;
    }
  }
}

TEST(CompositeOver, BlendsByAlphaAndSkipsTransparency) {
  Image target = row({{255, 255, 255, 255}, {255, 255, 255, 255}, {255, 255, 255, 255}});
  compositeOver(target, row({{0, 0, 0, 0}, {255, 0, 0, 255}, {0, 0, 0, 102}}), 0, 0);  // 40 % black
  EXPECT_EQ(target.pixel(0, 0), (Rgba{255, 255, 255, 255}));
  EXPECT_EQ(target.pixel(1, 0), (Rgba{255, 0, 0, 255}));
  EXPECT_EQ(target.pixel(2, 0), (Rgba{153, 153, 153, 255}));
}

TEST(BitmapFont, FitsTextWithAnEllipsisAndReplacesWhatItCannotDraw) {
  // Glyphs advance 6 pixels and the last needs no blank column: n glyphs take 6n - 1 pixels.
  EXPECT_EQ(BitmapFont::textWidth("abc", 2), 34);
  EXPECT_EQ(BitmapFont::textWidth("", 1), 0);
  EXPECT_EQ(BitmapFont::fitText("abcdef", 35, 1), "abcdef");  // exactly fits
  EXPECT_EQ(BitmapFont::fitText("abcdefg", 35, 1), "abcde\x7f");
  EXPECT_EQ(BitmapFont::fitText("abcdefg", 35, 2), "ab\x7f");
  EXPECT_EQ(BitmapFont::fitText("abc", 4, 1), "");
  // A two-byte UTF-8 letter and a tab each become one '?'; the byte 0x7f cannot pose as the
  // ellipsis.
  EXPECT_EQ(BitmapFont::fitText("caf\xC3\xA9\tx\x7f", 100, 1), "caf??x?");
}

TEST(BitmapFont, DrawsGlyphsScaledAndClipsAtTheEdges) {
  Image image(12, 14);
  BitmapFont::drawText(image, 0, 0, "|", kInk, 2);
  // '|' is the middle column, all seven rows: x 4..5 at scale 2, y 0..13.
  for (int y = 0; y < 14; ++y) {
    EXPECT_TRUE(image.pixel(4, y) == kInk && image.pixel(5, y) == kInk) << y;
    EXPECT_TRUE(image.pixel(3, y).a == 0 && image.pixel(6, y).a == 0) << y;
  }
  // Drawn partly outside the image: only the visible part of 'H' lands, its bar on row 3 and
  // its right stem in column 2.
  Image corner(3, 2);
  BitmapFont::drawText(corner, -2, -3, "Hello", kInk, 1);
  for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {2, 0}, {2, 1}}) {
    EXPECT_EQ(corner.pixel(x, y), kInk) << x << "," << y;
  }
  EXPECT_EQ(corner.pixel(0, 1).a, 0);
}

}  // namespace
}  // namespace tessaline::cli::raster
