#include <gtest/gtest.h>

#include <filesystem>

#include "platform/graphics/CGImageSource.h"
#include "platform/graphics/ImageDecoder.h"
#include "platform/graphics/PixelBuffer.h"
#include "support/GifBytes.h"
#include "support/TestSupport.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

fs::path data(const std::string& name) {
  return fs::path(ZV_SOURCE_DIR) / "tests/data/graphics" / name;
}

// Counts the pixels that differ between two buffers (premultiplied words compared exactly).
int differingPixels(const PixelBuffer& a, const PixelBuffer& b) {
  if (a.width != b.width || a.height != b.height) return -1;
  int n = 0;
  for (size_t i = 0; i < a.data.size(); ++i) n += a.data[i] != b.data[i];
  return n;
}

// Each composited frame equals the frame another decoder composited (checked by eye once):
// disposal to background and to previous, transparency over earlier frames, interlaced rows.
TEST(CGImageSourceTest, FramesAreCompositedAsBrowsersShowThem) {
  struct Case {
    const char* name;
    size_t frames;
  } cases[] = {{"bg", 4}, {"prev", 4}, {"trans", 3}, {"inter", 2}};
  for (const auto& c : cases) {
    auto source = CGImageSource::createWithURL(data(std::string(c.name) + ".gif"));
    ASSERT_TRUE(source) << c.name;
    ASSERT_EQ(source->count(), c.frames) << c.name;
    // Twice in a row, and once backwards, to go through the canvas kept between frames.
    for (size_t i : {0, 1, 2, 3, 3, 1, 0}) {
      if (i >= c.frames) continue;
      auto expected = ImageDecoder::decode(std::make_shared<const std::string>(
          zvtest::readFile(data(std::string(c.name) + "_" + std::to_string(i) + ".png"))));
      auto frame = source->createImageAtIndex(i);
      ASSERT_TRUE(frame && expected);
      auto pixels = frame->pixels();
      ASSERT_TRUE(pixels);
      EXPECT_EQ(differingPixels(*pixels, *expected), 0) << c.name << " frame " << i;
    }
  }
}

TEST(CGImageSourceTest, DelayKeysFollowTheRawDelay) {
  // delays.gif holds raw delays 0, 1, 7 and 3 hundredths.
  auto source = CGImageSource::createWithURL(data("delays.gif"));
  ASSERT_TRUE(source);
  struct Expected {
    double unclamped, clamped;
  } expected[] = {{0, 0.1}, {0.01, 0.1}, {0.07, 0.07}, {0.03, 0.03}};
  ASSERT_EQ(source->count(), 4u);
  for (size_t i = 0; i < 4; ++i) {
    Value gif = source->copyPropertiesAtIndex(i).get(kCGImagePropertyGIFDictionary);
    EXPECT_DOUBLE_EQ(gif.get(kCGImagePropertyGIFUnclampedDelayTime).doubleValue(),
                     expected[i].unclamped);
    EXPECT_DOUBLE_EQ(gif.get(kCGImagePropertyGIFDelayTime).doubleValue(), expected[i].clamped);
  }
  auto bare = CGImageSource::createWithData(
      std::make_shared<const std::string>(zvtest::gifBytes({{std::nullopt}})));
  ASSERT_TRUE(bare);
  Value gif = bare->copyPropertiesAtIndex(0).get(kCGImagePropertyGIFDictionary);
  EXPECT_TRUE(gif.isObject());
  EXPECT_TRUE(gif.get(kCGImagePropertyGIFDelayTime).isNil());
  EXPECT_TRUE(gif.get(kCGImagePropertyGIFUnclampedDelayTime).isNil());
  EXPECT_TRUE(bare->copyPropertiesAtIndex(1).isNil());
}

// Damaged or hostile bytes give fewer frames or no source, never a crash.
TEST(CGImageSourceTest, DamageCostsOnlyWhatIsDamaged) {
  std::string two = zvtest::gifBytes({{5, 1}, {5, 2}});
  std::string huge = zvtest::gifBytes({{5}});
  huge[6] = huge[7] = huge[8] = huge[9] = '\xFF';  // a 65535 x 65535 screen
  std::string firstFrameOnly = two.substr(0, two.size() - 8);
  std::vector<zvtest::GifFrame> many(CGImageSource::kMaxFrames + 5, zvtest::GifFrame{1});
  struct Case {
    const char* what;
    std::string bytes;
    long frames;  // -1: no source
  } cases[] = {
      {"whole", two, 2},
      {"cut inside the second frame's data", firstFrameOnly, 1},
      {"cut inside the first frame's data", two.substr(0, 40), 0},
      {"screen and colour table only", two.substr(0, 25), 0},
      {"a colour table cut short", two.substr(0, 20), -1},
      {"shorter than a header", two.substr(0, 9), -1},
      {"not a GIF", "GIF90a" + two.substr(6), -1},
      {"a screen over the pixel budget", huge, -1},
      {"more frames than are read", zvtest::gifBytes(many), long(CGImageSource::kMaxFrames)},
      {"truncated file", zvtest::readFile(data("truncated.gif")), 3},
  };
  for (const auto& c : cases) {
    auto source = CGImageSource::createWithData(std::make_shared<const std::string>(c.bytes));
    if (c.frames < 0) {
      EXPECT_FALSE(source) << c.what;
      continue;
    }
    ASSERT_TRUE(source) << c.what;
    EXPECT_EQ(long(source->count()), c.frames) << c.what;
    for (size_t i = 0; i < source->count(); ++i)
      EXPECT_TRUE(source->createImageAtIndex(i)->pixels());
  }
}

// A frame's pixels are made when drawn and not kept by the frame: the source holds one canvas.
TEST(CGImageSourceTest, FramesHoldNoPixelsOfTheirOwn) {
  std::vector<zvtest::GifFrame> frames;
  for (int i = 0; i < 50; ++i) frames.push_back({5, 1 + i % 3, 64, 64});
  auto source = CGImageSource::createWithData(
      std::make_shared<const std::string>(zvtest::gifBytes(frames, 64, 64)));
  ASSERT_TRUE(source);
  std::vector<std::shared_ptr<CGImage>> images;
  for (size_t i = 0; i < source->count(); ++i) images.push_back(source->createImageAtIndex(i));
  for (size_t i = 0; i < images.size(); ++i) {
    auto pixels = images[i]->pixels();
    ASSERT_TRUE(pixels);
    uint32_t colors[] = {0xFFFF0000u, 0xFF00FF00u, 0xFF0000FFu};
    EXPECT_EQ(pixels->data[0], colors[i % 3]);
    EXPECT_FALSE(images[i]->holdsPixels());
  }
}

// Inputs the fuzzers found faults with decode without one now (the sanitizer pass checks).
TEST(CGImageSourceTest, InputsTheFuzzersFoundDecodeCleanly) {
  for (const auto& entry : fs::directory_iterator(data("regressions"))) {
    auto bytes = std::make_shared<const std::string>(zvtest::readFile(entry.path()));
    auto source = CGImageSource::createWithData(bytes);
    for (size_t i = 0; source && i < source->count(); ++i) {
      EXPECT_TRUE(source->createImageAtIndex(i)->pixels()) << entry.path();
    }
  }
}

}  // namespace
}  // namespace zv
