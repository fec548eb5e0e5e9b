#include <filesystem>

#include "platform/foundation/SystemVersion.h"
#include "platform/media/AVPlayerLayer.h"
#include "platform/ui/CALayer.h"
#include "platform/ui/UITapGestureRecognizer.h"
#include "templates/TemplateFixture.h"
#include "templates/ZVPushMediaView.h"
#include "zentrova/Url.h"

namespace zvtest {
namespace {

namespace json = boost::json;

class ZVPushMediaViewTest : public TemplateFixture {
 protected:
  std::shared_ptr<zv::ZVPushMediaView> media(const json::object& payload,
                                             const std::map<std::string, std::string>& files) {
    controller = show(notification(payload, files));
    auto view = controller->view()->subviews().front()->subviews().front();
    return std::dynamic_pointer_cast<zv::ZVPushMediaView>(view);
  }
  static json::object plain(const std::string& url, std::optional<std::string> type) {
    json::object zentrova{{"cid", "c"}, {"app_id", "a"}, {"media-attachment", url}};
    if (type) zentrova["media-type"] = *type;
    return json::object{{"aps", json::object{{"alert", "hi"}}}, {"zentrova", zentrova}};
  }
  static std::string photo(const std::string& name) {
    return readFile(std::string(ZV_SOURCE_DIR "/tests/data/images/") + name);
  }
  std::shared_ptr<zv::UIViewController> controller;
};

TEST_F(ZVPushMediaViewTest, HeightsAndTapsByKindOfMedia) {
  const std::string image = "https://cdn.example.com/photo.png";
  const std::string gifUrl = "https://cdn.example.com/anim.gif";
  const std::string clip = "https://cdn.example.com/clip.mp4";
  std::string clipBytes = readFile(ZV_SOURCE_DIR "/tests/data/media/colors.mp4");
  struct Case {
    const char* what;
    json::object payload;
    std::map<std::string, std::string> files;
    double height;
    bool imageHidden;
    size_t taps;
    bool playing;
  } cases[] = {
      {"an image", plain(image, "image"), {{image, png(1200, 800)}}, 250, false, 1, false},
      {"no media type reads as an image",
       plain(image, std::nullopt),
       {{image, png(1200, 800)}},
       250,
       false,
       1,
       false},
      {"a GIF follows its last frame",
       plain(gifUrl, "image"),
       {{gifUrl, gif(300, 100)}},
       125,
       false,
       1,
       false},
      {"an image without attachment", plain(image, "image"), {}, 0, false, 1, false},
      // 32 x 16 upright; the second is stored 16 x 32 and tagged to turn a quarter clockwise.
      {"an upright photo",
       plain(image, "image"),
       {{image, photo("orient1.jpg")}},
       187.5,
       false,
       1,
       false},
      {"a photo turned by its EXIF orientation has its upright twin's height",
       plain(image, "image"),
       {{image, photo("orient6.jpg")}},
       187.5,
       false,
       1,
       false},
      {"a video", plain(clip, "video"), {{clip, clipBytes}}, 220, true, 0, true},
      {"\"Image\" is a clip", plain(clip, "Image"), {{clip, clipBytes}}, 220, true, 0, true},
      {"a clip without attachment keeps the square", plain(clip, "video"), {}, 375, true, 0, false},
      {"a rich push without an image still taps",
       richPayload({image}, "stylizedBasic"),
       {},
       0,
       false,
       1,
       false},
  };
  for (const auto& c : cases) {
    auto view = media(c.payload, c.files);
    ASSERT_TRUE(view) << c.what;
    EXPECT_EQ(view->frame().size.height, c.height) << c.what;
    EXPECT_EQ(view->imageView.lock()->isHidden(), c.imageHidden) << c.what;
    EXPECT_EQ(view->gestureRecognizers().size(), c.taps) << c.what;
    auto* clipLayer = view->layer()->sublayers().empty()
                          ? nullptr
                          : dynamic_cast<zv::AVPlayerLayer*>(view->layer()->sublayers()[0].get());
    EXPECT_EQ(clipLayer != nullptr, c.playing) << c.what;
    if (clipLayer) {
      EXPECT_EQ(clipLayer->player()->actionAtItemEnd(), zv::AVPlayerActionAtItemEnd::kNone);
      EXPECT_EQ(clipLayer->videoGravity(), zv::AVLayerVideoGravity::kResizeAspect);
      loop->advance(5);
      EXPECT_EQ(clipLayer->player()->currentTime(), 2.0) << "played once, stopped at the end";
    }
  }
}

TEST_F(ZVPushMediaViewTest, GifsAnimateAndTapsOpenTheApp) {
  const std::string gifUrl = "https://cdn.example.com/anim.gif";
  auto view = media(richPayload({gifUrl}, "stylizedBasic"), {{gifUrl, gif(40, 20)}});
  auto image = view->imageView.lock();
  EXPECT_TRUE(image->isAnimating());
  EXPECT_EQ(image->animationImages().size(), 4u);  // 10, 10, 20 hundredths: slots of 10
  EXPECT_DOUBLE_EQ(image->animationDuration(), 0.4);
  EXPECT_EQ(image->image(), image->animationImages().back());
  for (double version : {12.0, 11.0}) {
    zv::setSystemVersion(version);
    int before = controller->extensionContext()->defaultActionCount();
    zv::UITapGestureRecognizer::deliverTap(controller->view(), {10, 10});
    EXPECT_EQ(controller->extensionContext()->defaultActionCount() - before, version >= 12 ? 1 : 0);
  }
}

}  // namespace
}  // namespace zvtest
