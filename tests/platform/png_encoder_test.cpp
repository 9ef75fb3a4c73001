#include <gtest/gtest.h>
#include <png.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
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

// Decodes PNG bytes back to straight-alpha RGBA through libpng's own reader.
std::optional<Image> decode(const std::vector<std::uint8_t>& png) {
  png_image description;
  std::memset(&description, 0, sizeof description);
  description.version = PNG_IMAGE_VERSION;
  if (!png_image_begin_read_from_memory(&description, png.data(), png.size())) return std::nullopt;
  description.format = PNG_FORMAT_RGBA;
  Image image(static_cast<int>(description.width), static_cast<int>(description.height));
  if (!png_image_finish_read(&description, nullptr, image.bytes().data(), 0, nullptr)) {
    return std::nullopt;
  }
  return image;
}

Image sample() {
  Image image(7, 5);
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      // Translucent pixels with bright colour: premultiplying anywhere would darken them.
      image.setPixel(x, y,
                     {static_cast<std::uint8_t>(x * 36), 200, static_cast<std::uint8_t>(y * 60),
                      static_cast<std::uint8_t>(x * 40)});
    }
  }
  return image;
}

TEST(PngEncoder, RoundTripsStraightAlphaThroughMemory) {
  const Image image = sample();
  const auto png = image.encodePng();
  ASSERT_TRUE(png.has_value());
  ASSERT_GE(png->size(), 8u);
  EXPECT_EQ(std::memcmp(png->data(), "\x89PNG\r\n\x1a\n", 8), 0);
  const auto decoded = decode(*png);
  ASSERT_TRUE(decoded.has_value());
  EXPECT_EQ(*decoded, image);
}

TEST(PngEncoder, WritesTheSameBytesToAFile) {
  const Image image = sample();
  const auto path = std::filesystem::temp_directory_path() /
                    ("tessaline_png_" + std::to_string(::getpid()) + ".png");
  ASSERT_TRUE(image.writePng(path.string()));
  std::ifstream in(path, std::ios::binary);
  const std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                        std::istreambuf_iterator<char>());
  std::filesystem::remove(path);
  const auto decoded = decode(bytes);
  ASSERT_TRUE(decoded.has_value());
  EXPECT_EQ(*decoded, image);
}

// Icons with up to 256 distinct colours are written indexed, others as RGBA; both must decode to
// the very same straight-alpha pixels, and an icon must stay a small file.
TEST(PngEncoder, RoundTripsFewAndManyColoursExactly) {
  Image icon(256, 256);  // a translucent disc with a soft edge on transparent ground
  for (int y = 0; y < 256; ++y) {
    for (int x = 0; x < 256; ++x) {
      const int d2 = (x - 128) * (x - 128) + (y - 128) * (y - 128);
      if (d2 < 88 * 88) {
        icon.setPixel(x, y, {30, 90, 200, 180});
      } else if (d2 < 90 * 90) {
        icon.setPixel(x, y, {30, 90, 200, static_cast<std::uint8_t>(d2 % 97 + 1)});
      }
    }
  }
  Image manyColours(40, 30);  // 1200 distinct values, beyond any palette
  for (int y = 0; y < manyColours.height(); ++y) {
    for (int x = 0; x < manyColours.width(); ++x) {
      manyColours.setPixel(x, y,
                           {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 7,
                            static_cast<std::uint8_t>(255 - x)});
    }
  }
  for (const Image* image : {&icon, &manyColours}) {
    SCOPED_TRACE(image->width());
    const auto png = image->encodePng();
    ASSERT_TRUE(png.has_value());
    const auto decoded = decode(*png);
    ASSERT_TRUE(decoded.has_value());
    EXPECT_EQ(*decoded, *image);
  }
  EXPECT_LT(icon.encodePng()->size(), 16u * 1024);
}

// The chunk types of a PNG in order, each checked against zlib's CRC-32, or a message for the first
// fault. libpng only warns about a bad CRC on an ancillary chunk such as tRNS and drops the chunk.
std::vector<std::string> chunkTypes(const std::vector<std::uint8_t>& png) {
  std::vector<std::string> types;
  std::size_t at = 8;
  while (at + 12 <= png.size()) {
    const std::uint32_t length = std::uint32_t{png[at]} << 24 | std::uint32_t{png[at + 1]} << 16 |
                                 std::uint32_t{png[at + 2]} << 8 | png[at + 3];
    if (at + 12 + length > png.size()) return {"chunk overruns the file"};
    const std::uint8_t* crcBytes = png.data() + at + 8 + length;
    const std::uint32_t stored = std::uint32_t{crcBytes[0]} << 24 |
                                 std::uint32_t{crcBytes[1]} << 16 |
                                 std::uint32_t{crcBytes[2]} << 8 | crcBytes[3];
    types.emplace_back(reinterpret_cast<const char*>(png.data() + at + 4), 4);
    if (stored != crc32(0, png.data() + at + 4, 4 + length)) types.back() += " bad CRC";
    at += 12 + length;
  }
  if (at != png.size()) types.emplace_back("trailing bytes");
  return types;
}

int colourType(const std::vector<std::uint8_t>& png) {
  return png.size() > 25 ? png[25] : -1;
}

void expectRoundTrip(const Image& image) {
  const auto png = image.encodePng();
  ASSERT_TRUE(png.has_value());
  const auto decoded = decode(*png);
  ASSERT_TRUE(decoded.has_value());
  EXPECT_EQ(*decoded, image);
}

// Runs of a few colours, changes falling at every offset within the blocks the index building
// compares at once, across row ends, and in row tails narrower than a block.
TEST(PngEncoder, IndexedRowsDecodeExactlyForEveryRunLayout) {
  const Rgba colours[] = {{0, 0, 0, 0},     {255, 255, 255, 255}, {12, 34, 56, 78},
                          {12, 34, 56, 79}, {200, 0, 100, 1},     {0, 0, 0, 255}};
  std::mt19937 random(7);
  for (const int width : {1, 7, 8, 9, 31, 32, 33, 40, 63, 64, 65, 257}) {
    SCOPED_TRACE(width);
    Image image(width, 9);
    std::size_t colour = 0;
    int runLeft = 0;
    for (int y = 0; y < image.height(); ++y) {
      for (int x = 0; x < image.width(); ++x) {
        if (runLeft-- == 0) {
          colour = (colour + 1 + random() % 5) % 6;
          // Mostly short runs, now and then one long enough to cover whole blocks.
          runLeft = static_cast<int>(random() % 4 == 0 ? random() % 80 : random() % 4);
        }
        image.setPixel(x, y, colours[colour]);
      }
    }
    const auto png = image.encodePng();
    ASSERT_TRUE(png.has_value());
    EXPECT_EQ(colourType(*png), 3);
    EXPECT_EQ(chunkTypes(*png), (std::vector<std::string>{"IHDR", "PLTE", "tRNS", "IDAT", "IEND"}));
    const auto decoded = decode(*png);
    ASSERT_TRUE(decoded.has_value());
    EXPECT_EQ(*decoded, image);
  }
}

// 256 distinct values still fit the palette; a 257th, even as the very last pixel, sends the whole
// image to RGBA after the index rows were nearly done.
TEST(PngEncoder, PaletteHoldsExactly256Colours) {
  Image full(16, 16);
  Image over(17, 16);
  for (int i = 0; i < 17 * 16; ++i) {
    const Rgba value{static_cast<std::uint8_t>(i % 256), static_cast<std::uint8_t>(i * 7),
                     static_cast<std::uint8_t>(255 - i % 256), static_cast<std::uint8_t>(i % 256)};
    if (i < 256) full.setPixel(i % 16, i / 16, value);
    over.setPixel(i % 17, i / 17, i == 17 * 16 - 1 ? Rgba{1, 2, 3, 4} : value);
  }
  const auto fullPng = full.encodePng();
  const auto overPng = over.encodePng();
  ASSERT_TRUE(fullPng.has_value() && overPng.has_value());
  EXPECT_EQ(colourType(*fullPng), 3);
  EXPECT_EQ(colourType(*overPng), 6);
  EXPECT_EQ(chunkTypes(*overPng), (std::vector<std::string>{"IHDR", "IDAT", "IEND"}));
  expectRoundTrip(full);
  expectRoundTrip(over);
}

// Noise does not fit the room set aside for an icon's compressed rows; the encoder must make room
// for the worst case and still write a file no larger than the rows stored as they are.
TEST(PngEncoder, IncompressibleImagesAreStillWritten) {
  std::mt19937 random(11);
  Image rgbaNoise(200, 150);
  for (std::uint8_t& byte : rgbaNoise.bytes()) byte = static_cast<std::uint8_t>(random());
  Image indexedNoise(300, 300);  // every one of 256 grey levels, in random order
  for (int y = 0; y < 300; ++y) {
    for (int x = 0; x < 300; ++x) {
      const auto level = static_cast<std::uint8_t>(random());
      indexedNoise.setPixel(x, y, {level, level, level, 255});
    }
  }
  for (const auto& [image, rowBytes] :
       {std::pair{&rgbaNoise, 150 * (4 * 200 + 1)}, std::pair{&indexedNoise, 300 * (300 + 1)}}) {
    SCOPED_TRACE(image->width());
    const auto png = image->encodePng();
    ASSERT_TRUE(png.has_value());
    EXPECT_LT(png->size(), static_cast<std::size_t>(rowBytes) + 2048);
    EXPECT_EQ(chunkTypes(*png).back(), "IEND");
    expectRoundTrip(*image);
  }
}

TEST(PngEncoder, FailuresAreReportedNotThrown) {
  EXPECT_FALSE(Image(0, 0).encodePng().has_value());
  EXPECT_FALSE(Image(0, 0).writePng("/tmp/never-written.png"));
  EXPECT_FALSE(sample().writePng("/nonexistent-folder/for/sure/out.png"));
}

}  // namespace
}  // namespace tessaline
