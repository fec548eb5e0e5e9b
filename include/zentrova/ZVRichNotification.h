// ZVRichNotification is the public facade that a host application's notification-service
// extension calls. It holds no state: each operation forwards to the process-wide handler or store.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

class UNNotificationRequest;
class UNNotificationContent;
class UNMutableNotificationContent;

class ZVRichNotification {
 public:
  using ContentHandler = std::function<void(const std::shared_ptr<UNNotificationContent>& content)>;

  static void handleRichNotificationRequest(const std::shared_ptr<UNNotificationRequest>& request,
                                            ContentHandler handler);
  static void getLocalNotificationContentForRequest(
      const std::shared_ptr<UNNotificationRequest>& request, ContentHandler completionHandler);
  // The phone gives the service extension about 30 seconds: when they are nearly up, it calls
  // this, and every request still in flight is delivered at once with what is ready. Each flow
  // still calls its handler again when it ends; the system keeps the first content.
  static void serviceExtensionTimeWillExpire();
  static void setAppGroupID(const std::optional<std::string>& appGroupID);
  static void updateBadgeWithNotificationContent(
      const std::shared_ptr<UNMutableNotificationContent>& content);
  // Exists for the host application and deliberately does nothing.
  static void enableDebugging(bool enabled);
};

}  // namespace zv

ZENTROVA_API_END
