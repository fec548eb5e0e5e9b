// ZVRichNotifUtils: the payload of a delivered notification.

#include "model/ZVRichNotifUtils.h"
#include "zentrova/UNNotification.h"

namespace zv {

Value ZVRichNotifUtils::getPayloadFromNotification(
    const std::shared_ptr<UNNotification>& notification) {
  if (!notification) return {};
  return notification->request()->content()->userInfo();
}

}  // namespace zv
