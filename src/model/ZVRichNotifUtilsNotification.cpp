// ZVRichNotifUtils: the payload of a delivered notification.

#include "zentrova/model/ZVRichNotifUtils.h"
#include "zentrova/platform/notifications/UNNotification.h"

namespace zv {

Value ZVRichNotifUtils::getPayloadFromNotification(
    const std::shared_ptr<UNNotification>& notification) {
  if (!notification) return {};
  return notification->request()->content()->userInfo();
}

}  // namespace zv
