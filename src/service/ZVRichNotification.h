// ZVRichNotification is the public facade that a host application's notification-service
// extension calls. It holds no state: each operation forwards to the process-wide handler or store.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "zentrova/Export.h"
#include "service/ZVRichNotificationHandler.h"

ZENTROVA_API_BEGIN

namespace zv {

class ZVRichNotification {
 public:
  static void handleRichNotificationRequest(const std::shared_ptr<UNNotificationRequest>& request,
                                            ZVRichNotificationHandler::ContentHandler handler);
  static void getLocalNotificationContentForRequest(
      const std::shared_ptr<UNNotificationRequest>& request,
      ZVRichNotificationHandler::ContentHandler completionHandler);
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
