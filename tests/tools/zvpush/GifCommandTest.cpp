#include <gtest/gtest.h>

#include <boost/json/parse.hpp>

#include "support/TestSupport.h"

namespace {

namespace json = boost::json;

const std::string kData = ZV_SOURCE_DIR "/tests/data/graphics/";

TEST(GifCommandTest, PrintsHowAGifPlaysAndWritesItsFrames) {
  zvtest::TempDir dir;
  auto r = zvtest::runZvpush("gif " + kData + "delays.gif --frames " + (dir.path() / "f").string());
  ASSERT_EQ(r.exit, 0) << r.out;
  json::value v = json::parse(r.out);
  EXPECT_EQ(v.at("frameCount"), 4);
  EXPECT_EQ(v.at("delays"), (json::array{10, 1, 7, 3}));
  EXPECT_EQ(v.at("slot"), 1);
  EXPECT_EQ(v.at("sequence").as_array().size(), 21u);
  EXPECT_EQ(v.at("sequence").as_array()[10], 1);
  EXPECT_DOUBLE_EQ(v.at("duration").as_double(), 0.21);
  for (int i = 0; i < 4; ++i) {
    EXPECT_TRUE(
        std::filesystem::exists(dir.path() / "f" / ("frame_" + std::to_string(i) + ".png")));
  }
}

TEST(GifCommandTest, WhatIsNotAPlayableGifIsAnError) {
  struct Case {
    std::string args;
    int exit;
    bool errorObject;
  } cases[] = {
      {"gif " + kData + "still.png", 1, true},
      {"gif /etc/hostname", 1, true},
      {"gif", 2, false},
      {"gif /no/such/file.gif", 2, false},
  };
  for (const auto& c : cases) {
    auto r = zvtest::runZvpush(c.args);
    EXPECT_EQ(r.exit, c.exit) << c.args;
    if (c.errorObject) {
      EXPECT_TRUE(json::parse(r.out).as_object().contains("error")) << c.args;
    }
  }
}

}  // namespace
