// zv::UNUserNotificationCenter is the application's view of the system's notification center. The
// service extension asks it how many notifications are still shown, to count the badge up. It
// forwards to the platform's NotificationCenter port, whichever is installed at the time of the
// call.
#pragma once

#include "platform/notifications/NotificationCenter.h"

namespace zv {

class UNUserNotificationCenter {
 public:
  static UNUserNotificationCenter& currentNotificationCenter();

  // Calls completionHandler with this application's delivered notifications, later, on a thread of
  // the center's own (never the caller's).
  void getDeliveredNotificationsWithCompletionHandler(
      NotificationCenter::Completion completionHandler);

 private:
  UNUserNotificationCenter() = default;
};

}  // namespace zv
