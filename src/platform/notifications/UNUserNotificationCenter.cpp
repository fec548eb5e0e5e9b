#include "platform/notifications/UNUserNotificationCenter.h"

#include "platform/foundation/Platform.h"

namespace zv {

UNUserNotificationCenter& UNUserNotificationCenter::currentNotificationCenter() {
  static UNUserNotificationCenter center;
  return center;
}

void UNUserNotificationCenter::getDeliveredNotificationsWithCompletionHandler(
    NotificationCenter::Completion completionHandler) {
  Platform::shared().notificationCenter()->getDeliveredNotifications(std::move(completionHandler));
}

}  // namespace zv
