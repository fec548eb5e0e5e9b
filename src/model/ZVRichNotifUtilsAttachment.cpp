// ZVRichNotifUtils: making a notification attachment from a downloaded file.

#include <fmt/format.h>

#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/FileManager.h"
#include "zentrova/Exception.h"
#include "zentrova/UNNotificationAttachment.h"

namespace zv {

std::shared_ptr<UNNotificationAttachment> ZVRichNotifUtils::createWithID(
    const std::string& identifier, const std::string& name, const Url& temporaryLocation) {
  return createWithID(identifier, name, temporaryLocation, FileManager::defaultManager());
}

std::shared_ptr<UNNotificationAttachment> ZVRichNotifUtils::createWithID(
    const std::string& identifier, const std::string& name, const Url& temporaryLocation,
    const FileManager& fileManager) {
  try {
    Url directory = Url::fileUrl(fileManager.temporaryDirectory().filePath() / "Attachments");
    Error error;
    // Design note: when the attachments directory cannot be made there is nothing to attach to,
    // so no attachment is made; this failure is deliberately not logged.
    if (!fileManager.createDirectoryAtURL(directory, true, &error)) return nullptr;

    // The download is moved, not copied; a file of the same name from an earlier notification
    // with the same URL is replaced.
    Url target = Url::fileUrl(directory.filePath() / name);
    if (!fileManager.replaceItemAtURL(target, temporaryLocation, &error)) {
      logWithMessage(fmt::format("{}", error.description()));
      return nullptr;
    }
    auto attachment =
        UNNotificationAttachment::attachmentWithIdentifier(identifier, target, Value(), &error);
    if (!attachment) {
      logWithMessage(fmt::format("{}", error.description()));
      return nullptr;
    }
    return attachment;
  } catch (const Exception& e) {
    logWithMessage(fmt::format("Exception Rich notification : {}", e.description()));
    return nullptr;
  }
}

}  // namespace zv
