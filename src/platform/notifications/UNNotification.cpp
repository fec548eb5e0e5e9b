#include "zentrova/UNNotification.h"

namespace zv {

std::shared_ptr<UNNotification> UNNotification::notificationWithRequest(
    std::shared_ptr<UNNotificationRequest> request, double date) {
  if (!request) request = UNNotificationRequest::requestWithIdentifier("", nullptr);
  return std::shared_ptr<UNNotification>(new UNNotification(std::move(request), date));
}

}  // namespace zv
