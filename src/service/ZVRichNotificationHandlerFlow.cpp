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
#include "service/ZVRichNotificationHandler.h"
#include "store/ZVExtensionDataManager.h"

namespace zv {

namespace {

constexpr char kEventReceived[] = "NOTIFICATION_RECEIVED_IOS_ZOV";
constexpr char kEventShown[] = "ZOV_NOTIFICATION_SHOWN";

void logException(const char* prefix, const Exception& e) {
  ZVRichNotifUtils::logWithMessage(prefix + e.description());
}

// The steps both flows share: the first envelope, the badge rule and both rewrites, then the
// second envelope built from the rewritten user info (everything stored and downloaded from here
// on comes from it). nullptr when the notification is not Zentrova's.
std::shared_ptr<ZVPushPayload> rewrite(
    ZVRichNotificationHandler& handler,
    const std::shared_ptr<UNMutableNotificationContent>& content) {
  auto first = ZVPushPayload::initWithPushPayload(content->userInfo());
  if (!first->shouldProcessPushNotification()) return nullptr;
  handler.updateBadgeWithNotificationContent(content);
  handler.updateNotificationContent(content, first->richPush);
  handler.updateNotificationDefaultActions(content, first->richPush);
  return ZVPushPayload::initWithPushPayload(content->userInfo());
}

}  // namespace

void ZVRichNotificationHandler::handleRichNotificationRequest(
    const std::shared_ptr<UNNotificationRequest>& request, ContentHandler contentHandler) {
  std::shared_ptr<UNMutableNotificationContent> content = request->content()->mutableCopy();
  try {
    auto payload = rewrite(*this, content);
    if (!payload) {
      contentHandler(content);
      return;
    }
    auto& store = ZVExtensionDataManager::sharedManager();
    store.configureDataManagerWithAppID(payload->zovAppId);
    store.saveReceivedNotificationWithPayload(payload->pushPayloadDict);
    store.saveEvent(kEventReceived, payload);
    getAttachmentsForNotification(
        payload, [content, payload, contentHandler](const Attachments& attachments) {
          try {
            if (!attachments.empty()) content->setAttachments(attachments);
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
    logException("Exception in creating attachment Rich notification: ", e);
    contentHandler(content);
  }
}

void ZVRichNotificationHandler::getLocalNotificationContentForRequest(
    const std::shared_ptr<UNNotificationRequest>& request, ContentHandler completionHandler) {
  std::shared_ptr<UNMutableNotificationContent> content = request->content()->mutableCopy();
  try {
    auto payload = rewrite(*this, content);
    if (!payload) {
      completionHandler(content);
      return;
    }
    getAttachmentsForNotification(payload,
                                  [content, completionHandler](const Attachments& attachments) {
                                    try {
                                      if (!attachments.empty())
                                        content->setAttachments(attachments);
                                      completionHandler(content);
                                    } catch (const Exception& e) {
                                      logException("Exception while getting attachments: ", e);
                                      completionHandler(content);
                                    }
                                  });
  } catch (const Exception& e) {
    logException("Exception in creating attachment Rich notification : ", e);
    completionHandler(content);
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
