// zvpush preview, run as a process on delivered content made here (a payload and attachment files
// as zvpush service leaves them): the stdout object, the --tree schema, time, taps and the store.
#include <gtest/gtest.h>
#include <webp/demux.h>

#include <boost/json.hpp>
#include <fstream>

#include "platform/foundation/Md5.h"
#include "platform/graphics/ImageDecoder.h"
#include "support/GoldenImage.h"
#include "support/TestSupport.h"
#include "zentrova/Value.h"

namespace zvtest {
namespace {

namespace json = boost::json;

class PreviewCommandTest : public ::testing::Test {
 protected:
  // Delivered content of an automatic (or manual) carousel of the three example cards.
  std::string carousel(bool autoStart) {
    json::array cards, attachments;
    for (int i = 1; i <= 3; ++i) {
      std::string url = "https://cdn.example.com/card" + std::to_string(i) + ".png";
      std::string file =
          std::string(ZV_SOURCE_DIR) + "/examples/media/card" + std::to_string(i) + ".png";
      cards.push_back(json::object{
          {"id", 100 + i},
          {"widgets", json::array{json::object{{"id", 1}, {"type", "image"}, {"content", url}}}}});
      attachments.push_back(
          json::object{{"identifier", zv::md5Hex(url)}, {"url", "file://" + file}});
    }
    json::object payload{
        {"aps", json::object{{"alert", json::object{{"title", "t"}, {"body", "b"}}}}},
        {"zentrova", json::object{{"cid", "cmp-1"}, {"app_id", "app"}}},
        {"zovFeatures",
         json::object{{"richPush", json::object{{"title", "T"},
                                                {"body", "B"},
                                                {"displayName", "D"},
                                                {"expanded", json::object{{"type", "imageCarousel"},
                                                                          {"autoStart", autoStart},
                                                                          {"cards", cards}}}}}}}};
    auto path = dir.path() / (autoStart ? "auto.json" : "manual.json");
    std::ofstream(path) << json::serialize(
        json::object{{"identifier", "n1"}, {"userInfo", payload}, {"attachments", attachments}});
    return path.string();
  }
  json::value run(const std::string& args, int exit = 0) {
    auto r = runZvpush("preview " + args);
    EXPECT_EQ(r.exit, exit) << args;
    return r.out.empty() ? json::value() : json::parse(r.out);
  }
  // The first node of the tree whose "name" is name.
  static const json::object* find(const json::value& node, const std::string& name) {
    const auto& o = node.as_object();
    if (o.at("name").is_string() && o.at("name").as_string() == name) return &o;
    for (const auto& child : o.at("subviews").as_array()) {
      if (auto* hit = find(child, name)) return hit;
    }
    return nullptr;
  }
  TempDir dir;
};

TEST_F(PreviewCommandTest, AnAutomaticCarouselShowsItsThirdCardAt6Point1Seconds) {
  std::string tree = (dir.path() / "tree.json").string();
  json::value out =
      run(carousel(true) + " -o " + (dir.path() / "p.png").string() + " --at 6.1 --tree " + tree);
  EXPECT_EQ(out.at("template"), "carousel");
  EXPECT_EQ(out.at("size"), (json::array{375, 250}));
  EXPECT_TRUE(std::filesystem::exists(dir.path() / "p.png"));
  json::value t = json::parse(readFile(tree));
  auto* strip = find(t, "collectionView");
  ASSERT_TRUE(strip);
  EXPECT_EQ(strip->at("contentOffset"), (json::array{750, 0}));
  EXPECT_EQ(strip->at("scrollEnabled"), false);
  EXPECT_EQ(strip->at("items"), 3);
  auto* dots = find(t, "pageControl");
  EXPECT_EQ(dots->at("currentPage"), 2);
  EXPECT_EQ(dots->at("numberOfPages"), 3);
  auto* templateView = find(t, "templateView");
  EXPECT_EQ(templateView->at("class"), "ZVCarouselCollectionView");
  EXPECT_EQ(templateView->at("currentCardIndex"), 2);
  EXPECT_EQ(templateView->at("autoStart"), true);
  auto* container = find(t, "containerView");
  EXPECT_EQ(container->at("constraints").as_array().back(),
            "V:|-0-[pushMsgBodyView(0.000000)]-0-[templateView(250.000000)]-0-|");
}

TEST_F(PreviewCommandTest, ATapOnACardStoresTheClick) {
  std::string store = (dir.path() / "store").string();
  // The automatic carousel shows its second card from 3 seconds on.
  json::value out = run(carousel(true) + " -o " + (dir.path() / "p.png").string() +
                        " --at 3.5 --tap 100,50 --store " + store + " --app-group group.preview");
  const auto& tap = out.at("tap").as_object();
  EXPECT_EQ(tap.at("view"), "UIImageView");
  EXPECT_EQ(tap.at("defaultAction"), true);
  EXPECT_EQ(tap.at("cardClick"), (json::object{{"card_id", 102}, {"campaign_id", "cmp-1"}}));
  auto stored = runZvpush("store --store " + store +
                          " --app-group group.preview get zov_push_template_click_info");
  EXPECT_EQ(json::parse(stored.out), (json::object{{"card_id", 102}, {"campaign_id", "cmp-1"}}));
}

// Whole previews, light and dark, at scale 1, against goldens checked by eye.
TEST_F(PreviewCommandTest, PreviewsMatchTheirGoldens) {
  std::string input = carousel(false);
  for (const char* style : {"light", "dark"}) {
    auto png = dir.path() / (std::string(style) + ".png");
    run(input + " -o " + png.string() + " --scale 1 --default-content-hidden" +
        (std::string(style) == "dark" ? " --dark" : ""));
    auto picture = zv::ImageDecoder::decode(std::make_shared<const std::string>(readFile(png)));
    ASSERT_TRUE(picture);
    expectMatchesGolden(*picture, std::string("preview_carousel_") + style);
  }
}

TEST_F(PreviewCommandTest, ForeignNotificationsAndBadArguments) {
  std::ofstream(dir.path() / "foreign.json") << R"({"aps": {"alert": "hello"}})";
  std::ofstream(dir.path() / "list.json") << "[1, 2]";
  std::string png = " -o " + (dir.path() / "p.png").string();
  json::value out = run((dir.path() / "foreign.json").string() + png);
  EXPECT_TRUE(out.at("template").is_null());
  struct Case {
    std::string args;
  } cases[] = {{(dir.path() / "list.json").string() + png},
               {(dir.path() / "foreign.json").string()},
               {(dir.path() / "foreign.json").string() + png + " --tap 1"},
               {(dir.path() / "foreign.json").string() + png + " --store /tmp/x"},
               {(dir.path() / "foreign.json").string() + png + " --width -5"}};
  for (const auto& c : cases) run(c.args, 2);
}

// --animate on an automatic carousel: the animated WebP decodes (libwebp's demux) to a frame per
// change: the first card for 3 s, then each page turn (a frame mid-scroll, then the card at rest)
// every 3 s, ending at 10 s.
TEST_F(PreviewCommandTest, AnimatesAnAutomaticCarouselIntoAWebP) {
  auto webp = dir.path() / "c.webp";
  json::value out = run(carousel(true) + " --animate " + webp.string());
  EXPECT_EQ(out.at("png"), nullptr);
  std::string bytes = readFile(webp);
  WebPData data{reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
  WebPAnimDecoderOptions options;
  ASSERT_TRUE(WebPAnimDecoderOptionsInit(&options));
  std::unique_ptr<WebPAnimDecoder, decltype(&WebPAnimDecoderDelete)> decoder(
      WebPAnimDecoderNew(&data, &options), WebPAnimDecoderDelete);
  ASSERT_TRUE(decoder);
  WebPAnimInfo info;
  ASSERT_TRUE(WebPAnimDecoderGetInfo(decoder.get(), &info));
  EXPECT_EQ(info.canvas_width, 750u);
  EXPECT_EQ(info.canvas_height, 500u);
  std::vector<int> starts;
  int end = 0;
  while (WebPAnimDecoderHasMoreFrames(decoder.get())) {
    std::uint8_t* pixels = nullptr;
    int timestamp = 0;  // when the frame ends
    ASSERT_TRUE(WebPAnimDecoderGetNext(decoder.get(), &pixels, &timestamp));
    starts.push_back(end);
    end = timestamp;
  }
  EXPECT_EQ(starts, (std::vector<int>{0, 3000, 3100, 6000, 6100, 9000, 9100}));
  EXPECT_EQ(end, 10000);
  EXPECT_EQ(out.at("animation").at("frames"), static_cast<std::int64_t>(starts.size()));
}

}  // namespace
}  // namespace zvtest
