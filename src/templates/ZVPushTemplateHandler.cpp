#include "zentrova/ZVPushTemplateHandler.h"

#include <fmt/format.h>

#include "model/ZVPushPayload.h"
#include "model/ZVRichNotifUtils.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "platform/foundation/SystemVersion.h"
#include "platform/text/PangoTextMeasurer.h"
#include "platform/ui/NSBundle.h"
#include "platform/ui/NSLayoutConstraint.h"
#include "platform/ui/UIColor.h"
#include "resources/ZVInterfaceFiles.h"
#include "templates/ZVCarouselCollectionView.h"
#include "templates/ZVPushBodyView.h"
#include "templates/ZVPushMediaView.h"
#include "templates/ZVRichNotifUtilsContent.h"
#include "zentrova/NSExtensionContext.h"
#include "zentrova/Platform.h"
#include "zentrova/UIViewController.h"
#include "zentrova/ZVExtensionDataManager.h"

namespace zv {

namespace {

constexpr double kContainerHeight = 20.0;
constexpr double kBodyHeight = 95.0;
constexpr double kCarouselHeight = 200.0;

std::unique_ptr<ZVPushTemplateHandler>& instance() {
  static std::unique_ptr<ZVPushTemplateHandler> handler;
  return handler;
}

}  // namespace

ZVPushTemplateHandler& ZVPushTemplateHandler::sharedInstance() {
  static std::once_flag once;
  std::call_once(once, [] {
    if (!instance()) instance() = std::make_unique<ZVPushTemplateHandler>();
    // A host that registered no interface files of its own gets ours in the main bundle, measuring
    // with the platform's text measurer (Pango's when none is installed).
    auto& bundle = NSBundle::mainBundle();
    if (!bundle.hasInterface("ZVPushBodyView")) {
      auto measurer = Platform::shared().textMeasurer();
      if (!measurer) measurer = std::make_shared<PangoTextMeasurer>();
      ZVInterfaceFiles::registerWithBundle(bundle, std::move(measurer));
    }
  });
  return *instance();
}

void ZVPushTemplateHandler::resetSharedInstance() {
  sharedInstance();
  *instance() = ZVPushTemplateHandler();
}

void ZVPushTemplateHandler::addPushTemplateToController(
    const std::shared_ptr<UIViewController>& viewController,
    const std::shared_ptr<UNNotification>& newNotification) {
  controllerWidth =
      viewController && viewController->view() ? viewController->view()->frame().size.width : 0;
  controller = viewController;
  Value payload = ZVRichNotifUtils::getPayloadFromNotification(newNotification);
  if (payload.isNil()) return;
  // The envelope is never nil for a dictionary; a notification that is not this system's push
  // (no "zentrova" dictionary with a campaign id) counts as the nil the handler stops at, so it
  // adds nothing to the controller's view.
  auto parsed = ZVPushPayload::initWithPushPayload(payload);
  if (!parsed || !parsed->shouldProcessPushNotification()) return;
  notification = newNotification;
  pushPayload = parsed;
  if (systemVersion() >= 12.0 && controller && controller->traitCollection().isDark()) {
    isDarkTheme = true;  // never set back: the process keeps dark once it was shown
  }
  attachContainerView();
}

void ZVPushTemplateHandler::attachContainerView() {
  if (!controller || !controller->view()) return;
  const auto& root = controller->view();
  root->setTranslatesAutoresizingMaskIntoConstraints(false);
  auto container = getContainerView();
  root->addSubview(container);
  CGRect f = container->frame();
  ViewBindings views{{"containerView", container}};
  root->addConstraints(NSLayoutConstraint::constraintsWithVisualFormat(
      fmt::format("H:|-0-[containerView({:f})]-0-|", f.size.width), 0, {}, views));
  root->addConstraints(NSLayoutConstraint::constraintsWithVisualFormat(
      fmt::format("V:|-0-[containerView({:f})]-0-|", f.size.height), 0, {}, views));
  root->layoutIfNeeded();
}

std::shared_ptr<UIView> ZVPushTemplateHandler::getContainerView() {
  auto container = UIView::make({{0, 0}, {controllerWidth, kContainerHeight}});
  container->setName("containerView");
  container->setBackgroundColor(Color::clear());
  auto templateView = getTemplateView();
  auto body = getStylizedPushBodyView();
  templateView->setName("templateView");
  body->setName("pushMsgBodyView");
  CGRect b = body->frame();
  b.origin.y = templateView->frame().size.height;
  body->setFrame(b);
  container->addSubview(templateView);
  container->addSubview(body);
  for (const auto& v : {container, templateView, body}) {
    v->setTranslatesAutoresizingMaskIntoConstraints(false);
  }
  double width = templateView->frame().size.width;
  double templateHeight = templateView->frame().size.height;
  double bodyHeight = body->frame().size.height;
  std::string vertical =
      systemVersion() >= 15.0
          ? fmt::format("V:|-0-[pushMsgBodyView({:f})]-0-[templateView({:f})]-0-|", bodyHeight,
                        templateHeight)
          : fmt::format("V:|-0-[templateView({:f})]-0-[pushMsgBodyView({:f})]-0-|", templateHeight,
                        bodyHeight);
  ViewBindings views{
      {"containerView", container}, {"templateView", templateView}, {"pushMsgBodyView", body}};
  container->addConstraints(NSLayoutConstraint::constraintsWithVisualFormat(
      fmt::format("H:|-0-[templateView({:f})]-0-|", width), 0, {}, views));
  container->addConstraints(NSLayoutConstraint::constraintsWithVisualFormat(
      fmt::format("H:|-0-[pushMsgBodyView({:f})]-0-|", width), 0, {}, views));
  container->addConstraints(
      NSLayoutConstraint::constraintsWithVisualFormat(vertical, 0, {}, views));
  templateView->layoutIfNeeded();
  body->layoutIfNeeded();
  container->layoutIfNeeded();
  return container;
}

std::shared_ptr<UIView> ZVPushTemplateHandler::getTemplateView() {
  if (!pushPayload) return emptyView(0);
  std::shared_ptr<UIView> view;
  if (!pushPayload->richPush || !pushPayload->richPush->expandedMode) {
    // No rich push: the media view; a rich push always has an expanded mode once parsed.
    view = getStylizedPushMediaView();
  } else {
    switch (pushPayload->richPush->expandedMode->templateType) {
      case ZVRichPushTemplateType::StylizedBasic:
      case ZVRichPushTemplateType::Invalid:
        view = getStylizedPushMediaView();
        break;
      case ZVRichPushTemplateType::ImageCarousel:
        view = getCarouselView();
        break;
      default:
        break;
    }
  }
  return view ? view : emptyView(0);
}

std::shared_ptr<UIView> ZVPushTemplateHandler::getStylizedPushBodyView() {
  if (!ZVRichNotifUtilsContent::isDefaultPushBodyViewHidden()) return emptyView(0);
  auto body = std::dynamic_pointer_cast<ZVPushBodyView>(loadView("ZVPushBodyView"));
  if (!body) return emptyView(0);
  body->isDarkTheme = isDarkTheme;
  body->setFrame({{0, 0}, {controllerWidth, kBodyHeight}});
  body->configureViewWithPayload(pushPayload);
  return body;
}

std::shared_ptr<UIView> ZVPushTemplateHandler::getStylizedPushMediaView() {
  auto media = std::dynamic_pointer_cast<ZVPushMediaView>(loadView("ZVPushMediaView"));
  if (!media) return nullptr;
  media->setFrame({{0, 0}, {controllerWidth, controllerWidth}});
  media->configurePushMediaViewWithPayload(pushPayload, notification);
  return media;
}

std::shared_ptr<UIView> ZVPushTemplateHandler::getCarouselView() {
  auto carousel =
      std::dynamic_pointer_cast<ZVCarouselCollectionView>(loadView("ZVCarouselCollectionView"));
  if (!carousel) return nullptr;
  carousel->setFrame({{0, 0}, {controllerWidth, kCarouselHeight}});
  carousel->configureCollectionViewWithRichPush(pushPayload ? pushPayload->richPush : nullptr,
                                                notification);
  return carousel;
}

void ZVPushTemplateHandler::performDefaultAction() {
  if (controller && controller->extensionContext()) {
    controller->extensionContext()->performNotificationDefaultAction();
  }
}

void ZVPushTemplateHandler::performCardActionWithInfo(std::optional<boost::json::object> info) {
  if (info) {
    Value campaign = pushPayload ? pushPayload->campaignID : Value();
    if (campaign.isNil()) {
      info->erase("campaign_id");
    } else {
      (*info)["campaign_id"] = campaign.json();
    }
    ZVExtensionDataManager::sharedManager().saveClickedCardInfo(Value(std::move(*info)));
  }
  performDefaultAction();
}

std::shared_ptr<UIView> ZVPushTemplateHandler::emptyView(double height) const {
  return UIView::make({{0, 0}, {controllerWidth, height}});
}

std::shared_ptr<UIView> ZVPushTemplateHandler::loadView(const char* interface) const {
  auto views =
      NSBundle::mainBundle().loadNibNamed(interface, const_cast<ZVPushTemplateHandler*>(this));
  return views.empty() ? nullptr : views.front();
}

}  // namespace zv
