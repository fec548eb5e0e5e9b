#include "zentrova/UIViewController.h"

namespace zv {

void UIViewController::setView(std::shared_ptr<UIView> view) {
  view_ = std::move(view);
  if (view_) view_->setTraitCollection(traits_);
}

void UIViewController::setTraitCollection(UITraitCollection traits) {
  traits_ = traits;
  if (view_) view_->setTraitCollection(traits_);
}

}  // namespace zv
