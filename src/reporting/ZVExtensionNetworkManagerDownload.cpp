// ZVExtensionNetworkManager's media download: one download task per media item, whose file becomes
// a notification attachment inside the task's completion (the file is only there until it returns).
#include <fmt/format.h>

#include "model/ZVMedia.h"
#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/FileManager.h"
#include "platform/net/UrlSession.h"
#include "reporting/ZVExtensionNetworkManager.h"
#include "zentrova/Exception.h"
#include "zentrova/UNNotificationAttachment.h"

namespace zv {

std::shared_ptr<UrlSessionTask> ZVExtensionNetworkManager::downloadMedia(
    const std::shared_ptr<ZVMedia>& media,
    std::function<void(bool, std::shared_ptr<UNNotificationAttachment>)> completion) {
  auto session = getZoVURLSession();
  if (!media || !media->mediaURL) {
    throw Exception(Exception::kInvalidArgument, "a media item without URL cannot be downloaded");
  }
  // A body larger than any attachment may be is stopped: it could never become one, and the
  // extension has neither the memory nor the time to spare.
  auto task = session->downloadTaskWithURL(
      *media->mediaURL,
      [media, completion, files = FileManager(session->configuration().temporaryDirectory)](
          std::optional<Url> location, std::shared_ptr<HttpUrlResponse> response,
          std::optional<Error> error) {
        try {
          long status = response ? response->statusCode() : 0;
          if (location && !error && status == 200) {
            auto attachment = ZVRichNotifUtils::createWithID(
                media->attachmentID.value_or(""), media->getFileNameForMedia(), *location, files);
            if (attachment) {
              completion(true, attachment);
            } else {
              ZVRichNotifUtils::logWithMessage("Unable to create attachment");
              completion(false, nullptr);
            }
          } else if (status == 200 && error && error->code == UrlSession::kBodyTooLargeError) {
            // The server answered; its file is only too large to be an attachment.
            ZVRichNotifUtils::logWithMessage("Unable to create attachment");
            completion(false, nullptr);
          } else {
            completion(false, nullptr);
          }
        } catch (const Exception& e) {
          ZVRichNotifUtils::logWithMessage(fmt::format(
              "Exception in downloading attachment Rich notification : {}", e.description()));
          completion(false, nullptr);
        }
      },
      UNNotificationAttachment::kMaxAttachmentBytes);
  task->resume();
  return task;
}

}  // namespace zv
