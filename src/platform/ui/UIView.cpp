#include "zentrova/UIView.h"

#include <algorithm>

#include "platform/ui/CALayer.h"
#include "platform/ui/LayoutEngine.h"
#include "platform/ui/NSLayoutConstraint.h"
#include "platform/ui/UITapGestureRecognizer.h"

namespace zv {

bool UIView::clipsToBounds() const { return layer_->masksToBounds(); }
void UIView::setClipsToBounds(bool clips) { layer_->setMasksToBounds(clips); }

UIView::UIView() : UIView(CGRect{}) {}

UIView::UIView(CGRect frame) : frame_(frame), layer_(CALayer::layer()) { layer_->setFrame(frame); }

UIView::~UIView() = default;

void UIView::setFrame(CGRect frame) {
  bool resized = frame.size != frame_.size;
  frame_ = frame;
  layer_->setFrame(frame);
  if (resized) boundsDidChange();
}

CGPoint UIView::center() const {
  return {frame_.origin.x + frame_.size.width / 2, frame_.origin.y + frame_.size.height / 2};
}

void UIView::setLayer(std::shared_ptr<CALayer> layer) {
  if (!layer) return;
  layer->setFrame(frame_);
  layer->setCornerRadius(layer_->cornerRadius());
  layer->setMasksToBounds(layer_->masksToBounds());
  layer_ = std::move(layer);
}

void UIView::addSubview(const Ref& view) { insertSubview(view, subviews_.size()); }

void UIView::insertSubview(const Ref& view, size_t index) {
  if (!view || view.get() == this || isDescendantOfView(view.get())) return;
  Ref keep = view;
  view->removeFromSuperview();
  view->superview_ = weak_from_this();
  subviews_.insert(subviews_.begin() + std::min(index, subviews_.size()), view);
}

void UIView::bringSubviewToFront(const Ref& view) {
  auto it = std::find(subviews_.begin(), subviews_.end(), view);
  if (it == subviews_.end()) return;
  subviews_.erase(it);
  subviews_.push_back(view);
}

void UIView::removeFromSuperview() {
  auto parent = superview_.lock();
  superview_.reset();
  if (!parent) return;
  auto keep = shared_from_this();
  auto& list = parent->subviews_;
  list.erase(std::remove(list.begin(), list.end(), keep), list.end());
}

bool UIView::isDescendantOfView(const UIView* view) const {
  for (const UIView* v = this; v; v = v->superview_.lock().get())
    if (v == view) return true;
  return false;
}

UIView* UIView::rootView() {
  UIView* v = this;
  while (auto p = v->superview()) v = p.get();
  return v;
}

UITraitCollection UIView::traitCollection() const {
  if (traits_) return *traits_;
  if (auto p = superview()) return p->traitCollection();
  return {};
}

void UIView::addGestureRecognizer(const std::shared_ptr<UITapGestureRecognizer>& recognizer) {
  if (!recognizer) return;
  removeGestureRecognizer(recognizer);
  recognizer->view_ = weak_from_this();
  recognizers_.push_back(recognizer);
}

void UIView::removeGestureRecognizer(const std::shared_ptr<UITapGestureRecognizer>& recognizer) {
  recognizers_.erase(std::remove(recognizers_.begin(), recognizers_.end(), recognizer),
                     recognizers_.end());
}

UIView::Ref UIView::hitTest(CGPoint point) {
  if (hidden_ || !userInteractionEnabled_ || alpha_ < 0.01) return nullptr;
  if (!bounds().contains(point)) return nullptr;
  for (auto it = subviews_.rbegin(); it != subviews_.rend(); ++it) {
    CGPoint local{point.x - (*it)->frame_.origin.x, point.y - (*it)->frame_.origin.y};
    if (auto hit = (*it)->hitTest(local)) return hit;
  }
  return shared_from_this();
}

CGPoint UIView::convertPointToView(CGPoint point, const UIView* view) const {
  // Up to the root in window coordinates, then down into `view`.
  for (const UIView* v = this; v->superview(); v = v->superview().get())
    point.x += v->frame_.origin.x, point.y += v->frame_.origin.y;
  for (const UIView* v = view; v && v->superview(); v = v->superview().get())
    point.x -= v->frame_.origin.x, point.y -= v->frame_.origin.y;
  return point;
}

void UIView::setTranslatesAutoresizingMaskIntoConstraints(bool translates) {
  translatesMask_ = translates;
}

void UIView::addConstraint(const NSLayoutConstraint::Ref& constraint) {
  addConstraints({constraint});
}

void UIView::addConstraints(const std::vector<NSLayoutConstraint::Ref>& constraints) {
  const std::string* lastFormat = nullptr;
  for (const auto& c : constraints) {
    if (!c) continue;
    if (auto owner = c->owner_.lock(); owner && owner.get() != this) owner->removeConstraint(c);
    if (std::find(constraints_.begin(), constraints_.end(), c) == constraints_.end())
      constraints_.push_back(c);
    c->owner_ = weak_from_this();
    c->active_ = true;
    if (c->format_ && c->format_.get() != lastFormat) {
      formats_.push_back(*c->format_);
      lastFormat = c->format_.get();
    }
  }
}

void UIView::removeConstraint(const NSLayoutConstraint::Ref& constraint) {
  removeConstraints({constraint});
}

void UIView::removeConstraints(const std::vector<NSLayoutConstraint::Ref>& constraints) {
  for (const auto& c : constraints) {
    auto it = std::find(constraints_.begin(), constraints_.end(), c);
    if (it == constraints_.end()) continue;
    constraints_.erase(it);
    c->active_ = false;
    c->owner_.reset();
  }
}

void UIView::setNeedsLayout() {}

void UIView::layoutIfNeeded() {
  UIView* root = rootView();
  if (!root->engine_) root->engine_ = std::make_unique<LayoutEngine>(*root);
  root->engine_->layout();
  // Wrapping text knows its height once its width is known.
  if (root->engine_->needsSecondPass()) root->engine_->layout();
  root->layoutSubviewsRecursively();
}

void UIView::layoutSubviewsRecursively() {
  layoutSubviews();
  for (const auto& sub : std::vector<Ref>(subviews_)) sub->layoutSubviewsRecursively();
}

}  // namespace zv
