#include <gtest/gtest.h>
#include <png.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "tessaline/image.h"

namespace tessaline {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Chunks = std::vector<std::string>;

// Decodes PNG bytes back to straight-alpha RGBA through libpng's own reader.
std::optional<Image> decode(const Bytes& png) {
  png_image description{};
  description.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&description, png.data(), png.size())) return std::nullopt;
  description.format = PNG_FORMAT_RGBA;
  Image image(static_cast<int>(description.width), static_cast<int>(description.height));
  const bool read = png_image_finish_read(&description, nullptr, image.bytes().data(), 0, nullptr);
  return read ? std::optional(image) : std::nullopt;
}

// The chunk types of a PNG in order, each checked against zlib's CRC-32, or a message for the first
// fault. libpng only warns about a bad CRC on an ancillary chunk such as tRNS and drops the chunk.
Chunks chunkTypes(const Bytes& png) {
  const auto be32 = [&png](std::size_t at) {
    return std::uint32_t{png[at]} << 24 | png[at + 1] << 16 | png[at + 2] << 8 | png[at + 3];
  };
  Chunks types;
  std::size_t at = 8;
  for (; at + 12 <= png.size(); at += 12 + be32(at)) {
    const std::uint32_t length = be32(at);
    if (at + 12 + length > png.size()) return {"chunk overruns the file"};
    types.emplace_back(reinterpret_cast<const char*>(png.data() + at + 4), 4);
    if (be32(at + 8 + length) != crc32(0, png.data() + at + 4, 4 + length))
      types.back() += " bad CRC";
  }
  if (at != png.size()) types.emplace_back("trailing bytes");
  return types;
}

// Encodes `image` and expects a PNG of colour type 3 (indexed) or 6 (RGBA) with exactly the chunks
// of that type, decoding (which checks the signature) to the very same straight-alpha pixels.
// Gives the PNG, empty on failure.
Bytes expectRoundTrip(const Image& image, int colourType) {
  const Bytes png = image.encodePng().value_or(Bytes{});
  EXPECT_EQ(png.size() > 25 ? png[25] : -1, colourType);
  const Chunks indexed{"IHDR", "PLTE", "tRNS", "IDAT", "IEND"}, rgba{"IHDR", "IDAT", "IEND"};
  EXPECT_EQ(chunkTypes(png), colourType == 3 ? indexed : rgba);
  EXPECT_EQ(decode(png), std::optional<Image>(image));
  return png;
}

Image filled(int width, int height, auto pixelAt) {
  Image image(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) image.setPixel(x, y, pixelAt(x, y));
  }
  return image;
}

// Icons are written indexed and stay small; translucent pixels keep their bright colour
// (premultiplying anywhere would darken them), and a file holds the very bytes of the memory
// encoding; an empty image or a path that cannot be written fails without throwing. Runs of a few
// colours put changes at every offset within the blocks the index building compares at once, across
// row ends, and in row tails narrower than a block.
TEST(PngEncoder, IndexedImagesRoundTripForEveryRunLayout) {
  const Image icon = filled(256, 256, [](int x, int y) {  // a translucent disc with a soft edge
    const int d2 = (x - 128) * (x - 128) + (y - 128) * (y - 128);
    return d2 < 88 * 88   ? Rgba{30, 90, 200, 180}
           : d2 < 90 * 90 ? Rgba{30, 90, 200, static_cast<std::uint8_t>(d2 % 97 + 1)}
                          : Rgba{0, 0, 0, 0};
  });
  const Bytes png = expectRoundTrip(icon, 3);
  EXPECT_LT(png.size(), 16u * 1024);
  const auto path = std::filesystem::temp_directory_path() /
                    ("tessaline_png_" + std::to_string(::getpid()) + ".png");
  ASSERT_TRUE(icon.writePng(path.string()));
  std::ifstream in(path, std::ios::binary);
  EXPECT_EQ(Bytes(std::istreambuf_iterator<char>(in), {}), png);
  std::filesystem::remove(path);
  EXPECT_FALSE(Image(0, 0).encodePng().has_value());
  EXPECT_FALSE(Image(1, 1).writePng("/nonexistent-folder/for/sure/out.png"));

  const Rgba colours[] = {{0, 0, 0, 0},     {255, 255, 255, 255}, {12, 34, 56, 78},
                          {12, 34, 56, 79}, {200, 0, 100, 1},     {0, 0, 0, 255}};
  std::mt19937 random(7);
  for (const int width : {1, 7, 8, 9, 31, 32, 33, 40, 63, 64, 65, 257}) {
    SCOPED_TRACE(width);
    const auto runs = [&, colour = std::size_t{0}, runLeft = 0](int, int) mutable {
      if (runLeft-- == 0) {
        colour = (colour + 1 + random() % 5) % 6;
        // Mostly short runs, now and then one long enough to cover whole blocks.
        runLeft = static_cast<int>(random() % 4 == 0 ? random() % 80 : random() % 4);
      }
      return colours[colour];
    };
    expectRoundTrip(filled(width, 9, runs), 3);
  }
}

// 256 distinct values still fit the palette; a 257th, even as the very last pixel, sends the whole
// image to RGBA after the index rows were nearly done. Noise does not fit the room set aside for
// an icon's compressed rows; the encoder must make room for the worst case and still write a file
// no larger than the rows stored as they are.
TEST(PngEncoder, PaletteOverflowAndIncompressibleImages) {
  const auto value = [](int i) {
    return Rgba{std::uint8_t(i), std::uint8_t(i * 7), std::uint8_t(255 - i), std::uint8_t(i)};
  };
  expectRoundTrip(filled(16, 16, [&](int x, int y) { return value(y * 16 + x); }), 3);
  // value() repeats after 256, so the 257th value is the last pixel's.
  Image overflow = filled(17, 16, [&](int x, int y) { return value(y * 17 + x); });
  overflow.setPixel(16, 15, {1, 2, 3, 4});
  expectRoundTrip(overflow, 6);
  std::mt19937 random(11);
  Image rgbaNoise(200, 150);
  for (std::uint8_t& byte : rgbaNoise.bytes()) byte = static_cast<std::uint8_t>(random());
  EXPECT_LT(expectRoundTrip(rgbaNoise, 6).size(), 150u * (4 * 200 + 1) + 2048);
  const Image greyNoise = filled(300, 300, [&](int, int) {  // all 256 levels in random order
    const auto level = static_cast<std::uint8_t>(random());
    return Rgba{level, level, level, 255};
  });
  EXPECT_LT(expectRoundTrip(greyNoise, 3).size(), 300u * (300 + 1) + 2048);
}

}  // namespace
}  // namespace tessaline
