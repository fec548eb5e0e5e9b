#include <gtest/gtest.h>

#include "model/ZVPushPayload.h"
#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/Exception.h"
#include "service/ZVMedia.h"
#include "service/ZVRichNotificationHandler.h"

namespace zv {
namespace {

std::vector<std::shared_ptr<ZVMedia>> mediaOf(const std::string& json) {
  auto payload = ZVPushPayload::initWithPushPayload(Value::parse(json));
  return ZVRichNotificationHandler::sharedHandler().getMediaURLsFromPayload(payload);
}

// A rich push with the given cards, and a top-level media URL beside it.
std::string withCards(const std::string& cards) {
  return R"({"zentrova":{"cid":"c","media-attachment":"http://h/top.png"},"zovFeatures":{
    "richPush":{"title":"T","body":"B","displayName":"D","expanded":{"type":"imageCarousel",
    "cards":)" +
         cards + "}}}}";
}

std::string image(int id, const std::string& url) {
  return R"({"id":)" + std::to_string(id) + R"(,"type":"image","content":")" + url + R"("})";
}

TEST(ZVMediaTest, CollectsCardImagesOnceOrElseTheTopLevelMedia) {
  struct Case {
    std::string json;
    std::vector<std::string> fileNames;  // "<md5 of url>.<ext>" written as url + "." + ext
  } cases[] = {
      {withCards("[]"), {}},
      {withCards(R"([{"id":1,"widgets":[{"id":1,"type":"text","content":"x"}]}])"), {}},
      {withCards("[{\"id\":1,\"widgets\":[" + image(1, "http://h/a b.png") + "," +
                 image(2, "http://h/b.GIF?x=1") + "]},{\"id\":2,\"widgets\":[" +
                 image(3, "http://h/a%20b.png") + "," + image(4, "") + "]}]"),
       {"http://h/a%20b.png.png", "http://h/b.GIF?x=1.GIF"}},
      {R"({"zentrova":{"cid":"c","media-attachment":"http://h/clip","media-type":"video"}})",
       {"http://h/clip.mp4"}},
      {R"({"zentrova":{"cid":"c","media-attachment":"http://h/s?a=1","media-type":"audio"}})",
       {"http://h/s?a=1.mp3"}},
      {R"({"zentrova":{"cid":"c","media-attachment":""}})", {}},
      {R"({"zentrova":{"cid":"c","media-attachment":"http://h/100%"}})", {}},
  };
  for (const auto& c : cases) {
    std::vector<std::string> names;
    for (const auto& m : mediaOf(c.json)) names.push_back(m->getFileNameForMedia());
    std::vector<std::string> expected;
    for (const auto& f : c.fileNames) {
      auto dot = f.rfind('.');
      expected.push_back(ZVRichNotifUtils::MD5hashForString(f.substr(0, dot)) + f.substr(dot));
    }
    EXPECT_EQ(names, expected) << c.json;
  }
}

TEST(ZVMediaTest, ItemsWithoutUrlAndValuesOfTheWrongKind) {
  auto none = ZVMedia::initWithURL(Value(), Value("video"));
  EXPECT_FALSE(none->mediaURL || none->attachmentID || none->attachmentExtension);
  EXPECT_EQ(none->getFileNameForMedia(), "attachment.png");
  EXPECT_TRUE(ZVRichNotificationHandler::sharedHandler().getMediaURLsFromPayload(nullptr).empty());
  // A number where a URL or a media type is needed raises, for the request flow's guard.
  EXPECT_THROW(mediaOf(R"({"zentrova":{"cid":"c","media-attachment":5}})"), Exception);
  EXPECT_THROW(mediaOf(R"({"zentrova":{"cid":"c","media-attachment":"http://h/x",
                          "media-type":1}})"),
               Exception);
  EXPECT_EQ(mediaOf(R"({"zentrova":{"cid":"c","media-attachment":"http://h/x.png",
                       "media-type":1}})")
                .size(),
            1u);
  EXPECT_THROW(mediaOf(withCards(R"([{"id":1,"widgets":[{"id":1,"type":"image","content":3}]}])")),
               Exception);
}

}  // namespace
}  // namespace zv
