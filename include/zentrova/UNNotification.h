/// @file
/// zv::UNNotification is a notification that the system has delivered and still shows: its request
/// and the moment it was delivered. The notification center lists them; the content extension is
/// given one to render.
#pragma once

#include <memory>

#include "zentrova/Export.h"
#include "zentrova/UNNotificationRequest.h"

ZENTROVA_API_BEGIN

namespace zv {

/// A delivered notification: the request it came from and when it was delivered.
///
/// Immutable once made; shares its request (shared_ptr) with whoever else holds it. Any thread may
/// read it; the content extension receives one on the main thread.
class UNNotification {
 public:
  /// The notification of a request delivered at `date` (seconds since 1970 UTC). The request is
  /// shared, not copied; it should not be null (the content extension then finds no payload).
  static std::shared_ptr<UNNotification> notificationWithRequest(
      std::shared_ptr<UNNotificationRequest> request, double date);

  /// The request this notification was delivered for.
  const std::shared_ptr<UNNotificationRequest>& request() const { return request_; }
  /// When it was delivered, in seconds since 1970 UTC.
  double date() const { return date_; }

 private:
  UNNotification(std::shared_ptr<UNNotificationRequest> request, double date)
      : request_(std::move(request)), date_(date) {}

  std::shared_ptr<UNNotificationRequest> request_;
  double date_;
};

}  // namespace zv

ZENTROVA_API_END
