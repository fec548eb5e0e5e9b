// A preview of any payload with any attachment bytes. The input is the payload's text up to the
// first NUL byte; the bytes after it become the file of every media item the service would
// download for that payload. The notification is laid out as the content extension shows it,
// played for 7 seconds of its run loop (the carousel pages, GIFs run), tapped in its middle and
// drawn.
#include <fstream>

#include "FuzzInput.h"
#include "model/ZVMedia.h"
#include "platform/graphics/PixelBuffer.h"
#include "platform/text/PangoTextMeasurer.h"
#include "platform/ui/NSBundle.h"
#include "platform/ui/RunLoop.h"
#include "platform/ui/UITapGestureRecognizer.h"
#include "resources/ZVInterfaceFiles.h"
#include "service/ServicePlan.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Error.h"
#include "zentrova/Exception.h"
#include "zentrova/Platform.h"
#include "zentrova/Renderer.h"
#include "zentrova/UIViewController.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotification.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/UNNotificationRequest.h"
#include "zentrova/ZVExtensionDataManager.h"
#include "zentrova/ZVPushTemplateHandler.h"

namespace {

std::shared_ptr<zv::ManualRunLoop> setUp() {
  auto loop = std::make_shared<zv::ManualRunLoop>();
  zv::RunLoop::setCurrent(loop);
  zv::Platform::shared().setStoreDirectory(zvfuzz::scratch() / "store");
  zv::Platform::shared().setTemporaryDirectory(zvfuzz::scratch());
  zv::ZVExtensionDataManager::sharedManager().setAppGroupID("group.fuzz");
  zv::ZVInterfaceFiles::registerWithBundle(zv::NSBundle::mainBundle(),
                                           std::make_shared<zv::PangoTextMeasurer>());
  return loop;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::shared_ptr<zv::ManualRunLoop> loop = setUp();
  std::string input = zvfuzz::text(data, size);
  std::size_t split = input.find('\0');
  std::string bytes = split == std::string::npos ? "" : input.substr(split + 1);
  zv::Value payload;
  try {
    payload = zv::Value::parse(input.substr(0, split));
  } catch (const zv::Exception&) {
    return 0;
  }
  if (!payload.isObject()) return 0;

  // What the service would deliver: the rewritten content, each media item attached with the
  // bytes when they make an attachment.
  auto request = zv::UNNotificationRequest::requestWithRemoteNotification("fuzz", payload);
  auto plan = zv::ServicePlan::make(zv::ZVRichNotificationHandler::sharedHandler(), request, false);
  std::vector<std::shared_ptr<zv::UNNotificationAttachment>> attachments;
  for (const auto& media : plan.media) {
    auto file = zvfuzz::scratch() / media->getFileNameForMedia();
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
    zv::Error error;
    auto attachment = zv::UNNotificationAttachment::attachmentWithIdentifier(
        media->attachmentID.value_or(""), zv::Url::fileUrl(file), zv::Value(), &error);
    if (attachment) attachments.push_back(attachment);
  }
  plan.content->setAttachments(attachments);
  auto notification = zv::UNNotification::notificationWithRequest(
      zv::UNNotificationRequest::requestWithIdentifier("fuzz", plan.content), 0);

  auto controller = std::make_shared<zv::UIViewController>();
  controller->setView(zv::UIView::make({{0, 0}, {320, 0}}));
  zv::ZVPushTemplateHandler::sharedInstance().addPushTemplateToController(controller, notification);
  const auto& root = controller->view();
  root->layoutIfNeeded();
  loop->advance(7);
  root->layoutIfNeeded();
  zv::CGRect frame = root->frame();
  zv::UITapGestureRecognizer::deliverTap(root, {frame.size.width / 2, frame.size.height / 2});
  root->layoutIfNeeded();
  auto pixels = zv::Renderer(1).draw(*root);
  ZV_FUZZ_CHECK(!pixels || pixels->width > 0);
  return 0;
}
