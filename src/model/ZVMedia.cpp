#include "model/ZVMedia.h"

#include "model/ZVRichNotifUtils.h"

namespace zv {

std::shared_ptr<ZVMedia> ZVMedia::initWithURL(const Value& url, const Value& mediaType) {
  auto media = std::make_shared<ZVMedia>();
  if (url.isNil()) return media;
  media->mediaURL = ZVRichNotifUtils::getURLFromString(std::string(url.string()));
  media->mediaType = mediaType;
  if (media->mediaURL) {
    media->attachmentID = ZVRichNotifUtils::getAttachmentIDForURL(media->mediaURL);
    std::string extension = media->mediaURL->pathExtension();
    if (extension.empty()) {
      std::optional<std::string> type;
      if (!mediaType.isNil()) type = std::string(mediaType.string());
      extension = ZVRichNotifUtils::getDefaultExtensionForMediaType(type);
    }
    media->attachmentExtension = std::move(extension);
  }
  return media;
}

std::string ZVMedia::getFileNameForMedia() const {
  return attachmentID.value_or("attachment") + "." + attachmentExtension.value_or("png");
}

}  // namespace zv
