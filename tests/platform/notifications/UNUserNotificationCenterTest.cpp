#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/Clock.h"
#include "platform/notifications/UNUserNotificationCenter.h"
#include "zentrova/UNMutableNotificationContent.h"

namespace zv {
namespace {

using Delivered = NotificationCenter::Notifications;

// Asks the center; the answer carries the thread it came on.
std::future<std::pair<std::thread::id, Delivered>> ask(const UNUserNotificationCenter& center) {
  auto promise = std::make_shared<std::promise<std::pair<std::thread::id, Delivered>>>();
  center.getDeliveredNotificationsWithCompletionHandler([promise](const Delivered& d) {
    promise->set_value({std::this_thread::get_id(), d});
  });
  return promise->get_future();
}

TEST(UNUserNotificationCenterTest, AnswersThePresetListLaterOnItsOwnThread) {
  auto center = std::make_shared<NotificationCenter>(std::make_shared<FixedClock>(1700000000.5));
  UNUserNotificationCenter user(center);
  EXPECT_TRUE(ask(user).get().second.empty());  // a new center starts empty

  // A held answer waits for the release, and then lists what is shown at that moment.
  center->holdAnswers();
  auto answer = ask(user);
  center->setShownCount(3);
  center->releaseAnswers();
  auto [thread, delivered] = answer.get();
  EXPECT_NE(thread, std::this_thread::get_id());
  ASSERT_EQ(delivered.size(), 3u);
  EXPECT_EQ(delivered[2]->request()->identifier(), "shown-3");
  EXPECT_EQ(delivered[2]->date(), 1700000000.5);  // stamped by the center's own clock

  // The payload of what it lists is the user info.
  UNMutableNotificationContent content;
  content.setUserInfo(Value::parse(R"({"zentrova":{"cid":"9"}})"));
  center->setDeliveredNotifications({UNNotification::notificationWithRequest(
      UNNotificationRequest::requestWithIdentifier("n", content.copy()), 1700000000)});
  delivered = ask(user).get().second;
  ASSERT_EQ(delivered.size(), 1u);
  EXPECT_EQ(ZVRichNotifUtils::getPayloadFromNotification(delivered[0]), content.userInfo());
  EXPECT_TRUE(ZVRichNotifUtils::getPayloadFromNotification(nullptr).isNil());

  // A center destroyed while holding answers what was asked.
  auto held = std::make_shared<NotificationCenter>();
  held->holdAnswers();
  auto late = ask(UNUserNotificationCenter(held));
  held.reset();
  EXPECT_TRUE(late.get().second.empty());
}

}  // namespace
}  // namespace zv
