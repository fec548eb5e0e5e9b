#include "platform/ui/UIImageView.h"

#include <cmath>

#include "platform/ui/RunLoop.h"

namespace zv {

void UIImageView::setAnimationImages(std::vector<std::shared_ptr<UIImage>> images) {
  animationImages_ = std::move(images);
  if (animationImages_.empty()) stopAnimating();
}

void UIImageView::startAnimating() {
  if (animationImages_.empty() || isAnimating()) return;
  animationStart_ = RunLoop::current()->now();
}

size_t UIImageView::animationFrameIndex() const {
  return animationFrameIndexAt(RunLoop::current()->now());
}

size_t UIImageView::animationFrameIndexAt(double time) const {
  size_t count = animationImages_.size();
  if (!animationStart_ || count == 0) return 0;
  double duration = animationDuration_ > 0 ? animationDuration_ : count / 30.0;
  double perFrame = duration / static_cast<double>(count);
  double elapsed = time - *animationStart_;
  if (!(elapsed > 0) || !std::isfinite(elapsed)) return 0;
  // A hair of tolerance so a frame due exactly now (3 x 0.1 s) is not taken for the one before.
  double index = std::floor(elapsed / perFrame + 1e-9);
  return static_cast<size_t>(std::fmod(index, static_cast<double>(count)));
}

}  // namespace zv
