// zv::UNUserNotificationCenter is the application's view of the system's notification center. The
// service extension asks it how many notifications are still shown, to count the badge up. It
// forwards to the NotificationCenter port it was made with.
#pragma once

#include <memory>

#include "platform/notifications/NotificationCenter.h"

namespace zv {

class UNUserNotificationCenter {
 public:
  explicit UNUserNotificationCenter(std::shared_ptr<NotificationCenter> center)
      : center_(std::move(center)) {}

  // Calls completionHandler with this application's delivered notifications, later, on a thread of
  // the center's own (never the caller's).
  void getDeliveredNotificationsWithCompletionHandler(
      NotificationCenter::Completion completionHandler) const;

 private:
  std::shared_ptr<NotificationCenter> center_;
};

}  // namespace zv
