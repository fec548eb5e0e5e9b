#include <gtest/gtest.h>

#include <filesystem>

#include "platform/graphics/CGImage.h"
#include "platform/media/AVPlayerLayer.h"
#include "platform/ui/RunLoop.h"

namespace zv {
namespace {

namespace fs = std::filesystem;

Url media(const std::string& name) {
  return Url::fileUrl(fs::path(ZV_SOURCE_DIR) / "tests/data/media" / name);
}

TEST(AVAssetTest, WhatEachFileHolds) {
  struct Case {
    const char* file;
    double duration;
    bool video, audio, playable;
    CGSize size;
  } cases[] = {
      {"colors.mp4", 2.0, true, false, true, {160, 90}},
      {"tone.m4a", 1.0, false, true, true, {0, 0}},
      // Its header (at the start) names the video; none of its frames is there.
      {"colors-truncated.mp4", 2.0, true, false, true, {160, 90}},
      {"garbage.mp4", 0, false, false, false, {0, 0}},
      {"no-such-file.mp4", 0, false, false, false, {0, 0}},
  };
  for (const auto& c : cases) {
    auto asset = AVAsset::assetWithURL(media(c.file));
    EXPECT_NEAR(asset->duration(), c.duration, 0.05) << c.file;
    EXPECT_EQ(asset->hasVideo(), c.video) << c.file;
    EXPECT_EQ(asset->hasAudio(), c.audio) << c.file;
    EXPECT_EQ(asset->isPlayable(), c.playable) << c.file;
    EXPECT_EQ(asset->naturalSize().width, c.size.width) << c.file;
    EXPECT_EQ(asset->naturalSize().height, c.size.height) << c.file;
  }
}

// The layer shows the frame at the player's time: red, lime, blue, white for 0.5 s each; with no
// action at the end the clip stops on its last frame.
TEST(AVPlayerTest, TheFrameShownFollowsTheRunLoopAndStopsAtTheEnd) {
  auto loop = std::make_shared<ManualRunLoop>();
  auto previous = RunLoop::setCurrent(loop);
  auto player = AVPlayer::playerWithPlayerItem(
      AVPlayerItem::playerItemWithAsset(AVAsset::assetWithURL(media("colors.mp4"))));
  player->setActionAtItemEnd(AVPlayerActionAtItemEnd::kNone);
  auto layer = AVPlayerLayer::playerLayerWithPlayer(player);
  EXPECT_EQ(player->rate(), 0.0f);
  player->play();
  struct Step {
    double at;  // run-loop time
    std::uint32_t color;
    double time;
    float rate;
  } steps[] = {
      {0.0, 0xFFFF0000, 0.0, 1}, {0.3, 0xFFFF0000, 0.3, 1}, {0.7, 0xFF00FF00, 0.7, 1},
      {1.2, 0xFF0000FF, 1.2, 1}, {1.8, 0xFFFFFFFF, 1.8, 1}, {5.0, 0xFFFFFFFF, 2.0, 0},
      {9.0, 0xFFFFFFFF, 2.0, 0},
  };
  for (const auto& s : steps) {
    loop->advance(s.at - loop->now());
    EXPECT_DOUBLE_EQ(player->currentTime(), s.time) << s.at;
    EXPECT_EQ(player->rate(), s.rate) << s.at;
    auto picture = layer->contents();
    ASSERT_TRUE(picture) << s.at;
    auto pixels = picture->pixels();
    std::uint32_t p = pixels->row(45)[80];
    for (int shift : {0, 8, 16}) {
      EXPECT_NEAR(int((p >> shift) & 0xFF), int((s.color >> shift) & 0xFF), 12) << s.at;
    }
  }
  // Back to an earlier time (a new player on the same asset) seeks.
  auto again = AVPlayer::playerWithPlayerItem(player->currentItem());
  auto layer2 = AVPlayerLayer::playerLayerWithPlayer(again);
  EXPECT_NEAR(int((layer2->contents()->pixels()->row(45)[80] >> 16) & 0xFF), 255, 12);
  RunLoop::setCurrent(previous);
}

TEST(AVPlayerTest, WhatDoesNotPlayShowsNothing) {
  for (const char* file : {"tone.m4a", "garbage.mp4", "colors-truncated.mp4", "missing.mp4"}) {
    auto player = AVPlayer::playerWithPlayerItem(
        AVPlayerItem::playerItemWithAsset(AVAsset::assetWithURL(media(file))));
    player->play();
    EXPECT_FALSE(AVPlayerLayer::playerLayerWithPlayer(player)->contents()) << file;
  }
  struct Case {
    AVLayerVideoGravity video;
    CALayerContentsGravity layer;
  } cases[] = {{AVLayerVideoGravity::kResizeAspect, CALayerContentsGravity::kResizeAspect},
               {AVLayerVideoGravity::kResizeAspectFill, CALayerContentsGravity::kResizeAspectFill},
               {AVLayerVideoGravity::kResize, CALayerContentsGravity::kResize}};
  for (const auto& c : cases) {
    auto layer = AVPlayerLayer::playerLayerWithPlayer(nullptr);
    layer->setVideoGravity(c.video);
    EXPECT_EQ(layer->contentsGravity(), c.layer);
  }
}

}  // namespace
}  // namespace zv
