#include "platform/png_index_rows.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <array>
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

// The one-ink rows fill a bare palette; this gives it a ColourTable's palette().
struct InkTable : Palette {
  const Palette& palette() const { return *this; }
};

// Runs both builds of one kind of rows, each filling a fresh `Table`: they must agree on the
// verdict and, where the image is indexed, on everything else; the checksum must then be zlib's
// Adler-32 of the rows. Gives the portable build's result.
template <class Table>
Built expectBuildsAgree(const Image& image, auto dispatched, auto portable) {
  const auto build = [&image](auto variant) {
    Built built;
    Table table;
    built.rows.assign(static_cast<std::size_t>(image.height()) * (image.width() + 1), 0);
    built.indexed = variant(image, table, built.rows.data(), built.checksum);
    const Palette& palette = table.palette();
    for (int i = 0; i < palette.count; ++i) built.palette.push_back(palette.colour(i));
    return built;
  };
  const Built a = build(dispatched), b = build(portable);
  EXPECT_EQ(a.indexed, b.indexed);
  if (!b.indexed) return b;  // the rows may hold anything then
  EXPECT_EQ(a.rows, b.rows);
  EXPECT_EQ(a.palette, b.palette);
  EXPECT_EQ(a.checksum, b.checksum);
  EXPECT_EQ(b.checksum, adler32(adler32(0, nullptr, 0), b.rows.data(), uInt(b.rows.size())));
  return b;
}

// An image of random size up to 300 x 12 in runs of newRun()'s values, short and long, so that
// whole blocks are sometimes one value and sometimes change at every pixel.
Image runs(std::mt19937& random, const auto& newRun) {
  const int width = 1 + static_cast<int>(random() % 300);
  Image image(width, 1 + static_cast<int>(random() % 12));
  Rgba value{};
  for (int i = 0, left = 0; i < width * image.height(); ++i) {
    if (left-- <= 0) {
      value = newRun();
      left = static_cast<int>(random() % 3 == 0 ? random() % 100 : random() % 3);
    }
    image.setPixel(i % width, i / width, value);
  }
  return image;
}

TEST(PngIndexRows, EveryBuildGivesTheSameRowsAndZlibsChecksum) {
  std::mt19937 random(5);
  for (int trial = 0; trial < 300; ++trial) {
    // Every tenth trial overflows the palette.
    const std::uint32_t colours = trial % 10 == 0 ? 300 : 2 + random() % 40;
    const Image image = runs(random, [&] {
      const std::uint32_t v = random() % colours;
      return Rgba{std::uint8_t(v), std::uint8_t(v >> 8), 9, std::uint8_t(v * 7)};
    });
    SCOPED_TRACE(::testing::Message()
                 << "trial " << trial << ", " << image.width() << " x " << image.height());
    expectBuildsAgree<ColourTable>(image, indexRows, indexRowsWithoutAvx2);
  }
}

// One-ink images: the index is the alpha, the palette the ink at every alpha up to the highest,
// and one pixel of any other kind, wherever it lies, sends the image back
// to the general path.
TEST(PngInkRows, IndexIsTheAlphaAndAnyOtherPixelIsRefused) {
  std::mt19937 random(9);
  for (int trial = 0; trial < 300; ++trial) {
    const std::uint32_t ink = trial % 3 == 0 ? 0 : static_cast<std::uint32_t>(random()) & 0xFFFFFF;
    const auto red = std::uint8_t(ink), green = std::uint8_t(ink >> 8),
               blue = std::uint8_t(ink >> 16);
    Image image = runs(random, [&] {
      const auto kind = random() % 3;
      const std::uint8_t alpha = kind == 0 ? 0 : kind == 1 ? 255 : 1 + random() % 255;
      return alpha == 0 ? Rgba{} : Rgba{red, green, blue, alpha};
    });
    const int width = image.width(), height = image.height();
    // The ink first appears further down.
    const int blank = std::min(static_cast<int>(random() % 4) * width, width * height);
    for (int i = 0; i < blank; ++i) image.setPixel(i % width, i / width, {});
    SCOPED_TRACE(::testing::Message() << "trial " << trial << ", " << width << " x " << height);

    const Built built = expectBuildsAgree<InkTable>(image, inkIndexRows, inkIndexRowsWithoutAvx2);
    ASSERT_TRUE(built.indexed);
    // Each row is the filter type 0, then every pixel's alpha.
    std::vector<std::uint8_t> rows;
    for (int i = 0; i < width * height; ++i) {
      if (i % width == 0) rows.push_back(0);
      rows.push_back(image.pixel(i % width, i / width).a);
    }
    EXPECT_EQ(built.rows, rows);
    // Entry 0 is transparent black, entry a the ink at alpha a, up to the highest alpha.
    std::vector<std::array<std::uint8_t, 4>> palette(1);
    const std::uint8_t highest = std::ranges::max(rows);  // the filter bytes are 0
    for (int a = 1; a <= highest; ++a) palette.push_back({red, green, blue, std::uint8_t(a)});
    EXPECT_EQ(built.palette, palette);

    // A misfit: the ink's red with other bytes or any colour at alpha 0, or, where another inked
    // pixel is left to set the ink, another colour.
    const auto inked = std::ranges::count_if(rows, [](std::uint8_t alpha) { return alpha != 0; });
    const int at = static_cast<int>(random() % static_cast<unsigned>(width * height));
    const Rgba misfits[] = {
        {0, 0, 9, 0}, {red, 7, 0, 0}, {1, 2, 3, 200}, {std::uint8_t(red ^ 1), 0, 0, 255}};
    image.setPixel(at % width, at / width, misfits[random() % (inked > 1 ? 4 : 2)]);
    const Built misfit = expectBuildsAgree<InkTable>(image, inkIndexRows, inkIndexRowsWithoutAvx2);
    EXPECT_FALSE(misfit.indexed) << "misfit at " << at;
  }
}

}  // namespace
}  // namespace tessaline::detail
