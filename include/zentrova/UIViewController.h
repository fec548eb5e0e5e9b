// zv::UIViewController is the content extension's controller: it owns the root view the templates
// are added to, the trait collection that view resolves its style in, and the extension context.
// Main thread only.
#pragma once

#include <memory>

#include "zentrova/Export.h"
#include "zentrova/NSExtensionContext.h"
#include "zentrova/UITraitCollection.h"
#include "zentrova/UIView.h"

ZENTROVA_API_BEGIN

namespace zv {

class UIViewController {
 public:
  UIViewController() = default;
  virtual ~UIViewController() = default;

  // The controller's view (null when it has none); setting one gives it the controller's traits.
  const std::shared_ptr<UIView>& view() const { return view_; }
  void setView(std::shared_ptr<UIView> view);
  UITraitCollection traitCollection() const { return traits_; }
  void setTraitCollection(UITraitCollection traits);
  const std::shared_ptr<NSExtensionContext>& extensionContext() const { return context_; }
  void setExtensionContext(std::shared_ptr<NSExtensionContext> context) {
    context_ = std::move(context);
  }

 private:
  std::shared_ptr<UIView> view_;
  UITraitCollection traits_;
  std::shared_ptr<NSExtensionContext> context_ = std::make_shared<NSExtensionContext>();
};

}  // namespace zv

ZENTROVA_API_END
