// The request flows and the badge rule of ZVRichNotificationHandler.
#include <fmt/format.h>

#include "model/ZVPushPayload.h"
#include "model/ZVRichNotifUtils.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "platform/foundation/Exception.h"
#include "platform/notifications/UNMutableNotificationContent.h"
#include "platform/notifications/UNNotificationRequest.h"
#include "platform/notifications/UNUserNotificationCenter.h"
#include "reporting/ZVExtensionNetworkManager.h"
#include "service/ServicePlan.h"
#include "service/ZVRichNotificationHandler.h"
#include "store/ZVExtensionDataManager.h"

namespace zv {

namespace {

constexpr char kEventReceived[] = "NOTIFICATION_RECEIVED_IOS_ZOV";
constexpr char kEventShown[] = "ZOV_NOTIFICATION_SHOWN";

void logException(const char* prefix, const Exception& e) {
  ZVRichNotifUtils::logWithMessage(prefix + e.description());
}

}  // namespace

void ZVRichNotificationHandler::handleRichNotificationRequest(
    const std::shared_ptr<UNNotificationRequest>& request, ContentHandler contentHandler) {
  runRequestFlow(request, true, std::move(contentHandler));
}

void ZVRichNotificationHandler::getLocalNotificationContentForRequest(
    const std::shared_ptr<UNNotificationRequest>& request, ContentHandler completionHandler) {
  runRequestFlow(request, false, std::move(completionHandler));
}

// Every path ends in exactly one call of the content handler: the plan's early ends, the guard of
// the synchronous part, and the completion of the downloads with its own guard.
void ZVRichNotificationHandler::runRequestFlow(
    const std::shared_ptr<UNNotificationRequest>& request, bool full,
    ContentHandler contentHandler) {
  const auto flow = full ? ServicePlan::Flow::kFull : ServicePlan::Flow::kContentOnly;
  ServicePlan plan = ServicePlan::make(*this, request, true);
  auto content = plan.content;
  try {
    if (!plan.payload) {
      if (plan.failure) ZVRichNotifUtils::logWithMessage(plan.guardMessage(flow));
      contentHandler(content);
      return;
    }
    auto payload = plan.payload;
    if (full) {
      auto& store = ZVExtensionDataManager::sharedManager();
      store.configureDataManagerWithAppID(payload->zovAppId);
      store.saveReceivedNotificationWithPayload(payload->pushPayloadDict);
      store.saveEvent(kEventReceived, payload);
    }
    if (plan.failure) {
      ZVRichNotifUtils::logWithMessage(plan.guardMessage(flow));
      contentHandler(content);
      return;
    }
    downloadAttachments(
        plan.media, [content, payload, full, contentHandler](const Attachments& attachments) {
          try {
            if (!attachments.empty()) content->setAttachments(attachments);
            if (!full) {
              contentHandler(content);
              return;
            }
            const auto& rich = payload->richPush;
            if (rich && rich->expandedMode &&
                rich->expandedMode->templateType != ZVRichPushTemplateType::Invalid) {
              ZVExtensionDataManager::sharedManager().saveEvent(kEventShown, payload);
            }
            // Delivery waits for the report: the notification shows once the request has finished,
            // failed or been skipped.
            ZVExtensionNetworkManager::sharedManager().flushEventsWithCompletionBlock(
                [content, contentHandler](bool) { contentHandler(content); });
          } catch (const Exception& e) {
            logException("Exception while getting attachments: ", e);
            contentHandler(content);
          }
        });
  } catch (const Exception& e) {
    plan.failure = e.description();
    ZVRichNotifUtils::logWithMessage(plan.guardMessage(flow));
    contentHandler(content);
  }
}

void ZVRichNotificationHandler::updateBadgeWithNotificationContent(
    const std::shared_ptr<UNMutableNotificationContent>& content) {
  try {
    if (!content) return;
    Value badge = content->badge();
    if (badge.isNil() || badge.integerValue() != 1) return;
    // Not awaited: the new badge lands whenever the center answers; if the content was handed back
    // before that, the change is lost for this notification.
    UNUserNotificationCenter(notificationCenter())
        .getDeliveredNotificationsWithCompletionHandler(
            [content](const NotificationCenter::Notifications& delivered) {
              content->setBadge(
                  Value(boost::json::value(static_cast<std::int64_t>(delivered.size()) + 1)));
            });
  } catch (const Exception& e) {
    logException("Exception in updating badge count : ", e);
  }
}

}  // namespace zv
