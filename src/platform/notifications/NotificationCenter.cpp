#include "platform/notifications/NotificationCenter.h"

#include <fmt/format.h>

#include "platform/foundation/Clock.h"

namespace zv {

NotificationCenter::NotificationCenter(std::shared_ptr<Clock> clock)
    : clock_(clock ? std::move(clock) : std::make_shared<SystemClock>()),
      list_(std::make_shared<List>()) {
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
  double now = clock_->now();
  Notifications list;
  list.reserve(count);
  for (size_t i = 1; i <= count; ++i) {
    auto request =
        UNNotificationRequest::requestWithIdentifier(fmt::format("shown-{}", i), nullptr);
    list.push_back(UNNotification::notificationWithRequest(std::move(request), now));
  }
  setDeliveredNotifications(std::move(list));
}

NotificationCenter::~NotificationCenter() { releaseAnswers(); }

void NotificationCenter::holdAnswers() {
  std::lock_guard lock(list_->mutex);
  list_->held = true;
}

void NotificationCenter::releaseAnswers() {
  {
    std::lock_guard lock(list_->mutex);
    list_->held = false;
  }
  list_->released.notify_all();
}

void NotificationCenter::getDeliveredNotifications(Completion completion) {
  if (!completion) return;
  answers_.addOperationWithBlock([list = list_, completion = std::move(completion)] {
    Notifications snapshot;
    {
      std::unique_lock lock(list->mutex);
      list->released.wait(lock, [&] { return !list->held; });
      snapshot = list->delivered;
    }
    completion(snapshot);
  });
}

}  // namespace zv
