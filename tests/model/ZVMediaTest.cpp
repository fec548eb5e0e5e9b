#include <gtest/gtest.h>

#include "model/ZVMedia.h"
#include "model/ZVPushPayload.h"
#include "model/ZVRichNotifUtils.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Exception.h"

namespace zv {
namespace {

std::vector<std::string> mediaOf(const std::string& json) {
  auto payload = ZVPushPayload::initWithPushPayload(Value::parse(json));
  std::vector<std::string> names;
  for (const auto& m :
       ZVRichNotificationHandler::sharedHandler().getMediaURLsFromPayload(payload)) {
    EXPECT_EQ(m->getFileNameForMedia(), *m->attachmentID + "." + *m->attachmentExtension);
    EXPECT_EQ(m->attachmentID, ZVRichNotifUtils::MD5hashForString(m->mediaURL->absoluteString()));
    names.push_back(m->mediaURL->absoluteString() + "|" + *m->attachmentExtension);
  }
  return names;
}

// A rich push with the given cards, and a top-level media URL beside it.
std::string withCards(const std::string& cards) {
  return R"({"zentrova":{"cid":"c","media-attachment":"http://h/top.png"},"zovFeatures":{
    "richPush":{"title":"T","body":"B","displayName":"D","expanded":{"type":"imageCarousel",
    "cards":)" +
         cards + "}}}}";
}

std::string image(const std::string& url) {
  return R"({"id":1,"type":"image","content":")" + url + R"("})";
}

TEST(ZVMediaTest, CollectsCardImagesOnceOrElseTheTopLevelMedia) {
  struct Case {
    std::string json;
    std::vector<std::string> media;  // each "URL|extension"
  } cases[] = {
      {withCards("[]"), {}},
      {withCards(R"([{"id":1,"widgets":[{"id":1,"type":"text","content":"x"}]}])"), {}},
      {withCards("[{\"id\":1,\"widgets\":[" + image("http://h/a b.png") + "," +
                 image("http://h/b.GIF?x=1") + "]},{\"id\":2,\"widgets\":[" +
                 image("http://h/a%20b.png") + "," + image("") + "]}]"),
       {"http://h/a%20b.png|png", "http://h/b.GIF?x=1|GIF"}},
      {R"({"zentrova":{"cid":"c","media-attachment":"http://h/clip","media-type":"video"}})",
       {"http://h/clip|mp4"}},
      {R"({"zentrova":{"cid":"c","media-attachment":"http://h/s?a=1","media-type":"audio"}})",
       {"http://h/s?a=1|mp3"}},
      {R"({"zentrova":{"cid":"c","media-attachment":"http://h/p","media-type":"Video"}})",
       {"http://h/p|png"}},
      {R"({"zentrova":{"cid":"c","media-attachment":""}})", {}},
      {R"({"zentrova":{"cid":"c","media-attachment":"http://h/100%"}})", {}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(mediaOf(c.json), c.media) << c.json;
  }
}

TEST(ZVMediaTest, ItemsWithoutUrlAndUrlsOfTheWrongKind) {
  auto none = ZVMedia::initWithURL(Value(), Value("video"));
  EXPECT_FALSE(none->mediaURL || none->attachmentID || none->attachmentExtension);
  EXPECT_EQ(none->getFileNameForMedia(), "attachment.png");
  // A URL that is not a string raises, for the request flow's guard.
  EXPECT_THROW(mediaOf(withCards(R"([{"id":1,"widgets":[{"id":1,"type":"image","content":3}]}])")),
               Exception);
}

}  // namespace
}  // namespace zv
