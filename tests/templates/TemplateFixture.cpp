#include "templates/TemplateFixture.h"

#include <fstream>

#include "model/ZVRichNotifUtils.h"
#include "platform/graphics/PixelBuffer.h"
#include "platform/graphics/PngWriter.h"
#include "platform/ui/NSBundle.h"
#include "resources/ZVInterfaceFiles.h"
#include "support/GifBytes.h"
#include "zentrova/Error.h"
#include "zentrova/Platform.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotification.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/UNNotificationRequest.h"
#include "zentrova/Url.h"
#include "zentrova/ZVExtensionDataManager.h"
#include "zentrova/ZVPushTemplateHandler.h"

namespace zvtest {

namespace json = boost::json;

TemplateFixture::TemplateFixture() {
  previousLoop = zv::RunLoop::setCurrent(loop);
  zv::ZVInterfaceFiles::registerWithBundle(zv::NSBundle::mainBundle(), measurer);
  zv::Platform::shared().setStoreDirectory(dir.path() / "store");
  zv::ZVExtensionDataManager::sharedManager().setAppGroupID("group.templates");
}

TemplateFixture::~TemplateFixture() { zv::RunLoop::setCurrent(previousLoop); }

void TemplateFixture::hideDefaultContent(bool hidden) {
  zv::NSBundle::mainBundle().setInfoDictionary(zv::Value(json::object{
      {"NSExtension",
       json::object{{"NSExtensionAttributes",
                     json::object{{"UNNotificationExtensionDefaultContentHidden", hidden}}}}}}));
}

std::shared_ptr<zv::UNNotification> TemplateFixture::notification(
    const json::object& payload, const std::map<std::string, std::string>& files) {
  auto request = zv::UNNotificationRequest::requestWithRemoteNotification("n", zv::Value(payload));
  auto content = request->content()->mutableCopy();
  std::vector<std::shared_ptr<zv::UNNotificationAttachment>> attachments;
  int i = 0;
  for (const auto& [url, bytes] : files) {
    auto path = dir.path() /
                ("attachment" + std::to_string(i++) + "." + zv::Url::parse(url)->pathExtension());
    std::ofstream(path, std::ios::binary) << bytes;
    zv::Error error;
    auto id = zv::ZVRichNotifUtils::getAttachmentIDForURL(zv::Url::parse(url));
    auto attachment = zv::UNNotificationAttachment::attachmentWithIdentifier(
        *id, zv::Url::fileUrl(path), zv::Value(), &error);
    EXPECT_TRUE(attachment) << url << ": " << error.localizedDescription;
    if (attachment) attachments.push_back(attachment);
  }
  content->setAttachments(attachments);
  return zv::UNNotification::notificationWithRequest(
      zv::UNNotificationRequest::requestWithIdentifier("n", content), 0);
}

std::shared_ptr<zv::UIViewController> TemplateFixture::show(
    const std::shared_ptr<zv::UNNotification>& n, double width, bool dark) {
  auto controller = std::make_shared<zv::UIViewController>();
  controller->setTraitCollection(zv::UITraitCollection::withStyle(
      dark ? zv::UIUserInterfaceStyle::kDark : zv::UIUserInterfaceStyle::kLight));
  controller->setView(zv::UIView::make({{0, 0}, {width, 0}}));
  zv::ZVPushTemplateHandler::sharedInstance().addPushTemplateToController(controller, n);
  return controller;
}

std::string TemplateFixture::png(int w, int h) {
  auto pixels = zv::PixelBuffer::make(w, h);
  for (auto& p : pixels->data) p = 0xFF336699;
  std::string path = testing::TempDir() + "/template-fixture.png";
  zv::PngWriter::write(*pixels, path);
  return readFile(path);
}

std::string TemplateFixture::gif(int w, int h) {
  return gifBytes({{10, 1, w, h}, {10, 2, w, h}, {20, 3, w, h}}, w, h);
}

json::object TemplateFixture::richPayload(const std::vector<std::string>& images,
                                          const std::string& type, bool autoStart) {
  json::array cards;
  long id = 100;
  for (const auto& url : images) {
    cards.push_back(json::object{
        {"id", id++},
        {"widgets", json::array{json::object{{"id", 1}, {"type", "image"}, {"content", url}}}}});
  }
  return json::object{
      {"aps", json::object{{"alert", json::object{{"title", "t"}, {"body", "b"}}},
                           {"mutable-content", 1}}},
      {"zentrova", json::object{{"cid", "cmp-9"}, {"app_id", "app-1"}}},
      {"zovFeatures",
       json::object{{"richPush", json::object{{"title", "Rich <b>title</b>"},
                                              {"subtitle", "Sub"},
                                              {"body", "Body"},
                                              {"displayName", "T"},
                                              {"expanded", json::object{{"type", type},
                                                                        {"autoStart", autoStart},
                                                                        {"cards", cards}}}}}}}};
}

}  // namespace zvtest
