#include "payload/ContentOnlyFlow.h"

#include <future>
#include <mutex>

#include "platform/net/UrlSession.h"
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
  auto delivered = std::make_shared<std::promise<std::shared_ptr<zv::UNNotificationContent>>>();
  auto once = std::make_shared<std::once_flag>();
  auto future = delivered->get_future();
  zv::ZVRichNotification::getLocalNotificationContentForRequest(
      request, [delivered, once](const std::shared_ptr<zv::UNNotificationContent>& c) {
        std::call_once(*once, [&] { delivered->set_value(c); });
      });
  if (future.wait_for(budget) != std::future_status::ready) {
    zv::ZVRichNotification::serviceExtensionTimeWillExpire();
    flow.expired = true;
  }
  flow.content = future.get();
  return flow;
}

}  // namespace zvpush
