#include "zentrova/ZVRichNotification.h"

#include "service/ZVRichNotificationHandler.h"
#include "zentrova/ZVExtensionDataManager.h"

namespace zv {

void ZVRichNotification::handleRichNotificationRequest(
    const std::shared_ptr<UNNotificationRequest>& request, ContentHandler handler) {
  ZVRichNotificationHandler::sharedHandler().handleRichNotificationRequest(request,
                                                                           std::move(handler));
}

void ZVRichNotification::getLocalNotificationContentForRequest(
    const std::shared_ptr<UNNotificationRequest>& request, ContentHandler completionHandler) {
  ZVRichNotificationHandler::sharedHandler().getLocalNotificationContentForRequest(
      request, std::move(completionHandler));
}

void ZVRichNotification::serviceExtensionTimeWillExpire() {
  ZVRichNotificationHandler::sharedHandler().serviceExtensionTimeWillExpire();
}

void ZVRichNotification::setAppGroupID(const std::optional<std::string>& appGroupID) {
  ZVExtensionDataManager::sharedManager().setAppGroupID(appGroupID);
}

void ZVRichNotification::updateBadgeWithNotificationContent(
    const std::shared_ptr<UNMutableNotificationContent>& content) {
  ZVRichNotificationHandler::sharedHandler().updateBadgeWithNotificationContent(content);
}

void ZVRichNotification::enableDebugging(bool) {}

}  // namespace zv
