#include <gtest/gtest.h>

#include <filesystem>

#include "platform/graphics/UIImage.h"
#include "support/TestSupport.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

fs::path data(const std::string& name) {
  return fs::path(ZV_SOURCE_DIR) / "tests/data/graphics" / name;
}

fs::path seed(const std::string& name) {
  return fs::path(ZV_SOURCE_DIR) / "fuzz/seeds/image" / name;
}

// A PNG whose header claims the given size, followed by pixel data that is not zlib.
std::string pngClaiming(uint32_t width, uint32_t height);

TEST(UIImageTest, StillImagesOfEachFormat) {
  // 30 x 20 gradients from red (top) to blue (bottom); JPEG and WebP are lossy.
  struct Case {
    const char* file;
    int tolerance;
  } cases[] = {{"still.png", 0}, {"still.jpg", 12}, {"still.webp", 24}, {"inter.gif", 0}};
  for (const auto& c : cases) {
    auto image = UIImage::imageWithContentsOfFile(data(c.file));
    ASSERT_TRUE(image) << c.file;
    CGSize expected = std::string(c.file) == "inter.gif" ? CGSize{64, 48} : CGSize{30, 20};
    EXPECT_EQ(image->size().width, expected.width) << c.file;
    EXPECT_EQ(image->size().height, expected.height) << c.file;
    EXPECT_FALSE(image->cgImage()->holdsPixels()) << c.file << ": the size needs only the header";
    auto pixels = image->cgImage()->pixels();
    ASSERT_TRUE(pixels) << c.file;
    uint32_t top = pixels->data.front();
    EXPECT_EQ(top >> 24, 0xFFu) << c.file;
    EXPECT_NEAR(int((top >> 16) & 0xFF), 255, c.tolerance) << c.file;
    EXPECT_NEAR(int(top & 0xFF), 0, c.tolerance) << c.file;
    EXPECT_EQ(image->cgImage()->pixels(), pixels) << c.file << ": decoded once, shared";
  }
}

TEST(UIImageTest, PixelsArePremultiplied) {
  auto image = UIImage::imageWithContentsOfFile(data("half.png"));
  ASSERT_TRUE(image);
  auto pixels = image->cgImage()->pixels();
  ASSERT_TRUE(pixels);
  uint32_t p = pixels->data[0];
  EXPECT_NEAR(int(p >> 24), 128, 1);
  EXPECT_NEAR(int((p >> 16) & 0xFF), 128, 1);
  EXPECT_EQ(pixels->data[29], 0u) << "the right half is transparent";
}

TEST(UIImageTest, BadBytesGiveNoImage) {
  std::string png = zvtest::readFile(data("still.png"));
  std::string jpeg = zvtest::readFile(data("still.jpg"));
  struct Case {
    const char* what;
    std::string bytes;
    bool image;   // an image is made (the header reads)
    bool pixels;  // and its pixels decode
  } cases[] = {
      {"empty", "", false, false},
      {"text", "hello, world", false, false},
      {"a PNG claiming 100,000 x 100,000 pixels", pngClaiming(100000, 100000), false, false},
      {"a PNG claiming 8001 x 8000 pixels (over the source limit)", pngClaiming(8001, 8000), false,
       false},
      {"a PNG whose pixel data is not zlib", pngClaiming(16, 16), true, false},
      {"a PNG cut in half", png.substr(0, png.size() / 2), true, false},
      {"a JPEG cut short", jpeg.substr(0, jpeg.size() - 100), true, true},  // libjpeg fills it in
      {"a JPEG without its header", jpeg.substr(20), false, false},
      {"a WebP signature alone", "RIFF\x10\0\0\0WEBPVP8 ", false, false},
      // Found by the fuzz target: a profile whose matrix would overflow the table conversion, and
      // a 588-byte JPEG claiming 12801 x 1744 pixels whose data a marker cuts short.
      {"a hostile colour profile", zvtest::readFile(seed("found-crash-6a5be460")), true, true},
      {"a tiny JPEG claiming 22 megapixels", zvtest::readFile(seed("found-timeout-93157df5")), true,
       true},
  };
  for (const auto& c : cases) {
    auto image = UIImage::imageWithData(c.bytes);
    EXPECT_EQ(image != nullptr, c.image) << c.what;
    if (image) {
      EXPECT_EQ(image->cgImage()->pixels() != nullptr, c.pixels) << c.what;
    }
  }
}

TEST(UIImageTest, AnimatedImagesTakeTheirFirstImage) {
  auto first = UIImage::imageWithContentsOfFile(data("still.png"));
  auto second = UIImage::imageWithContentsOfFile(data("inter.gif"));
  auto animated = UIImage::animatedImageWithImages({first, second, second}, 0.3);
  ASSERT_TRUE(animated);
  EXPECT_EQ(animated->images().size(), 3u);
  EXPECT_EQ(animated->duration(), 0.3);
  EXPECT_EQ(animated->size().width, 30);
  EXPECT_EQ(animated->cgImage(), first->cgImage());
  EXPECT_FALSE(UIImage::animatedImageWithImages({}, 1));
}

uint32_t crc32Of(const std::string& bytes) {
  uint32_t crc = 0xFFFFFFFFu;
  for (unsigned char b : bytes) {
    crc ^= b;
    for (int k = 0; k < 8; ++k) crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1)));
  }
  return ~crc;
}

std::string pngClaiming(uint32_t width, uint32_t height) {
  auto be32 = [](uint32_t v) {
    return std::string{char(v >> 24), char(v >> 16), char(v >> 8), char(v)};
  };
  auto chunk = [&](const std::string& body) {
    return be32(static_cast<uint32_t>(body.size() - 4)) + body + be32(crc32Of(body));
  };
  return std::string("\x89PNG\r\n\x1a\n", 8) +
         chunk("IHDR" + be32(width) + be32(height) + std::string("\x08\x06\0\0\0", 5)) +
         chunk("IDATnot zlib") + chunk("IEND");
}

}  // namespace
}  // namespace zv
