#include <gtest/gtest.h>

#include <limits>

#include "model/ZVPushAction.h"
#include "model/ZVPushCard.h"
#include "model/ZVPushPayload.h"
#include "model/ZVPushWidget.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "support/TestSupport.h"
#include "zentrova/Exception.h"

namespace zv {
namespace {

// A payload with a valid rich push around the given "expanded" JSON (and extra rich-push keys).
std::string rich(const std::string& expanded, const std::string& extra = "") {
  return R"({"zentrova":{"cid":"c1"},"zovFeatures":{"richPush":{"title":"T","body":"B",)"
         R"("displayName":"D",)" +
         extra + R"("expanded":)" + expanded + "}}}";
}
std::string card(const std::string& json) {
  return rich(R"({"type":"imageCarousel","cards":[)" + json + "]}");
}

TEST(ZVPushPayloadTest, ProcessingAndRichPushOutcomes) {
  const std::string mandatory = "Mandatory params missing exception : %@";
  const std::string wrong = "Rich Push Exception : expected ";
  struct Case {
    std::string json;
    bool process;
    // The one message logged, or "" for none. A rich push is built exactly when nothing is logged
    // and the payload has a rich-push title at all.
    std::string log;
  } cases[] = {
      {R"({"zentrova":null,"zovFeatures":{}})", false, ""},
      {R"({"zentrova":{"cid":null}})", false, ""},
      {R"({"zentrova":{"cid":""}})", true, ""},
      {R"({"zentrova":{"cid":[1]}})", true, ""},
      {R"({"zentrova":{"cid":"c","zovFeatures":{"richPush":{}}}})", true, ""},
      {R"("text")", false, wrong + "a dictionary but found string"},
      {R"({"zentrova":{"cid":"c"},"zovFeatures":"x"})", true,
       wrong + "a dictionary but found string"},
      {R"({"zovFeatures":{"richPush":{"body":"B","displayName":"D","expanded":{}}}})", false,
       mandatory},
      {rich(R"({"type":"stylizedBasic"})"), true, ""},
      {rich(R"({"type":"prodGrid"})"), true, mandatory},
      {rich(R"({"type":"stylizedBasic","cards":"abc"})"), true,
       wrong + "an array but found string"},
      {rich(R"({"type":"stylizedBasic","style":[]})"), true,
       wrong + "a dictionary but found array"},
      {rich(R"({"type":"stylizedBasic"})", R"("defaultActions":[[]],)"), true,
       wrong + "a dictionary but found array"},
      {card("3"), true, wrong + "a dictionary but found number"},
      {card(R"({"id":[1]})"), true, wrong + "a number or a string but found array"},
      {card(R"({"widgets":[]})"), true, mandatory},
      {card(R"({"id":1,"widgets":[{"id":1,"type":"video","content":"u"}]})"), true, mandatory},
      {card(R"({"id":1,"widgets":[{"id":1,"type":"image","content":null}]})"), true, mandatory},
      {card(R"({"id":1,"widgets":[{"type":"image","content":"u"}]})"), true, mandatory},
  };
  for (const auto& c : cases) {
    zvtest::LogCapture log;
    auto p = ZVPushPayload::initWithPushPayload(Value::parse(c.json));
    EXPECT_EQ(p->shouldProcessPushNotification(), c.process) << c.json;
    EXPECT_EQ(p->richPush == nullptr, !c.log.empty() || c.json.find("title") == std::string::npos)
        << c.json;
    EXPECT_EQ(log.sink(), c.log.empty() ? std::vector<std::string>{} : std::vector{c.log})
        << c.json;
  }
  // A "zentrova" that is not a dictionary: looking up "cid" in it raises out of the envelope.
  for (const char* json : {R"({"zentrova":"c1"})", R"({"zentrova":[{"cid":"c"}]})"}) {
    EXPECT_THROW(ZVPushPayload::initWithPushPayload(Value::parse(json)), Exception) << json;
  }
}

// Ids and "autoStart" go through the platform's conversions; huge ids saturate.
TEST(ZVPushPayloadTest, RichModelFieldsAndConversions) {
  const long long kMax = std::numeric_limits<long long>::max();
  struct Case {
    std::string json;
    bool autoStart;
    long long id;
  } cases[] = {{R"("12abc")", true, 12},
               {R"("0")", false, 0},
               {"3.9", true, 3},
               {"1e30", true, kMax},
               {R"("t")", true, 0}};
  for (const auto& c : cases) {
    auto rp = ZVPushPayload::initWithPushPayload(
                  Value::parse(rich(R"({"type":"imageCarousel","style":{"bgColor":"#FF0000"},)"
                                    R"("autoStart":)" +
                                        c.json + R"(,"cards":[{"type":"x","id":)" + c.json +
                                        R"(,"widgets":[{"type":"image","content":"","id":)" +
                                        c.json + "}]}]}",
                                    R"("sound":"s","ios":{"category":"c"},)")))
                  ->richPush;
    // Sound and category come from "ios" only; ids and "autoStart" convert as the platform does.
    EXPECT_TRUE(rp->subTitle.isNil() && rp->sound.isNil() && rp->category.string() == "c");
    EXPECT_EQ(*rp->expandedMode->bgColor, (Color{1, 0, 0, 1}));
    EXPECT_EQ(rp->expandedMode->autoStart, c.autoStart) << c.json;
    const auto& card = rp->expandedMode->cards.at(0);
    EXPECT_EQ(card->cardType, 3);
    EXPECT_EQ(card->cardID, c.id) << c.json;
    EXPECT_EQ(card->widgets.at(0)->widgetId, c.id) << c.json;
  }
}

TEST(ZVPushPayloadTest, ActionsReadTheirTypeOnlyWhenNavigating) {
  using N = ZVPushActionName;
  using T = ZVPushNavigationType;
  struct Case {
    const char* json;
    N name;
    T type;
  } cases[] = {
      {R"({"name":"coupon","type":"deepLink","value":"SAVE"})", N::Coupon, T::RichLanding},
      {R"({"name":"navigate","type":"deepLink"})", N::Navigate, T::DeepLink},
      {R"({"name":"navigate","type":"screenName"})", N::Navigate, T::ScreenName},
      {R"({"name":"navigate"})", N::Navigate, T::Other},
      {R"({"name":"Navigate","type":"deepLink"})", N::Other, T::RichLanding},
  };
  for (const auto& c : cases) {
    auto a = ZVPushAction::initWithDictionary(Value::parse(c.json));
    EXPECT_EQ(a->actionName, c.name) << c.json;
    EXPECT_EQ(a->actionType, c.type) << c.json;
  }
}

}  // namespace
}  // namespace zv
