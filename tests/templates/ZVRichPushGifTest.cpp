#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <set>

#include "support/GifBytes.h"
#include "support/TestSupport.h"
#include "templates/ZVRichPushGif.h"

namespace zv {
namespace {

namespace json = boost::json;

Value properties(std::optional<double> unclamped, std::optional<double> clamped) {
  json::object gif;
  if (unclamped) gif["UnclampedDelayTime"] = *unclamped;
  if (clamped) gif["DelayTime"] = *clamped;
  return Value(json::object{{"{GIF}", gif}});
}

TEST(ZVRichPushGifTest, FrameDelaysInHundredths) {
  struct Case {
    Value properties;
    int delay;
  } cases[] = {
      {properties(0.5, 0.5), 50},
      {properties(0.016, 0.1), 2},  // the unclamped value wins
      {properties(0, 0.1), 10},     // a zero unclamped value gives way to the clamped one
      {properties(std::nullopt, 0.07), 7},
      {properties(0.125, 0.125), 12},  // ties round to even
      {properties(0.135, 0.135), 14},
      {properties(-0.5, 0.1), 1},  // a negative unclamped value is kept, then not positive
      {properties(std::nan(""), 0.1), 1},
      {properties(0.004, 0.1), 1},  // rounds to 0: plays for one hundredth
      {properties(0.005, 0.1), 1},
      {properties(std::nullopt, std::nullopt), 1},
      {Value(json::object{}), 1},
      {Value(), 1},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ZVRichPushGif::delayForFrameProperties(c.properties), c.delay)
        << c.properties.description();
  }
}

TEST(ZVRichPushGifTest, FramesExpandIntoEqualSlots) {
  struct Case {
    std::vector<int> delays;
    std::vector<int> sequence;
    double duration;
  } cases[] = {
      {{10, 10, 20}, {0, 1, 2, 2}, 0.4},
      {{7, 3}, {0, 0, 0, 0, 0, 0, 0, 1, 1, 1}, 0.1},
      {{4, 6, 9}, {0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 2, 2}, 0.19},
      {{50}, {0}, 0.5},
      {{0, 1, 2}, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 2}, 0.13},  // a raw 0 reads as 0.1 s
  };
  for (const auto& c : cases) {
    std::vector<zvtest::GifFrame> frames;
    for (int d : c.delays) frames.push_back({d});
    auto image = ZVRichPushGif::animatedImageWithAnimatedGIFData(
        std::make_shared<const std::string>(zvtest::gifBytes(frames)));
    ASSERT_TRUE(image);
    EXPECT_DOUBLE_EQ(image->duration(), c.duration);
    ASSERT_EQ(image->images().size(), c.sequence.size());
    // Each source frame is one image object, repeated, not copied.
    std::vector<int> sequence;
    std::set<const UIImage*> distinct;
    const UIImage* last = nullptr;
    for (const auto& entry : image->images()) {
      if (entry.get() != last)
        sequence.push_back(sequence.empty() ? 0 : sequence.back() + 1);
      else
        sequence.push_back(sequence.back());
      last = entry.get();
      distinct.insert(entry.get());
    }
    EXPECT_EQ(sequence, c.sequence);
    EXPECT_EQ(distinct.size(), c.delays.size());
  }
}

TEST(ZVRichPushGifTest, WhatCannotPlayGivesNil) {
  // 1000 frames of 655.35 s with one of 1 hundredth: 65 million slots.
  std::vector<zvtest::GifFrame> long_(999, zvtest::GifFrame{65535});
  long_.push_back({1});
  struct Case {
    const char* what;
    std::string bytes;
  } cases[] = {
      {"no bytes", ""},
      {"a GIF without frames", zvtest::gifBytes({})},
      {"a PNG signature", "\x89PNG\r\n\x1a\n"},
      {"too many slots", zvtest::gifBytes(long_)},
  };
  for (const auto& c : cases) {
    EXPECT_FALSE(ZVRichPushGif::animatedImageWithAnimatedGIFData(
        std::make_shared<const std::string>(c.bytes)))
        << c.what;
  }
  EXPECT_FALSE(ZVRichPushGif::animatedImageWithAnimatedGIFURL(Url::fileUrl("/no/such.gif")));
  auto fromFile = ZVRichPushGif::animatedImageWithAnimatedGIFURL(
      Url::fileUrl(std::filesystem::path(ZV_SOURCE_DIR) / "tests/data/graphics/truncated.gif"));
  ASSERT_TRUE(fromFile);
  EXPECT_EQ(fromFile->images().size(), 3u) << "the frames before the damage";
}

}  // namespace
}  // namespace zv
