#include "platform/png_index_rows.h"

#include <gtest/gtest.h>
#include <zlib.h>

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

template <class Build>
Built build(const Image& image, Build indexRowsVariant) {
  Built built;
  ColourTable table;
  built.rows.assign(static_cast<std::size_t>(image.height()) * (image.width() + 1), 0);
  built.indexed = indexRowsVariant(image, table, built.rows.data(), built.checksum);
  for (int i = 0; i < table.count(); ++i) built.palette.push_back(table.colour(i));
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

    const Built dispatched = build(image, indexRows);
    const Built portable = build(image, indexRowsWithoutAvx2);
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

}  // namespace
}  // namespace tessaline::detail
