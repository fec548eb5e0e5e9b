#include "payload/ContentOnlyFlow.h"

#include "platform/net/UrlSession.h"
#include "platform/notifications/ContentDelivery.h"
#include "reporting/ZVExtensionNetworkManager.h"
#include "zentrova/UNNotificationContent.h"
#include "zentrova/ZVRichNotification.h"

namespace zvpush {

ContentOnlyFlow ContentOnlyFlow::run(const std::shared_ptr<zv::UNNotificationRequest>& request,
                                     const zv::UrlSessionConfiguration& configuration,
                                     std::chrono::seconds budget) {
  ContentOnlyFlow flow;
  flow.session = zv::UrlSession::sessionWithConfiguration(configuration);
  zv::ZVExtensionNetworkManager::sharedManager().setNetworkSession(flow.session);
  // The first content handed is what the phone would show; later calls (the flow ending after the
  // budget has delivered, or a guard delivering once more) are ignored, as the phone ignores them.
  zv::ContentDelivery delivery;
  zv::ZVRichNotification::getLocalNotificationContentForRequest(request, delivery.contentHandler());
  if (!delivery.waitFor(budget)) {
    zv::ZVRichNotification::serviceExtensionTimeWillExpire();
    flow.expired = true;
    delivery.wait();
  }
  flow.content = delivery.content();
  return flow;
}

}  // namespace zvpush
