#include "zentrova/service/ServicePlan.h"

#include "zentrova/model/ZVPushPayload.h"
#include "zentrova/platform/foundation/Exception.h"
#include "zentrova/platform/notifications/UNMutableNotificationContent.h"
#include "zentrova/platform/notifications/UNNotificationRequest.h"
#include "zentrova/service/ZVRichNotificationHandler.h"

namespace zv {

ServicePlan ServicePlan::make(ZVRichNotificationHandler& handler,
                              const std::shared_ptr<UNNotificationRequest>& request,
                              bool countBadge) {
  ServicePlan plan;
  plan.content = request->content()->mutableCopy();
  try {
    plan.envelope = ZVPushPayload::initWithPushPayload(plan.content->userInfo());
    if (!plan.envelope->shouldProcessPushNotification()) return plan;
    if (countBadge) handler.updateBadgeWithNotificationContent(plan.content);
    handler.updateNotificationContent(plan.content, plan.envelope->richPush);
    handler.updateNotificationDefaultActions(plan.content, plan.envelope->richPush);
    plan.payload = ZVPushPayload::initWithPushPayload(plan.content->userInfo());
    plan.media = handler.getMediaURLsFromPayload(plan.payload);
  } catch (const Exception& e) {
    plan.failure = e.description();
  }
  return plan;
}

std::string ServicePlan::guardMessage(Flow flow) const {
  const char* prefix = flow == Flow::kFull
                           ? "Exception in creating attachment Rich notification: "
                           : "Exception in creating attachment Rich notification : ";
  return prefix + failure.value_or("");
}

}  // namespace zv
