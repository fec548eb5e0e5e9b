#include "preview/PreviewScene.h"

#include <boost/json.hpp>

#include "platform/foundation/SystemVersion.h"
#include "platform/text/PangoTextMeasurer.h"
#include "platform/ui/NSBundle.h"
#include "platform/ui/RunLoop.h"
#include "platform/ui/UIScreen.h"
#include "platform/ui/UITapGestureRecognizer.h"
#include "resources/ZVInterfaceFiles.h"
#include "templates/ZVCarouselCollectionView.h"
#include "templates/ZVPushMediaView.h"
#include "zentrova/Error.h"
#include "zentrova/NSExtensionContext.h"
#include "zentrova/UIViewController.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotification.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/UNNotificationRequest.h"
#include "zentrova/UserDefaults.h"
#include "zentrova/ZVExtensionDataManager.h"
#include "zentrova/ZVPushTemplateHandler.h"

namespace zvpush {

namespace {

namespace json = boost::json;

// The delivered notification: the service's output (its "userInfo" and "attachments"), or a bare
// payload without attachments. Attachments whose files are gone are left out, as the phone would.
std::shared_ptr<zv::UNNotification> notificationOf(const zv::Value& input) {
  bool delivered = input.get("userInfo").isObject();
  zv::Value payload = delivered ? input.get("userInfo") : input;
  std::string id = delivered && input.get("identifier").isString()
                       ? std::string(input.get("identifier").string())
                       : "zvpush-preview";
  auto request = zv::UNNotificationRequest::requestWithRemoteNotification(id, payload);
  if (delivered && input.get("attachments").isArray()) {
    auto content = request->content()->mutableCopy();
    std::vector<std::shared_ptr<zv::UNNotificationAttachment>> attachments;
    for (const auto& a : input.get("attachments").elements()) {
      if (!a.isObject() || !a.get("identifier").isString() || !a.get("url").isString()) continue;
      auto url = zv::Url::parse(a.get("url").string());
      if (!url) continue;
      zv::Error error;
      auto attachment = zv::UNNotificationAttachment::attachmentWithIdentifier(
          std::string(a.get("identifier").string()), *url, zv::Value(), &error);
      if (attachment) attachments.push_back(attachment);
    }
    content->setAttachments(attachments);
    request = zv::UNNotificationRequest::requestWithIdentifier(id, content);
  }
  return zv::UNNotification::notificationWithRequest(request, 0);
}

}  // namespace

void PreviewScene::prepare() {
  static const std::shared_ptr<zv::TextMeasurer> measurer =
      std::make_shared<zv::PangoTextMeasurer>();
  zv::ZVInterfaceFiles::registerWithBundle(zv::NSBundle::mainBundle(), measurer);
}

PreviewScene PreviewScene::show(const zv::Value& input, const PreviewSettings& o) {
  PreviewScene scene;
  // The phone this preview stands for.
  scene.loop = std::make_shared<zv::ManualRunLoop>();
  zv::RunLoop::setCurrent(scene.loop);
  zv::setSystemVersion(o.platformVersion);
  zv::UIScreen::mainScreen().setBounds({{0, 0}, {o.width, o.screenHeight}});
  zv::UIScreen::mainScreen().setScale(o.scale);
  json::object attributes;
  if (o.contentHidden) attributes["UNNotificationExtensionDefaultContentHidden"] = true;
  zv::NSBundle::mainBundle().setInfoDictionary(zv::Value(
      json::object{{"NSExtension", json::object{{"NSExtensionAttributes", attributes}}}}));

  auto& controller = scene.controller;
  controller = std::make_shared<zv::UIViewController>();
  controller->setTraitCollection(zv::UITraitCollection::withStyle(
      o.dark ? zv::UIUserInterfaceStyle::kDark : zv::UIUserInterfaceStyle::kLight));
  controller->setView(zv::UIView::make({{0, 0}, {o.width, 0}}));
  zv::ZVPushTemplateHandler::sharedInstance().addPushTemplateToController(controller,
                                                                          notificationOf(input));
  const auto& root = controller->view();
  root->layoutIfNeeded();

  scene.loop->advance(o.at);
  root->layoutIfNeeded();  // cells a scroll brought into view take their places
  scene.tap = nullptr;
  if (o.tap) {
    int actions = controller->extensionContext()->defaultActionCount();
    auto store = zv::ZVExtensionDataManager::sharedManager().getZovUserDefaults();
    if (store) store->removeObject("zov_push_template_click_info");
    auto hit = root->hitTest(*o.tap);  // the deepest view under the point
    zv::UITapGestureRecognizer::deliverTap(root, *o.tap);
    zv::Value click = store ? store->objectForKey("zov_push_template_click_info") : zv::Value();
    scene.tap = json::object{
        {"point", json::array{o.tap->x, o.tap->y}},
        {"view", hit ? json::value(hit->className()) : json::value(nullptr)},
        {"defaultAction", controller->extensionContext()->defaultActionCount() > actions},
        {"cardClick", click.isNil() ? json::value(nullptr) : click.json()}};
    root->layoutIfNeeded();
  }
  return scene;
}

const std::shared_ptr<zv::UIView>& PreviewScene::root() const { return controller->view(); }

std::optional<std::string> PreviewScene::templateKind() const {
  for (const auto& container : root()->subviews()) {
    if (container->name() != "containerView") continue;
    for (const auto& view : container->subviews()) {
      if (view->name() != "templateView") continue;
      if (dynamic_cast<const zv::ZVPushMediaView*>(view.get())) return "media";
      if (dynamic_cast<const zv::ZVCarouselCollectionView*>(view.get())) return "carousel";
      return "empty";
    }
  }
  return std::nullopt;
}

}  // namespace zvpush
