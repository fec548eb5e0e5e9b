// The media stage of ZVRichNotificationHandler: every media item of a notification is downloaded
// side by side and made into an attachment.
#include <fmt/format.h>

#include <mutex>

#include "model/ZVMedia.h"
#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/Exception.h"
#include "platform/foundation/Log.h"
#include "platform/foundation/OperationQueue.h"
#include "reporting/ZVExtensionNetworkManager.h"
#include "service/ZVRichNotificationHandler.h"

namespace zv {

namespace {

// What the downloads of one notification share until the last one finishes. Completions normally
// arrive one at a time on the URL session's delegate thread, but a download that cannot even start
// is counted from the queue's thread, so the counter, the list and the final check are guarded
// together.
struct DownloadBatch {
  std::mutex mutex;
  std::size_t finished = 0;
  std::size_t total = 0;
  ZVRichNotificationHandler::Attachments results;
  std::function<void(const ZVRichNotificationHandler::Attachments&)> completion;

  void finish(const std::shared_ptr<UNNotificationAttachment>& attachment) {
    std::unique_lock lock(mutex);
    ++finished;
    if (attachment) {
      results.push_back(attachment);
    } else {
      log::system("Attachment Download failure");
    }
    if (finished < total) return;
    ZVRichNotificationHandler::Attachments done = results;
    lock.unlock();
    completion(done);
  }
};

}  // namespace

void ZVRichNotificationHandler::getAttachmentsForNotification(
    const std::shared_ptr<ZVPushPayload>& payload,
    std::function<void(const Attachments&)> completion) {
  downloadAttachments(getMediaURLsFromPayload(payload), std::move(completion));
}

void ZVRichNotificationHandler::downloadAttachments(
    const std::vector<std::shared_ptr<ZVMedia>>& media,
    std::function<void(const Attachments&)> completion) {
  if (media.empty()) {
    completion({});
    return;
  }
  // All downloads of the notification run at once.
  imageDownloadOperationQueue->setMaxConcurrentOperationCount(static_cast<int>(media.size()));
  auto batch = std::make_shared<DownloadBatch>();
  batch->total = media.size();
  batch->completion = std::move(completion);
  for (const auto& item : media) {
    imageDownloadOperationQueue->addOperationWithBlock([item, batch] {
      try {
        ZVExtensionNetworkManager::sharedManager().downloadMedia(
            item, [batch](bool, const std::shared_ptr<UNNotificationAttachment>& attachment) {
              batch->finish(attachment);
            });
      } catch (const Exception& e) {
        // A download that cannot start counts as failed, so the notification is still delivered.
        ZVRichNotifUtils::logWithMessage(fmt::format(
            "Exception in downloading attachment Rich notification : {}", e.description()));
        batch->finish(nullptr);
      }
    });
  }
}

}  // namespace zv
