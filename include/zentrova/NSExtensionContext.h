/// @file
/// zv::NSExtensionContext is the content extension's link to the system: the controller asks it to
/// perform the notification's default action (open the application). Here the request is counted
/// and handed to an observer, so tests and the CLI can see that it happened.
#pragma once

#include <functional>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

/// The content extension's link to the system: where the default action is requested.
///
/// Owned by its UIViewController (shared_ptr). Main thread only, like the controller; the observer
/// runs on the thread that performs the action, inside that call.
class NSExtensionContext {
 public:
  /// Asks the system to open the application: counts the request and calls the observer.
  void performNotificationDefaultAction() {
    ++defaultActionCount_;
    if (observer_) observer_();
  }
  /// How many times the default action was performed.
  int defaultActionCount() const { return defaultActionCount_; }
  /// Called on every default action from now on (an empty function removes it).
  void setDefaultActionObserver(std::function<void()> observer) { observer_ = std::move(observer); }

 private:
  int defaultActionCount_ = 0;
  std::function<void()> observer_;
};

}  // namespace zv

ZENTROVA_API_END
