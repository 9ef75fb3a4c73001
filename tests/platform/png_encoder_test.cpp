#include <gtest/gtest.h>
#include <png.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
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

TEST(PngEncoder, FailuresAreReportedNotThrown) {
  EXPECT_FALSE(Image(0, 0).encodePng().has_value());
  EXPECT_FALSE(Image(0, 0).writePng("/tmp/never-written.png"));
  EXPECT_FALSE(sample().writePng("/nonexistent-folder/for/sure/out.png"));
}

}  // namespace
}  // namespace tessaline
