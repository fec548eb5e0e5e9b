// zv::ZVPushMediaView shows the one media item of a notification: a still image, an animated GIF
// (its frames playing, its last frame as the still image) or an audio or video clip played in
// place. It finds the media among the notification's attachments, sizes its height to the image's
// aspect at its width (220 points for a clip), and opens the application when an image is tapped.
// Its image view comes from the interface "ZVPushMediaView". Main thread only.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/ui/UIImageView.h"
#include "zentrova/UIView.h"

namespace zv {

class UNNotification;
class UNNotificationAttachment;
class ZVPushPayload;
class ZVRichPush;

class ZVPushMediaView : public UIView {
 public:
  using UIView::UIView;
  std::string className() const override { return "ZVPushMediaView"; }

  void configurePushMediaViewWithPayload(const std::shared_ptr<ZVPushPayload>& payload,
                                         const std::shared_ptr<UNNotification>& notification);
  void configureViewWithDefaultPushPayload(const std::shared_ptr<ZVPushPayload>& payload);
  void configureViewWithRichPush(const std::shared_ptr<ZVRichPush>& richPush);
  void addImageToMediaView(const std::optional<std::string>& urlString);
  void addTapGesture();
  void viewTapped();
  std::shared_ptr<UNNotificationAttachment> getAttachmentForURL(
      const std::optional<std::string>& urlString) const;

  std::weak_ptr<UIImageView> imageView;  // outlet
  std::shared_ptr<UNNotification> currentNotif;
};

// The notification's attachment for a media URL string (the one whose identifier is the URL's
// MD5), or nullptr; shared by the media view and the carousel.
std::shared_ptr<UNNotificationAttachment> attachmentForURL(
    const std::shared_ptr<UNNotification>& notification, const std::optional<std::string>& url);
// Shows an attachment's bytes in an image view: a GIF's frames animating with its last frame as
// the still image, or a still image.
void showAttachmentImage(UIImageView& view, const std::string& bytes, bool gif);
// The bytes of an attachment's file read under security-scoped access (started and stopped here),
// or nullopt when access is refused or the file cannot be read.
std::optional<std::string> readAttachment(const UNNotificationAttachment& attachment);

}  // namespace zv
