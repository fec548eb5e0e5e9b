// The request flows and the badge rule of ZVRichNotificationHandler.
#include <fmt/format.h>

#include <mutex>

#include "model/ZVPushPayload.h"
#include "model/ZVRichNotifUtils.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "platform/notifications/UNUserNotificationCenter.h"
#include "reporting/ZVExtensionNetworkManager.h"
#include "service/MediaDownloads.h"
#include "service/ServicePlan.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Exception.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotificationRequest.h"
#include "zentrova/ZVExtensionDataManager.h"

namespace zv {

namespace {

constexpr char kEventReceived[] = "NOTIFICATION_RECEIVED_IOS_ZOV";
constexpr char kEventShown[] = "ZOV_NOTIFICATION_SHOWN";

void logException(const char* prefix, const Exception& e) {
  ZVRichNotifUtils::logWithMessage(prefix + e.description());
}

}  // namespace

// The content handler of one request, called exactly once: by the flow when it ends, or earlier by
// the time budget with what is ready then.
struct ZVRichNotificationHandler::Delivery {
  std::mutex mutex;
  bool done = false;
  std::shared_ptr<UNMutableNotificationContent> content;
  ContentHandler handler;
  std::shared_ptr<MediaDownloads> downloads;

  Delivery(std::shared_ptr<UNMutableNotificationContent> c, ContentHandler h)
      : content(std::move(c)), handler(std::move(h)) {}

  bool isDone() {
    std::lock_guard lock(mutex);
    return done;
  }
  void setDownloads(std::shared_ptr<MediaDownloads> running) {
    std::lock_guard lock(mutex);
    downloads = std::move(running);
  }
  // The flow's end.
  void deliver() {
    {
      std::lock_guard lock(mutex);
      if (done) return;
      done = true;
      downloads.reset();  // their completion holds this delivery
    }
    handler(content);
  }
  // The budget's end: a copy of the content as it stands, with the attachments finished so far;
  // the downloads still running are stopped.
  void expire() {
    std::shared_ptr<UNMutableNotificationContent> best;
    std::shared_ptr<MediaDownloads> running;
    {
      std::lock_guard lock(mutex);
      if (done) return;
      done = true;
      best = content->mutableCopy();
      running = std::move(downloads);
    }
    if (running) {
      auto attachments = running->finishedSoFar();
      if (!attachments.empty()) best->setAttachments(attachments);
      running->stop();
    }
    handler(best);
  }
};

void ZVRichNotificationHandler::serviceExtensionTimeWillExpire() {
  std::vector<std::shared_ptr<Delivery>> pending;
  {
    std::lock_guard lock(mutex_);
    for (const auto& weak : inFlight_) {
      if (auto delivery = weak.lock()) pending.push_back(delivery);
    }
    inFlight_.clear();
  }
  for (const auto& delivery : pending) delivery->expire();
}

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
  auto delivery = std::make_shared<Delivery>(content, std::move(contentHandler));
  {
    std::lock_guard lock(mutex_);
    std::erase_if(inFlight_, [](const auto& weak) { return weak.expired(); });
    inFlight_.push_back(delivery);
  }
  try {
    if (!plan.payload) {
      if (plan.failure) ZVRichNotifUtils::logWithMessage(plan.guardMessage(flow));
      delivery->deliver();
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
      delivery->deliver();
      return;
    }
    auto downloads = downloadAttachments(
        plan.media, [content, payload, full, delivery](const Attachments& attachments) {
          // Once the budget has delivered, the extension is ending: nothing more is done.
          if (delivery->isDone()) return;
          try {
            if (!attachments.empty()) content->setAttachments(attachments);
            if (!full) {
              delivery->deliver();
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
                [delivery](bool) { delivery->deliver(); });
          } catch (const Exception& e) {
            logException("Exception while getting attachments: ", e);
            delivery->deliver();
          }
        });
    delivery->setDownloads(std::move(downloads));
  } catch (const Exception& e) {
    plan.failure = e.description();
    ZVRichNotifUtils::logWithMessage(plan.guardMessage(flow));
    delivery->deliver();
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
