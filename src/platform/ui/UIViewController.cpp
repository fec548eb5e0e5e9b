#include "zentrova/UIViewController.h"

namespace zv {

// Out of line: the library is where the class's vtable and type information live.
UIViewController::~UIViewController() = default;

void UIViewController::setView(std::shared_ptr<UIView> view) {
  view_ = std::move(view);
  if (view_) view_->setTraitCollection(traits_);
}

void UIViewController::setTraitCollection(UITraitCollection traits) {
  traits_ = traits;
  if (view_) view_->setTraitCollection(traits_);
}

}  // namespace zv
