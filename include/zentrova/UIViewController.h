/// @file
/// zv::UIViewController is the content extension's controller: it owns the root view the templates
/// are added to, the trait collection that view resolves its style in, and the extension context.
/// Main thread only.
#pragma once

#include <memory>

#include "zentrova/Export.h"
#include "zentrova/NSExtensionContext.h"
#include "zentrova/UITraitCollection.h"
#include "zentrova/UIView.h"

ZENTROVA_API_BEGIN

namespace zv {

/// The content extension's controller, which ZVPushTemplateHandler fills.
///
/// @par Ownership
/// Held by shared_ptr; it owns its view and its extension context (both shared_ptr), so views
/// the template handler adds live as long as the view does.
///
/// @par Threads
/// Main thread only. Nothing here raises.
class UIViewController {
 public:
  /// A controller with no view, unspecified traits and a new extension context.
  UIViewController() = default;
  /// Releases the view and the context.
  virtual ~UIViewController();

  /// The controller's view (null when it has none); setting one gives it the controller's traits.
  ///@{
  const std::shared_ptr<UIView>& view() const { return view_; }
  void setView(std::shared_ptr<UIView> view);
  ///@}
  /// The style the controller's view resolves its colours in (light or dark); setting it also sets
  /// the view's traits.
  ///@{
  UITraitCollection traitCollection() const { return traits_; }
  void setTraitCollection(UITraitCollection traits);
  ///@}
  /// The link to the system that performs the default action; replace it to observe taps.
  ///@{
  const std::shared_ptr<NSExtensionContext>& extensionContext() const { return context_; }
  void setExtensionContext(std::shared_ptr<NSExtensionContext> context) {
    context_ = std::move(context);
  }
  ///@}

 private:
  std::shared_ptr<UIView> view_;
  UITraitCollection traits_;
  std::shared_ptr<NSExtensionContext> context_ = std::make_shared<NSExtensionContext>();
};

}  // namespace zv

ZENTROVA_API_END
