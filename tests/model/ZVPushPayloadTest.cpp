#include <gtest/gtest.h>

#include "model/ZVPushPayload.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "support/TestSupport.h"

namespace zv {
namespace {

// A valid rich push whose "expanded" entry is given as JSON text.
std::string richPayload(const std::string& expanded, const std::string& extra = "") {
  return R"({"zentrova":{"cid":"c1"},"zovFeatures":{"richPush":{"title":"T","body":"B",)"
         R"("displayName":"D",)" +
         extra + R"("expanded":)" + expanded + "}}}";
}

TEST(ZVPushPayloadTest, ProcessingAndRichPushOutcomes) {
  const std::string mandatory = "Mandatory params missing exception : %@";
  struct Case {
    std::string json;
    bool process;
    bool rich;
    std::string log;  // the one message logged, or "" for none
  } cases[] = {
      {R"({"aps":{}})", false, false, ""},
      {R"({"zentrova":null})", false, false, ""},
      {R"({"zentrova":{"cid":null}})", false, false, ""},
      {R"({"zentrova":{"cid":""}})", true, false, ""},
      {R"({"zentrova":{"cid":[1]}})", true, false, ""},
      {R"({"zentrova":"c1"})", false, false, ""},
      {R"({"zentrova":{"cid":"c","zovFeatures":{"richPush":{}}}})", true, false, ""},
      {R"({"zentrova":{"cid":"c"},"zovFeatures":"x"})", true, false,
       "Rich Push Exception : expected a dictionary but found string"},
      {R"({"zovFeatures":{"richPush":null}})", false, false, ""},
      {R"({"zovFeatures":{"richPush":7}})", false, false,
       "Rich Push Exception : expected a dictionary but found number"},
      {R"({"zentrova":{"cid":"c"},"zovFeatures":{"richPush":{"body":"B","displayName":"D",
         "expanded":{"type":"stylizedBasic"}}}})",
       true, false, mandatory},
      {richPayload(R"({"type":"stylizedBasic"})"), true, true, ""},
      {richPayload("null"), true, false, mandatory},
      {richPayload(R"({"type":"prodGrid"})"), true, false, mandatory},
      {richPayload(R"({"type":"stylizedBasic","cards":"abc"})"), true, false,
       "Rich Push Exception : expected an array but found string"},
      {richPayload(R"({"type":"imageCarousel","cards":[3]})"), true, false,
       "Rich Push Exception : expected a dictionary but found number"},
      {richPayload(R"({"type":"imageCarousel","cards":[{"id":[1]}]})"), true, false,
       "Rich Push Exception : expected a number or a string but found array"},
      {richPayload(R"({"type":"imageCarousel","cards":[{"id":1,"widgets":[{"id":1,
         "type":"video","content":"u"}]}]})"),
       true, false, mandatory},
      {richPayload(R"({"type":"stylizedBasic","style":[]})"), true, false,
       "Rich Push Exception : expected a dictionary but found array"},
      {richPayload(R"({"type":"stylizedBasic","autoStart":{}})"), true, false,
       "Rich Push Exception : expected a number or a string but found dictionary"},
      {richPayload(R"({"type":"stylizedBasic"})", R"("ios":"x",)"), true, false,
       "Rich Push Exception : expected a dictionary but found string"},
      {richPayload(R"({"type":"stylizedBasic"})", R"("defaultActions":[[]],)"), true, false,
       "Rich Push Exception : expected a dictionary but found array"},
  };
  for (const auto& c : cases) {
    zvtest::LogCapture log;
    auto p = ZVPushPayload::initWithPushPayload(Value::parse(c.json));
    EXPECT_EQ(p->shouldProcessPushNotification(), c.process) << c.json;
    EXPECT_EQ(p->richPush != nullptr, c.rich) << c.json;
    EXPECT_EQ(log.sink(),
              c.log.empty() ? std::vector<std::string>{} : std::vector<std::string>{c.log})
        << c.json;
  }
}

TEST(ZVPushPayloadTest, FieldsAreKeptAsFoundAndSurviveARichPushFailure) {
  auto p = ZVPushPayload::initWithPushPayload(Value::parse(
      R"({"zentrova":{"cid":12,"app_id":"a","media-attachment":"http://h/m.mp4","media-type":null},
          "zovFeatures":{"richPush":{"title":"T"}}})"));
  EXPECT_EQ(p->campaignID.integerValue(), 12);
  EXPECT_EQ(p->zovAppId.string(), "a");
  EXPECT_EQ(p->mediaAttachment.string(), "http://h/m.mp4");
  EXPECT_TRUE(p->mediaType.isNil());
  EXPECT_EQ(p->richPush, nullptr);

  auto bare = ZVPushPayload::initWithPushPayload(Value());
  EXPECT_FALSE(bare->shouldProcessPushNotification());
  zvtest::LogCapture log;
  auto notDict = ZVPushPayload::initWithPushPayload(Value("text"));
  EXPECT_FALSE(notDict->shouldProcessPushNotification());
  EXPECT_EQ(log.sink().size(), 1u);
}

}  // namespace
}  // namespace zv
