#include "service/ZVRichNotificationHandler.h"

#include <algorithm>
#include <string>

#include "model/PayloadKeys.h"
#include "model/ZVMedia.h"
#include "model/ZVPushCard.h"
#include "model/ZVPushPayload.h"
#include "model/ZVPushWidget.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "platform/foundation/OperationQueue.h"
#include "platform/notifications/NotificationCenter.h"
#include "zentrova/Platform.h"

namespace zv {

ZVRichNotificationHandler::ZVRichNotificationHandler()
    : imageDownloadOperationQueue(std::make_shared<OperationQueue>()) {}

namespace {
std::mutex sharedMutex;
bool sharedConfigured = false;
}  // namespace

ZVRichNotificationHandler& ZVRichNotificationHandler::sharedHandler() {
  static ZVRichNotificationHandler* handler = new ZVRichNotificationHandler();
  std::lock_guard lock(sharedMutex);
  if (!sharedConfigured) {
    handler->setNotificationCenter(Platform::shared().notificationCenter());
    sharedConfigured = true;
  }
  return *handler;
}

void ZVRichNotificationHandler::resetSharedHandler() {
  std::lock_guard lock(sharedMutex);
  sharedConfigured = false;
}

std::shared_ptr<NotificationCenter> ZVRichNotificationHandler::notificationCenter() const {
  std::lock_guard lock(mutex_);
  return notificationCenter_;
}

void ZVRichNotificationHandler::setNotificationCenter(std::shared_ptr<NotificationCenter> center) {
  std::lock_guard lock(mutex_);
  notificationCenter_.swap(center);
}

std::vector<std::shared_ptr<ZVMedia>> ZVRichNotificationHandler::getMediaURLsFromPayload(
    const std::shared_ptr<ZVPushPayload>& payload) const {
  std::vector<std::shared_ptr<ZVMedia>> result;
  if (!payload) return result;
  const auto& richPush = payload->richPush;
  if (richPush && richPush->expandedMode) {
    // The card path: a rich push always has a card list, so the top-level media only counts for a
    // notification without rich push.
    std::vector<std::string> seen;
    for (const auto& card : richPush->expandedMode->cards) {
      for (const auto& widget : card->widgets) {
        if (widget->type != ZVPushWidgetType::Image || widget->content.isNil()) continue;
        auto media = ZVMedia::initWithURL(widget->content, kPushPayloadValWidgetTypeImage);
        if (!media->mediaURL) continue;
        if (std::find(seen.begin(), seen.end(), *media->attachmentID) != seen.end()) continue;
        seen.push_back(*media->attachmentID);
        result.push_back(std::move(media));
      }
    }
    return result;
  }
  const Value& url = payload->mediaAttachment;
  if (!url.isNil() && !url.string().empty()) {
    auto media = ZVMedia::initWithURL(url, payload->mediaType);
    if (media->mediaURL) result.push_back(std::move(media));
  }
  return result;
}

}  // namespace zv
