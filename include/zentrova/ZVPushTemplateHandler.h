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

/// The content extension's entry point: fills a controller's view for a notification.
///
/// @par Ownership
/// The views it builds belong to the controller's view (as subviews). The handler keeps the
/// controller, the notification and the parsed payload it was last given (the public fields
/// below) until the next call or resetSharedInstance(), for the taps that come later.
///
/// @par Threads
/// Main thread only, like the views: taps, the carousel's paging and clips all run there.
///
/// @par Errors
/// A notification that is not this system's, or null, adds nothing. A rich push that cannot be
/// read is logged and shown as the plain media template. A "zentrova" entry that is not a
/// dictionary raises zv::Exception (invalid argument) out of addPushTemplateToController(): a
/// host that shows arbitrary payloads catches it.
class ZVPushTemplateHandler {
 public:
  /// The process's one handler, made on first use. That first use also registers the built-in
  /// interface files with the main bundle (unless the host registered its own), measuring text
  /// with the platform's text measurer.
  static ZVPushTemplateHandler& sharedInstance();
  /// A fresh state for the process-wide instance (tests, the CLI between previews).
  static void resetSharedInstance();

  /// Shows `notification` in `controller`'s view: parses its payload and, for this system's
  /// notification, adds the container (template view above the body view; below it from platform
  /// version 15) pinned to the view by constraints and lays the tree out. The width is the
  /// view's frame width at this moment; a controller in dark style makes the handler dark for
  /// the rest of the process.
  void addPushTemplateToController(const std::shared_ptr<UIViewController>& controller,
                                   const std::shared_ptr<UNNotification>& notification);
  /// Adds a new container for the current payload to the controller's view and pins it there
  /// (nothing without a controller or view).
  void attachContainerView();
  /// A new container holding the template view and the body view, laid out at the controller's
  /// width.
  std::shared_ptr<UIView> getContainerView();
  /// A new view of the template the payload asks for: the carousel for an image carousel, else the
  /// media view; an empty view of height 0 without a payload.
  std::shared_ptr<UIView> getTemplateView();
  /// A new body view (title and message in the payload's styles) when the extension hides the
  /// system's own body; else an empty view of height 0.
  std::shared_ptr<UIView> getStylizedPushBodyView();
  /// A new media view (image, animation or clip of the payload); null when the interface file
  /// cannot be loaded.
  std::shared_ptr<UIView> getStylizedPushMediaView();
  /// A new image carousel of the rich push's cards; null when the interface file cannot be
  /// loaded.
  std::shared_ptr<UIView> getCarouselView();
  /// A tap on the notification: asks the controller's extension context to open the application
  /// (nothing without a controller).
  void performDefaultAction();
  /// A card tap: the info (nullopt for nil) gets the campaign id and is stored as the last card
  /// click for the host application; then the default action is performed.
  void performCardActionWithInfo(std::optional<boost::json::object> info);

  double controllerWidth = 0;  ///< The width templates are laid out at (the view's, in points).
  bool isDarkTheme = false;    ///< Whether templates use their dark colours.
  std::shared_ptr<ZVPushPayload> pushPayload;    ///< The payload last shown (internal type).
  std::shared_ptr<UNNotification> notification;  ///< The notification last shown.
  std::shared_ptr<UIViewController> controller;  ///< The controller last filled.

 private:
  std::shared_ptr<UIView> emptyView(double height) const;
  std::shared_ptr<UIView> loadView(const char* interface) const;
};

}  // namespace zv

ZENTROVA_API_END
