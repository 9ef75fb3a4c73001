#include "platform/png_index_rows.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

// The index rows are built with AVX2 where the processor has it and with SSE2 or plain code
// elsewhere; every build must give the same rows, palette, checksum and verdict, and the checksum
// must be zlib's Adler-32 of the rows.

namespace tessaline::detail {
namespace {

struct Built {
  bool indexed = false;
  std::vector<std::uint8_t> rows;
  std::uint32_t checksum = 0;
  std::vector<std::array<std::uint8_t, 4>> palette;
};

const Palette& paletteOf(const ColourTable& table) {
  return table.palette();
}
const Palette& paletteOf(const Palette& palette) {
  return palette;
}

// Runs one builder; `Table` is what it fills, a ColourTable for the general index rows and a
// Palette for the one-ink rows.
template <class Table, class Build>
Built build(const Image& image, Build variant) {
  Built built;
  Table table;
  built.rows.assign(static_cast<std::size_t>(image.height()) * (image.width() + 1), 0);
  built.indexed = variant(image, table, built.rows.data(), built.checksum);
  const Palette& palette = paletteOf(table);
  for (int i = 0; i < palette.count; ++i) built.palette.push_back(palette.colour(i));
  return built;
}

TEST(PngIndexRows, EveryBuildGivesTheSameRowsAndZlibsChecksum) {
  std::mt19937 random(5);
  for (int trial = 0; trial < 300; ++trial) {
    const int width = 1 + static_cast<int>(random() % 300);
    const int height = 1 + static_cast<int>(random() % 12);
    const int colours = trial % 10 == 0 ? 300 : 2 + static_cast<int>(random() % 40);
    // Runs of a few colours, short and long, so that whole blocks are sometimes one value and
    // sometimes change at every pixel; every tenth trial overflows the palette.
    Image image(width, height);
    std::uint32_t value = 0;
    int runLeft = 0;
    for (int i = 0; i < width * height; ++i) {
      if (runLeft-- <= 0) {
        value = static_cast<std::uint32_t>(random() % colours);
        runLeft = static_cast<int>(random() % 3 == 0 ? random() % 100 : random() % 3);
      }
      image.setPixel(i % width, i / width,
                     {static_cast<std::uint8_t>(value), static_cast<std::uint8_t>(value >> 8), 9,
                      static_cast<std::uint8_t>(value * 7)});
    }
    SCOPED_TRACE(::testing::Message() << "trial " << trial << ", " << width << " x " << height);

    const Built dispatched = build<ColourTable>(image, indexRows);
    const Built portable = build<ColourTable>(image, indexRowsWithoutAvx2);
    ASSERT_EQ(dispatched.indexed, portable.indexed);
    if (!portable.indexed) continue;  // the rows are unspecified then
    EXPECT_EQ(dispatched.rows, portable.rows);
    EXPECT_EQ(dispatched.palette, portable.palette);
    EXPECT_EQ(dispatched.checksum, portable.checksum);
    const auto zlibs = static_cast<std::uint32_t>(adler32(
        adler32(0, nullptr, 0), portable.rows.data(), static_cast<uInt>(portable.rows.size())));
    EXPECT_EQ(portable.checksum, zlibs);
  }
}

// One-ink images: the index is the alpha, the palette the ink at every alpha up to the highest,
// and one pixel of any other kind, wherever it lies, sends the image back to the general path.
TEST(PngInkRows, IndexIsTheAlphaAndAnyOtherPixelIsRefused) {
  std::mt19937 random(9);
  for (int trial = 0; trial < 300; ++trial) {
    const int width = 1 + static_cast<int>(random() % 300);
    const int height = 1 + static_cast<int>(random() % 12);
    const std::uint32_t ink = trial % 3 == 0 ? 0 : static_cast<std::uint32_t>(random()) & 0xFFFFFF;
    const int blankRows = static_cast<int>(random() % 4);  // the ink first appears further down
    Image image(width, height);
    std::uint8_t alpha = 0, highest = 0;
    int runLeft = 0, inked = 0;
    for (int i = blankRows * width; i < width * height; ++i) {
      if (runLeft-- <= 0) {
        const auto kind = random() % 3;
        alpha = kind == 0 ? 0 : kind == 1 ? 255 : static_cast<std::uint8_t>(1 + random() % 255);
        runLeft = static_cast<int>(random() % 3 == 0 ? random() % 100 : random() % 3);
      }
      if (alpha == 0) continue;
      highest = std::max(highest, alpha);
      ++inked;
      image.setPixel(i % width, i / width,
                     {static_cast<std::uint8_t>(ink), static_cast<std::uint8_t>(ink >> 8),
                      static_cast<std::uint8_t>(ink >> 16), alpha});
    }
    SCOPED_TRACE(::testing::Message() << "trial " << trial << ", " << width << " x " << height);

    const Built dispatched = build<Palette>(image, inkIndexRows);
    const Built portable = build<Palette>(image, inkIndexRowsWithoutAvx2);
    ASSERT_TRUE(dispatched.indexed);
    ASSERT_TRUE(portable.indexed);
    EXPECT_EQ(dispatched.rows, portable.rows);
    EXPECT_EQ(dispatched.palette, portable.palette);
    EXPECT_EQ(dispatched.checksum, portable.checksum);
    EXPECT_EQ(portable.checksum,
              static_cast<std::uint32_t>(adler32(adler32(0, nullptr, 0), portable.rows.data(),
                                                 static_cast<uInt>(portable.rows.size()))));
    ASSERT_EQ(portable.palette.size(), highest + 1u);
    for (int y = 0; y < height; ++y) {
      EXPECT_EQ(portable.rows[y * (width + 1u)], 0);  // no filter
      for (int x = 0; x < width; ++x) {
        const std::uint8_t index = portable.rows[y * (width + 1u) + 1 + x];
        const Rgba pixel = image.pixel(x, y);
        ASSERT_EQ(index, pixel.a);
        const auto entry = portable.palette[index];
        ASSERT_EQ((Rgba{entry[0], entry[1], entry[2], entry[3]}), pixel) << x << ", " << y;
      }
    }

    // A misfit: the ink's red with other bytes or any colour at alpha 0, or, where another inked
    // pixel is left to set the ink, another colour.
    const int at = static_cast<int>(random() % static_cast<unsigned>(width * height));
    const Rgba misfits[] = {{0, 0, 9, 0},
                            {static_cast<std::uint8_t>(ink), 7, 0, 0},
                            {1, 2, 3, 200},
                            {static_cast<std::uint8_t>(ink ^ 1), 0, 0, 255}};
    image.setPixel(at % width, at / width, misfits[random() % (inked > 1 ? 4 : 2)]);
    EXPECT_FALSE(build<Palette>(image, inkIndexRows).indexed) << "misfit at " << at;
    EXPECT_FALSE(build<Palette>(image, inkIndexRowsWithoutAvx2).indexed) << "misfit at " << at;
  }
}

}  // namespace
}  // namespace tessaline::detail
