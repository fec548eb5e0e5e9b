#include <gtest/gtest.h>

#include <limits>

#include "model/ZVPushAction.h"
#include "model/ZVPushCard.h"
#include "model/ZVPushWidget.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "platform/foundation/Exception.h"

namespace zv {
namespace {

TEST(ZVRichPushModelTest, RichPushReadsIosAndIgnoresCollapsed) {
  auto rp = ZVRichPush::initWithDictionary(Value::parse(
      R"({"title":"T","body":"","displayName":"D","collapsed":{"type":"x"},"sound":"s",
          "expanded":{"type":"imageCarousel","style":{"bgColor":"#FF0000"}},
          "defaultActions":[{"name":"coupon","value":"C"}]})"));
  EXPECT_TRUE(rp->subTitle.isNil());
  EXPECT_TRUE(rp->sound.isNil());  // only "ios" gives a sound
  EXPECT_TRUE(rp->category.isNil());
  EXPECT_EQ(rp->collapsedMode, nullptr);
  EXPECT_EQ(rp->expandedMode->templateType, ZVRichPushTemplateType::ImageCarousel);
  EXPECT_EQ(*rp->expandedMode->bgColor, (Color{1, 0, 0, 1}));
  EXPECT_TRUE(rp->expandedMode->cards.empty());
  EXPECT_FALSE(rp->expandedMode->autoStart);
  ASSERT_EQ(rp->defaultActions.size(), 1u);

  rp = ZVRichPush::initWithDictionary(Value::parse(
      R"({"title":"T","body":"B","displayName":"D","ios":{"sound":"s","category":"c"},
          "expanded":{"type":"stylizedBasic"}})"));
  EXPECT_EQ(rp->sound.string(), "s");
  EXPECT_EQ(rp->category.string(), "c");
  EXPECT_EQ(rp->expandedMode->bgColor, Color::clear());
  EXPECT_THROW(ZVRichPush::initWithDictionary(Value::parse(R"({"title":"T","body":"B"})")),
               Exception);
}

TEST(ZVRichPushModelTest, AutoStartAndIdsUseThePlatformConversions) {
  struct Case {
    const char* json;
    bool autoStart;
    long long id;
  } cases[] = {
      {R"("true")", true, 0},
      {"0", false, 0},
      {R"("12")", true, 12},
      {R"("12abc")", true, 12},
      {R"("0x1A")", false, 0},
      {R"(" -7")", true, -7},
      {R"("Y")", true, 0},
      {R"("t")", true, 0},
      {R"("01")", true, 1},
      {R"("abc")", false, 0},
      {"3.9", true, 3},
      {"-2.5", true, -2},
      {"true", true, 1},
      {"1e30", true, std::numeric_limits<long long>::max()},
      {"18446744073709551615", true, std::numeric_limits<long long>::max()},
      {R"("99999999999999999999")", true, std::numeric_limits<long long>::max()},
  };
  for (const auto& c : cases) {
    auto mode = ZVRichPushMode::initWithDictionary(
        Value::parse(std::string(R"({"type":"stylizedBasic","autoStart":)") + c.json + "}"));
    EXPECT_EQ(mode->autoStart, c.autoStart) << c.json;
    auto card = ZVPushCard::initWithDictionary(
        Value::parse(std::string(R"({"type":"anything","id":)") + c.json + "}"));
    EXPECT_EQ(card->cardID, c.id) << c.json;
    EXPECT_EQ(card->cardType, 3);
    auto widget = ZVPushWidget::initWithDictionary(
        Value::parse(std::string(R"({"type":"text","content":"","id":)") + c.json + "}"));
    EXPECT_EQ(widget->widgetId, c.id) << c.json;
  }
}

TEST(ZVRichPushModelTest, WidgetTypesAndMandatoryFields) {
  struct Case {
    const char* json;
    int type;  // -1: raises the mandatory-parameters exception
  } cases[] = {
      {R"({"id":1,"type":"text","content":"hi"})", 0},
      {R"({"id":1,"type":"button","content":""})", 1},
      {R"({"id":1,"type":"image","content":"http://h/a.png"})", 2},
      {R"({"id":1,"type":"image"})", -1},
      {R"({"id":1,"type":"image","content":null})", -1},
      {R"({"type":"image","content":"u"})", -1},
      {R"({"id":1,"type":"video","content":"u"})", -1},
      {R"({"id":1,"type":"Image","content":"u"})", -1},
      {R"({"id":1,"type":2,"content":"u"})", -1},
  };
  for (const auto& c : cases) {
    if (c.type < 0) {
      EXPECT_THROW(ZVPushWidget::initWithDictionary(Value::parse(c.json)), Exception) << c.json;
    } else {
      EXPECT_EQ(static_cast<int>(ZVPushWidget::initWithDictionary(Value::parse(c.json))->type),
                c.type);
    }
  }
  auto card = ZVPushCard::initWithDictionary(Value::parse(R"({"id":7})"));
  EXPECT_TRUE(card->widgets.empty() && card->actions.empty());
  EXPECT_THROW(ZVPushCard::initWithDictionary(Value::parse(R"({"widgets":[]})")), Exception);
}

TEST(ZVRichPushModelTest, ActionsNeverFailAndReadTheTypeOnlyWhenNavigating) {
  struct Case {
    const char* json;
    ZVPushActionName name;
    ZVPushNavigationType type;
  } cases[] = {
      {R"({"name":"coupon","type":"deepLink","value":"SAVE"})", ZVPushActionName::Coupon,
       ZVPushNavigationType::RichLanding},
      {R"({"name":"navigate","type":"deepLink"})", ZVPushActionName::Navigate,
       ZVPushNavigationType::DeepLink},
      {R"({"name":"navigate","type":"screenName"})", ZVPushActionName::Navigate,
       ZVPushNavigationType::ScreenName},
      {R"({"name":"navigate","type":"richLanding"})", ZVPushActionName::Navigate,
       ZVPushNavigationType::RichLanding},
      {R"({"name":"navigate"})", ZVPushActionName::Navigate, ZVPushNavigationType::Other},
      {R"({"name":"Navigate","type":"deepLink"})", ZVPushActionName::Other,
       ZVPushNavigationType::RichLanding},
      {"{}", ZVPushActionName::Other, ZVPushNavigationType::RichLanding},
  };
  for (const auto& c : cases) {
    auto a = ZVPushAction::initWithDictionary(Value::parse(c.json));
    EXPECT_EQ(a->actionName, c.name) << c.json;
    EXPECT_EQ(a->actionType, c.type) << c.json;
  }
  auto a = ZVPushAction::initWithDictionary(
      Value::parse(R"({"name":"coupon","value":"SAVE","kvPairs":{"k":1}})"));
  EXPECT_EQ(a->value.string(), "SAVE");
  EXPECT_EQ(a->kvPairs.get("k").integerValue(), 1);
}

}  // namespace
}  // namespace zv
