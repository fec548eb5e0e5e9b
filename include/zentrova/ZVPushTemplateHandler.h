/// @file
/// zv::ZVPushTemplateHandler is where the content extension hands each notification it shows: it
/// parses the payload, picks the template the expanded mode asks for (a media view or an image
/// carousel), stacks it with the body view in one container pinned to the controller's view by
/// constraints (so the extension's height follows its content), and turns taps into the
/// notification's default action and stored card clicks. One per process (sharedInstance); it
/// keeps no reference to the views it builds. Main thread only.
#pragma once

#include <boost/json/object.hpp>
#include <memory>
#include <optional>
#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

class UIView;
class UIViewController;
class UNNotification;
class ZVPushPayload;

class ZVPushTemplateHandler {
 public:
  static ZVPushTemplateHandler& sharedInstance();
  /// A fresh state for the process-wide instance (tests, the CLI between previews).
  static void resetSharedInstance();

  void addPushTemplateToController(const std::shared_ptr<UIViewController>& controller,
                                   const std::shared_ptr<UNNotification>& notification);
  void attachContainerView();
  std::shared_ptr<UIView> getContainerView();
  std::shared_ptr<UIView> getTemplateView();
  std::shared_ptr<UIView> getStylizedPushBodyView();
  std::shared_ptr<UIView> getStylizedPushMediaView();
  std::shared_ptr<UIView> getCarouselView();
  void performDefaultAction();
  /// A card tap: the info (nullopt for nil) gets the campaign id and goes to the store.
  void performCardActionWithInfo(std::optional<boost::json::object> info);

  double controllerWidth = 0;
  bool isDarkTheme = false;
  std::shared_ptr<ZVPushPayload> pushPayload;
  std::shared_ptr<UNNotification> notification;
  std::shared_ptr<UIViewController> controller;

 private:
  std::shared_ptr<UIView> emptyView(double height) const;
  std::shared_ptr<UIView> loadView(const char* interface) const;
};

}  // namespace zv

ZENTROVA_API_END
