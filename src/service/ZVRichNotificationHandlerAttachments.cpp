// The media stage of ZVRichNotificationHandler: every media item of a notification is downloaded
// side by side and made into an attachment.
#include <fmt/format.h>

#include "model/ZVMedia.h"
#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/OperationQueue.h"
#include "reporting/ZVExtensionNetworkManager.h"
#include "service/MediaDownloads.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Exception.h"

namespace zv {

void ZVRichNotificationHandler::getAttachmentsForNotification(
    const std::shared_ptr<ZVPushPayload>& payload,
    std::function<void(const Attachments&)> completion) {
  downloadAttachments(getMediaURLsFromPayload(payload), std::move(completion));
}

std::shared_ptr<MediaDownloads> ZVRichNotificationHandler::downloadAttachments(
    const std::vector<std::shared_ptr<ZVMedia>>& media,
    std::function<void(const Attachments&)> completion) {
  if (media.empty()) {
    completion({});
    return nullptr;
  }
  // All downloads of the notification run at once.
  imageDownloadOperationQueue->setMaxConcurrentOperationCount(static_cast<int>(media.size()));
  auto batch = std::make_shared<MediaDownloads>(media.size(), std::move(completion));
  for (const auto& item : media) {
    imageDownloadOperationQueue->addOperationWithBlock([item, batch] {
      try {
        batch->started(ZVExtensionNetworkManager::sharedManager().downloadMedia(
            item, [batch](bool, const std::shared_ptr<UNNotificationAttachment>& attachment) {
              batch->finish(attachment);
            }));
      } catch (const Exception& e) {
        // A download that cannot start counts as failed, so the notification is still delivered.
        ZVRichNotifUtils::logWithMessage(fmt::format(
            "Exception in downloading attachment Rich notification : {}", e.description()));
        batch->finish(nullptr);
      }
    });
  }
  return batch;
}

}  // namespace zv
