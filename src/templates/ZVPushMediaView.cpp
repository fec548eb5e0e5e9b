#include "templates/ZVPushMediaView.h"

#include <fstream>
#include <iterator>

#include "model/ZVPushCard.h"
#include "model/ZVPushPayload.h"
#include "model/ZVPushWidget.h"
#include "model/ZVRichNotifUtils.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "platform/foundation/SystemVersion.h"
#include "platform/graphics/UIImage.h"
#include "platform/media/AVPlayerLayer.h"
#include "platform/ui/CALayer.h"
#include "platform/ui/UIColor.h"
#include "platform/ui/UITapGestureRecognizer.h"
#include "templates/ZVRichNotifUtilsContent.h"
#include "templates/ZVRichPushGif.h"
#include "zentrova/UNNotification.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/UNNotificationContent.h"
#include "zentrova/UNNotificationRequest.h"
#include "zentrova/ZVPushTemplateHandler.h"

namespace zv {

namespace {

constexpr double kClipHeight = 220.0;

}  // namespace

void showAttachmentImage(UIImageView& view, const std::string& bytes, bool gif) {
  if (gif) {
    auto animated =
        ZVRichPushGif::animatedImageWithAnimatedGIFData(std::make_shared<const std::string>(bytes));
    if (!animated) return;
    view.setAnimationImages(animated->images());
    view.setAnimationDuration(animated->duration());
    view.setImage(animated->images().back());
    view.startAnimating();
    return;
  }
  view.setImage(UIImage::imageWithData(bytes));
}

std::shared_ptr<UNNotificationAttachment> attachmentForURL(
    const std::shared_ptr<UNNotification>& notification, const std::optional<std::string>& url) {
  auto parsed = ZVRichNotifUtils::getURLFromString(url);
  if (!parsed || !notification || !notification->request()) return nullptr;
  auto expected = ZVRichNotifUtils::getAttachmentIDForURL(parsed);
  for (const auto& attachment : notification->request()->content()->attachments()) {
    if (expected && attachment->identifier() == *expected) return attachment;
  }
  return nullptr;
}

std::optional<std::string> readAttachment(const UNNotificationAttachment& attachment) {
  const Url& url = attachment.URL();
  if (!url.startAccessingSecurityScopedResource()) return std::nullopt;
  std::ifstream in(url.filePath(), std::ios::binary);
  std::optional<std::string> bytes;
  if (in) bytes.emplace((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  url.stopAccessingSecurityScopedResource();
  return bytes;
}

void ZVPushMediaView::configurePushMediaViewWithPayload(
    const std::shared_ptr<ZVPushPayload>& payload,
    const std::shared_ptr<UNNotification>& notification) {
  currentNotif = notification;
  setBackgroundColor(systemVersion() >= 13.0 ? UIColor::systemBackgroundColor()
                                             : UIColor::whiteColor());
  if (payload && payload->richPush) {
    addTapGesture();
    configureViewWithRichPush(payload->richPush);
  } else {
    configureViewWithDefaultPushPayload(payload);
  }
  auto image = imageView.lock();
  if (image && !image->isHidden()) {
    double height = ZVRichNotifUtilsContent::getOptmisedImageHeightFromImage(
        image->image(), static_cast<float>(frame().size.width));
    CGRect f = frame();
    f.size.height = height;
    setFrame(f);
    layoutIfNeeded();
  }
}

void ZVPushMediaView::configureViewWithDefaultPushPayload(
    const std::shared_ptr<ZVPushPayload>& payload) {
  if (!payload || !payload->mediaAttachment.isString()) return;
  std::string url(payload->mediaAttachment.string());
  if (payload->mediaType.isNil() ||
      (payload->mediaType.isString() && payload->mediaType.string() == "image")) {
    addTapGesture();
    addImageToMediaView(url);
    return;
  }
  // Any other media type is a clip.
  auto attachment = getAttachmentForURL(url);
  if (auto image = imageView.lock()) image->setHidden(true);
  if (!attachment || !attachment->URL().startAccessingSecurityScopedResource()) return;
  CGRect f = frame();
  f.size.height = kClipHeight;
  setFrame(f);
  layoutIfNeeded();
  // The access is kept: the player reads the file while it plays.
  auto player = AVPlayer::playerWithPlayerItem(
      AVPlayerItem::playerItemWithAsset(AVAsset::assetWithURL(attachment->URL())));
  auto layer = AVPlayerLayer::playerLayerWithPlayer(player);
  layer->setFrame(bounds());
  layer->setVideoGravity(AVLayerVideoGravity::kResizeAspect);
  player->setActionAtItemEnd(AVPlayerActionAtItemEnd::kNone);
  this->layer()->addSublayer(layer);
  player->play();
}

void ZVPushMediaView::configureViewWithRichPush(const std::shared_ptr<ZVRichPush>& richPush) {
  if (!richPush) return;
  const auto& mode = richPush->expandedMode;
  ColorRef color = mode ? mode->bgColor : nullptr;
  if (color != Color::clear()) setBackgroundColor(color);
  if (!mode || mode->cards.empty()) return;
  const auto& card = mode->cards.front();
  if (!card || card->widgets.empty()) return;
  for (const auto& widget : card->widgets) {
    if (widget && widget->type == ZVPushWidgetType::Image) {
      addImageToMediaView(widget->content.isString()
                              ? std::optional<std::string>(std::string(widget->content.string()))
                              : std::nullopt);
      return;
    }
  }
  addImageToMediaView(std::nullopt);
}

void ZVPushMediaView::addImageToMediaView(const std::optional<std::string>& urlString) {
  if (!urlString) return;
  auto attachment = getAttachmentForURL(urlString);
  if (!attachment) return;
  auto bytes = readAttachment(*attachment);
  auto image = imageView.lock();
  if (!bytes || !image) return;
  showAttachmentImage(*image, *bytes, ZVRichNotifUtils::isImageGifWithURL(attachment->URL()));
}

void ZVPushMediaView::addTapGesture() {
  addGestureRecognizer(
      UITapGestureRecognizer::make([this](UITapGestureRecognizer&) { viewTapped(); }));
}

void ZVPushMediaView::viewTapped() {
  if (systemVersion() >= 12.0) ZVPushTemplateHandler::sharedInstance().performDefaultAction();
}

std::shared_ptr<UNNotificationAttachment> ZVPushMediaView::getAttachmentForURL(
    const std::optional<std::string>& urlString) const {
  return attachmentForURL(currentNotif, urlString);
}

}  // namespace zv
