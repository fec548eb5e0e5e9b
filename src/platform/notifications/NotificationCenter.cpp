#include "platform/notifications/NotificationCenter.h"

#include <fmt/format.h>

#include <thread>

#include "platform/foundation/Platform.h"

namespace zv {

NotificationCenter::NotificationCenter() : list_(std::make_shared<List>()) {
  answers_.setMaxConcurrentOperationCount(1);
}

void NotificationCenter::setDeliveredNotifications(Notifications notifications) {
  std::lock_guard lock(list_->mutex);
  list_->delivered = std::move(notifications);
}

void NotificationCenter::addDeliveredNotification(std::shared_ptr<UNNotification> notification) {
  std::lock_guard lock(list_->mutex);
  list_->delivered.push_back(std::move(notification));
}

void NotificationCenter::setShownCount(size_t count) {
  double now = Platform::shared().clock()->now();
  Notifications list;
  list.reserve(count);
  for (size_t i = 1; i <= count; ++i) {
    auto request =
        UNNotificationRequest::requestWithIdentifier(fmt::format("shown-{}", i), nullptr);
    list.push_back(UNNotification::notificationWithRequest(std::move(request), now));
  }
  setDeliveredNotifications(std::move(list));
}

void NotificationCenter::setResponseDelay(std::chrono::milliseconds delay) {
  std::lock_guard lock(list_->mutex);
  list_->delay = delay;
}

void NotificationCenter::getDeliveredNotifications(Completion completion) {
  if (!completion) return;
  answers_.addOperationWithBlock([list = list_, completion = std::move(completion)] {
    Notifications snapshot;
    std::chrono::milliseconds delay;
    {
      std::lock_guard lock(list->mutex);
      snapshot = list->delivered;
      delay = list->delay;
    }
    if (delay.count() > 0) std::this_thread::sleep_for(delay);
    completion(snapshot);
  });
}

// The platform object's notification center port.

std::shared_ptr<NotificationCenter> Platform::notificationCenter() {
  std::lock_guard lock(mutex_);
  if (!notificationCenter_) notificationCenter_ = std::make_shared<NotificationCenter>();
  return notificationCenter_;
}

void Platform::setNotificationCenter(std::shared_ptr<NotificationCenter> center) {
  {
    std::lock_guard lock(mutex_);
    notificationCenter_.swap(center);
  }
  // The previous center (now in center) answers its pending queries as it goes, outside the lock.
}

}  // namespace zv
