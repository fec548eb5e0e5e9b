// zv::UNNotification is a notification that the system has delivered and still shows: its request
// and the moment it was delivered. The notification center lists them; the content extension is
// given one to render.
#pragma once

#include <memory>

#include "zentrova/Export.h"
#include "zentrova/UNNotificationRequest.h"

ZENTROVA_API_BEGIN

namespace zv {

class UNNotification {
 public:
  // date: seconds since 1970 UTC.
  static std::shared_ptr<UNNotification> notificationWithRequest(
      std::shared_ptr<UNNotificationRequest> request, double date);

  const std::shared_ptr<UNNotificationRequest>& request() const { return request_; }
  double date() const { return date_; }

 private:
  UNNotification(std::shared_ptr<UNNotificationRequest> request, double date)
      : request_(std::move(request)), date_(date) {}

  std::shared_ptr<UNNotificationRequest> request_;
  double date_;
};

}  // namespace zv

ZENTROVA_API_END
