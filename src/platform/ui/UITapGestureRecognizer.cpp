#include "platform/ui/UITapGestureRecognizer.h"

#include "zentrova/UIView.h"

namespace zv {

CGPoint UITapGestureRecognizer::locationInView(const UIView* view) const {
  auto own = view_.lock();
  if (!view || !own) return location_;
  return own->convertPointToView(location_, view);
}

std::shared_ptr<UIView> UITapGestureRecognizer::deliverTap(const std::shared_ptr<UIView>& root,
                                                           CGPoint point) {
  if (!root) return nullptr;
  CGPoint inRoot = point;
  for (auto view = root->hitTest(inRoot); view; view = view->superview()) {
    CGPoint local = root->convertPointToView(inRoot, view.get());
    bool fired = false;
    for (const auto& recognizer : std::vector(view->gestureRecognizers())) {
      if (!recognizer->isEnabled()) continue;
      recognizer->location_ = local;
      if (recognizer->action_) recognizer->action_(*recognizer);
      fired = true;
    }
    if (fired || view->handleTap(local)) return view;
    if (view == root) break;
  }
  return nullptr;
}

}  // namespace zv
