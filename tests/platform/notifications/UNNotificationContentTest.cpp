#include <gtest/gtest.h>

#include <thread>

#include "zentrova/Exception.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotificationRequest.h"

namespace zv {
namespace {

TEST(UNNotificationContentTest, TheWorkingCopyIsIndependentAndItsBadgeSafeFromAnotherThread) {
  auto request = UNNotificationRequest::requestWithRemoteNotification(
      "r", Value::parse(R"({"aps":{"alert":"hi","badge":1},"k":1})"));
  auto working = request->content()->mutableCopy();
  std::thread badgeWriter([working] {
    for (int i = 1; i <= 2000; ++i) working->setBadge(Value(json::value(i)));
  });
  for (int i = 0; i < 2000; ++i) {
    working->setBody(std::string(i % 50, 'x'));
    ASSERT_TRUE(working->mutableCopy()->badge().isNumber());
  }
  badgeWriter.join();
  working->setUserInfo(Value());
  EXPECT_EQ(working->badge().integerValue(), 2000);
  EXPECT_EQ(working->userInfo(), Value(json::object()));  // nil is the empty dictionary
  EXPECT_EQ(request->content()->badge().integerValue(), 1);
  EXPECT_EQ(request->content()->body(), "hi");
  EXPECT_THROW(working->setBadge(Value("1")), Exception);
  EXPECT_THROW(working->setUserInfo(Value::parse("[1]")), Exception);
}

TEST(UNNotificationContentTest, RequestFromARemotePayload) {
  struct Case {
    const char* payload;
    const char* texts;  // title|subtitle|body
    const char* badge;  // the badge's description, "(null)" for none
    const char* sound;  // "", "default" or the name
    const char* category;
  } cases[] = {
      {R"({"aps":{"alert":{"title":"T","subtitle":"S","body":"B"},"badge":1,"sound":"default",
           "category":"C"},"zentrova":{"cid":"1"}})",
       "T|S|B", "1", "default", "C"},
      {R"({"aps":{"alert":"just a body","sound":"chime.caf","badge":0}})", "||just a body", "0",
       "chime.caf", ""},
      {R"({"aps":{"sound":{"critical":1,"name":"alarm.caf","volume":1.0}}})", "||", "(null)",
       "alarm.caf", ""},
      // Entries of the wrong kind are ignored, as the phone ignores them.
      {R"({"aps":{"alert":{"title":5,"body":["x"]},"badge":"2","sound":7,"category":{}}})", "||",
       "(null)", "", ""},
      {R"({"aps":"not a dictionary"})", "||", "(null)", "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.payload);
    Value payload = Value::parse(c.payload);
    auto content = UNNotificationRequest::requestWithRemoteNotification("id", payload)->content();
    EXPECT_EQ(content->title() + "|" + content->subtitle() + "|" + content->body(), c.texts);
    EXPECT_EQ(content->badge().description(), c.badge);
    auto sound = content->sound();
    EXPECT_EQ(!sound ? "" : sound->isDefault() ? "default" : sound->name(), c.sound);
    EXPECT_EQ(content->categoryIdentifier(), c.category);
    EXPECT_EQ(content->userInfo(), payload);
  }
  EXPECT_THROW(UNNotificationRequest::requestWithRemoteNotification("id", Value::parse("[]")),
               Exception);
}

}  // namespace
}  // namespace zv
