#include "model/ZVPushPayload.h"
#include "platform/foundation/SystemVersion.h"
#include "platform/ui/UIColor.h"
#include "templates/TemplateFixture.h"
#include "templates/ZVPushBodyView.h"
#include "zentrova/UserDefaults.h"
#include "zentrova/ZVPushTemplateHandler.h"

namespace zvtest {
namespace {

namespace json = boost::json;
using zv::UIView;

class ZVPushTemplateHandlerTest : public TemplateFixture {};

std::shared_ptr<UIView> container(const zv::UIViewController& c) {
  return c.view()->subviews().empty() ? nullptr : c.view()->subviews().front();
}

json::object alert(json::value alertValue) {
  return json::object{{"aps", json::object{{"alert", alertValue}}},
                      {"zentrova", json::object{{"cid", "c"}, {"app_id", "a"}}}};
}

// The body view's height: 20 of padding, 25 for a title, 25 for a subtitle, 25 per message row.
TEST_F(ZVPushTemplateHandlerTest, BodyViewGrowsInRowsOf25) {
  hideDefaultContent(true);
  struct Case {
    json::value alert;
    int lines;  // what the measurer answers for the message
    std::int64_t height;
    std::string message;
  } cases[] = {
      {json::object{{"body", "one line"}}, 1, 45, "one line"},
      {json::object{{"title", "T"}, {"subtitle", "S"}, {"body", "three rows"}}, 3, 145,
       "three rows"},
      {"a plain string alert", 1, 45, "a plain string alert"},
      {nullptr, 1, 45, "(null)"},  // a null alert reads as absent
      {json::object{{"title", "T"}, {"body", "measured at nothing"}}, 0, 70, "measured at nothing"},
  };
  for (const auto& c : cases) {
    measurer->lines = c.lines;
    json::object payload = alert(c.alert);
    auto controller = show(notification(payload));
    auto body =
        std::dynamic_pointer_cast<zv::ZVPushBodyView>(container(*controller)->subviews()[1]);
    ASSERT_TRUE(body);
    EXPECT_EQ(body->updatedHeight, c.height) << c.message;
    EXPECT_EQ(body->frame().size.height, c.height) << c.message;
    EXPECT_EQ(body->bodyLabel.lock()->text(), c.message);
    EXPECT_EQ(body->bodyLabel.lock()->numberOfLines(), c.lines) << c.message;
  }
  // No alert at all: the message shows the platform's text for nil.
  auto controller = show(notification(
      json::object{{"aps", json::object{}}, {"zentrova", json::object{{"cid", "c"}}}}));
  auto body = std::dynamic_pointer_cast<zv::ZVPushBodyView>(container(*controller)->subviews()[1]);
  EXPECT_EQ(body->bodyLabel.lock()->text(), "(null)");
}

TEST_F(ZVPushTemplateHandlerTest, ContainerFormatsFollowThePlatformVersion) {
  struct Case {
    double version;
    const char* vertical;
  } cases[] = {
      {14.0, "V:|-0-[templateView(250.000000)]-0-[pushMsgBodyView(0.000000)]-0-|"},
      {15.0, "V:|-0-[pushMsgBodyView(0.000000)]-0-[templateView(250.000000)]-0-|"},
  };
  const std::string image = "https://cdn.example.com/a.png";
  for (const auto& c : cases) {
    zv::setSystemVersion(c.version);
    auto controller =
        show(notification(richPayload({image}, "stylizedBasic"), {{image, png(600, 400)}}));
    EXPECT_EQ(container(*controller)->constraintFormats(),
              (std::vector<std::string>{"H:|-0-[templateView(375.000000)]-0-|",
                                        "H:|-0-[pushMsgBodyView(375.000000)]-0-|", c.vertical}));
    EXPECT_EQ(controller->view()->constraintFormats(),
              (std::vector<std::string>{"H:|-0-[containerView(375.000000)]-0-|",
                                        "V:|-0-[containerView(250.000000)]-0-|"}));
    EXPECT_EQ(controller->view()->frame().size, (zv::CGSize{375, 250}));
  }
}

TEST_F(ZVPushTemplateHandlerTest, ForeignNotificationsAndTheDarkFlag) {
  auto& handler = zv::ZVPushTemplateHandler::sharedInstance();
  auto foreign = show(notification(json::object{{"aps", json::object{{"alert", "hi"}}}}), 320);
  EXPECT_TRUE(foreign->view()->subviews().empty());
  EXPECT_EQ(handler.controllerWidth, 320);
  EXPECT_EQ(handler.controller, foreign);
  EXPECT_FALSE(handler.pushPayload);

  show(notification(alert("x")), 375, /*dark=*/true);
  EXPECT_TRUE(handler.isDarkTheme);
  show(notification(alert("y")), 375, /*dark=*/false);
  EXPECT_TRUE(handler.isDarkTheme) << "once dark, the process stays dark";
}

TEST_F(ZVPushTemplateHandlerTest, CardActionsStoreTheClickAndOpenTheApp) {
  auto controller = show(notification(richPayload({})));
  auto& handler = zv::ZVPushTemplateHandler::sharedInstance();
  handler.performCardActionWithInfo(json::object{{"card_id", 7}, {"campaign_id", "old"}});
  EXPECT_EQ(controller->extensionContext()->defaultActionCount(), 1);
  handler.performCardActionWithInfo(std::nullopt);
  EXPECT_EQ(controller->extensionContext()->defaultActionCount(), 2);
  auto stored = zv::UserDefaults::initWithSuiteName("group.templates", dir.path() / "store")
                    ->objectForKey("zov_push_template_click_info");
  EXPECT_EQ(stored.json(), (json::value(json::object{{"card_id", 7}, {"campaign_id", "cmp-9"}})));
}

}  // namespace
}  // namespace zvtest
