#include "service/ZVRichNotificationHandler.h"

#include <algorithm>
#include <string>

#include "model/PayloadKeys.h"
#include "model/ZVPushCard.h"
#include "model/ZVPushPayload.h"
#include "model/ZVPushWidget.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "platform/foundation/OperationQueue.h"
#include "service/ZVMedia.h"

namespace zv {

ZVRichNotificationHandler::ZVRichNotificationHandler()
    : imageDownloadOperationQueue(std::make_shared<OperationQueue>()) {}

ZVRichNotificationHandler& ZVRichNotificationHandler::sharedHandler() {
  static ZVRichNotificationHandler* handler = new ZVRichNotificationHandler();
  return *handler;
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
