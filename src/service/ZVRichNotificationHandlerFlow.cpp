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

// One request in flight: its working content, its content handler and its running downloads. The
// flow calls the handler through deliver() at each of its ends, every time it gets there: the flow
// keeps no flag of an earlier delivery, so a guard that catches an exception raised by the handler
// itself calls it again, and a flow that ends after the time budget has delivered calls it again.
// What becomes of a repeated call is the system's business (the notification is already shown).
struct ZVRichNotificationHandler::InFlight {
  std::mutex mutex;
  std::shared_ptr<UNMutableNotificationContent> content;
  ContentHandler handler;
  std::shared_ptr<MediaDownloads> downloads;

  InFlight(std::shared_ptr<UNMutableNotificationContent> c, ContentHandler h)
      : content(std::move(c)), handler(std::move(h)) {}

  void setDownloads(std::shared_ptr<MediaDownloads> running) {
    std::lock_guard lock(mutex);
    downloads = std::move(running);
  }
  // An end of the flow: the working content.
  void deliver() {
    {
      std::lock_guard lock(mutex);
      downloads.reset();  // their completion holds this request
    }
    handler(content);
  }
  // The budget's end: a copy of the content as it stands, with the attachments finished so far.
  // Then the downloads still running are stopped; each counts as failed, so the flow goes on to
  // its own end with what finished, after this call.
  void expire() {
    std::shared_ptr<UNMutableNotificationContent> best;
    std::shared_ptr<MediaDownloads> running;
    {
      std::lock_guard lock(mutex);
      best = content->mutableCopy();
      running = std::move(downloads);
    }
    if (running) {
      auto attachments = running->finishedSoFar();
      if (!attachments.empty()) best->setAttachments(attachments);
    }
    handler(best);
    if (running) running->stop();
  }
};

// The budget delivers each request still in flight once; a request leaves the list when its flow
// reaches an end (see deliver) or when the budget has delivered it.
void ZVRichNotificationHandler::serviceExtensionTimeWillExpire() {
  std::vector<std::shared_ptr<InFlight>> pending;
  {
    std::lock_guard lock(mutex_);
    for (const auto& weak : inFlight_) {
      if (auto flight = weak.lock()) pending.push_back(flight);
    }
    inFlight_.clear();
  }
  for (const auto& flight : pending) flight->expire();
}

void ZVRichNotificationHandler::deliver(const std::shared_ptr<InFlight>& flight) {
  {
    std::lock_guard lock(mutex_);
    std::erase_if(inFlight_, [&](const auto& weak) {
      auto held = weak.lock();
      return !held || held == flight;
    });
  }
  flight->deliver();
}

void ZVRichNotificationHandler::handleRichNotificationRequest(
    const std::shared_ptr<UNNotificationRequest>& request, ContentHandler contentHandler) {
  runRequestFlow(request, true, std::move(contentHandler));
}

void ZVRichNotificationHandler::getLocalNotificationContentForRequest(
    const std::shared_ptr<UNNotificationRequest>& request, ContentHandler completionHandler) {
  runRequestFlow(request, false, std::move(completionHandler));
}

// Every path ends in a call of the content handler: the plan's early ends, the guard of the
// synchronous part, the completion of the downloads with its own guard, and the report's
// completion. A guard that catches an exception raised by the handler calls it once more.
void ZVRichNotificationHandler::runRequestFlow(
    const std::shared_ptr<UNNotificationRequest>& request, bool full,
    ContentHandler contentHandler) {
  const auto flow = full ? ServicePlan::Flow::kFull : ServicePlan::Flow::kContentOnly;
  ServicePlan plan = ServicePlan::make(*this, request, true);
  auto content = plan.content;
  auto flight = std::make_shared<InFlight>(content, std::move(contentHandler));
  {
    std::lock_guard lock(mutex_);
    std::erase_if(inFlight_, [](const auto& weak) { return weak.expired(); });
    inFlight_.push_back(flight);
  }
  try {
    if (!plan.payload) {
      if (plan.failure) ZVRichNotifUtils::logWithMessage(plan.guardMessage(flow));
      deliver(flight);
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
      deliver(flight);
      return;
    }
    auto downloads = downloadAttachments(
        plan.media, [this, content, payload, full, flight](const Attachments& attachments) {
          try {
            if (!attachments.empty()) content->setAttachments(attachments);
            if (!full) {
              deliver(flight);
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
                [this, flight](bool) { deliver(flight); });
          } catch (const Exception& e) {
            logException("Exception while getting attachments: ", e);
            deliver(flight);
          }
        });
    flight->setDownloads(std::move(downloads));
  } catch (const Exception& e) {
    plan.failure = e.description();
    ZVRichNotifUtils::logWithMessage(plan.guardMessage(flow));
    deliver(flight);
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
