#include <gtest/gtest.h>

#include <future>
#include <thread>

#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/Platform.h"
#include "platform/notifications/UNMutableNotificationContent.h"
#include "platform/notifications/UNUserNotificationCenter.h"

namespace zv {
namespace {

using Delivered = NotificationCenter::Notifications;
using namespace std::chrono_literals;

// Asks the current center; the answer carries the thread it came on.
std::future<std::pair<std::thread::id, Delivered>> ask() {
  auto promise = std::make_shared<std::promise<std::pair<std::thread::id, Delivered>>>();
  UNUserNotificationCenter::currentNotificationCenter()
      .getDeliveredNotificationsWithCompletionHandler([promise](const Delivered& d) {
        promise->set_value({std::this_thread::get_id(), d});
      });
  return promise->get_future();
}

TEST(UNUserNotificationCenterTest, AnswersThePresetListLaterOnItsOwnThread) {
  Platform::shared().reset();
  EXPECT_TRUE(ask().get().second.empty());  // the default center starts empty

  auto center = Platform::shared().notificationCenter();
  center->setShownCount(3);
  center->setResponseDelay(150ms);
  auto answer = ask();
  EXPECT_EQ(answer.wait_for(50ms), std::future_status::timeout);
  auto [thread, delivered] = answer.get();
  EXPECT_NE(thread, std::this_thread::get_id());
  ASSERT_EQ(delivered.size(), 3u);
  EXPECT_EQ(delivered[2]->request()->identifier(), "shown-3");

  // A center installed later is the one asked; the payload of what it lists is the user info.
  auto installed = std::make_shared<NotificationCenter>();
  UNMutableNotificationContent content;
  content.setUserInfo(Value::parse(R"({"zentrova":{"cid":"9"}})"));
  installed->addDeliveredNotification(UNNotification::notificationWithRequest(
      UNNotificationRequest::requestWithIdentifier("n", content.copy()), 1700000000));
  Platform::shared().setNotificationCenter(installed);
  delivered = ask().get().second;
  ASSERT_EQ(delivered.size(), 1u);
  EXPECT_EQ(ZVRichNotifUtils::getPayloadFromNotification(delivered[0]), content.userInfo());
  EXPECT_TRUE(ZVRichNotifUtils::getPayloadFromNotification(nullptr).isNil());
  Platform::shared().reset();
}

}  // namespace
}  // namespace zv
