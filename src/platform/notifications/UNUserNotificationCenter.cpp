#include "platform/notifications/UNUserNotificationCenter.h"

namespace zv {

void UNUserNotificationCenter::getDeliveredNotificationsWithCompletionHandler(
    NotificationCenter::Completion completionHandler) const {
  if (center_) center_->getDeliveredNotifications(std::move(completionHandler));
}

}  // namespace zv
