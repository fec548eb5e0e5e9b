// zv::NSExtensionContext is the content extension's link to the system: the controller asks it to
// perform the notification's default action (open the application). Here the request is counted
// and handed to an observer, so tests and the CLI can see that it happened.
#pragma once

#include <functional>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

class NSExtensionContext {
 public:
  void performNotificationDefaultAction() {
    ++defaultActionCount_;
    if (observer_) observer_();
  }
  int defaultActionCount() const { return defaultActionCount_; }
  void setDefaultActionObserver(std::function<void()> observer) { observer_ = std::move(observer); }

 private:
  int defaultActionCount_ = 0;
  std::function<void()> observer_;
};

}  // namespace zv

ZENTROVA_API_END
