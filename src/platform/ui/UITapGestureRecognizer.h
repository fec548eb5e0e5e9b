// zv::UITapGestureRecognizer turns a tap on its view into a call of its action. deliverTap() is how
// a tap arrives: at a point of a root view, the deepest visible view under the point that has an
// enabled recogniser gets it (the view hit, else its closest ancestor with one). Main thread only.
#pragma once

#include <functional>
#include <memory>

#include "zentrova/Geometry.h"

namespace zv {

class UIView;

class UITapGestureRecognizer {
 public:
  using Action = std::function<void(UITapGestureRecognizer&)>;

  explicit UITapGestureRecognizer(Action action = {}) : action_(std::move(action)) {}
  static std::shared_ptr<UITapGestureRecognizer> make(Action action) {
    return std::make_shared<UITapGestureRecognizer>(std::move(action));
  }

  // Replaces the target-action pair.
  void addTarget(Action action) { action_ = std::move(action); }
  std::shared_ptr<UIView> view() const { return view_.lock(); }
  bool isEnabled() const { return enabled_; }
  void setEnabled(bool enabled) { enabled_ = enabled; }
  // Where the last tap landed, in `view`'s coordinates (in the recogniser's view when null).
  CGPoint locationInView(const UIView* view) const;

  // Delivers a tap at `point` of `root`; returns the view whose recogniser fired, or null.
  static std::shared_ptr<UIView> deliverTap(const std::shared_ptr<UIView>& root, CGPoint point);

 private:
  friend class UIView;
  Action action_;
  std::weak_ptr<UIView> view_;
  bool enabled_ = true;
  CGPoint location_;  // in the recogniser's view
};

}  // namespace zv
