#include "service/ServicePlan.h"

#include "model/ZVPushPayload.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Exception.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotificationRequest.h"

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
