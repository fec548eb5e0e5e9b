// zv::UIImageView shows a still image or an animation: a list of images shown at an even pace over
// the animation duration, cycling, from the run-loop time animation started (a duration of 0 means
// 1/30 s per image). The content mode says how the image fills the view. The images themselves are
// the graphics layer's UIImage; this view only holds them. Main thread only.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "zentrova/UIView.h"

namespace zv {

class UIImage;

enum class UIViewContentMode {
  kScaleToFill = 0,
  kScaleAspectFit = 1,
  kScaleAspectFill = 2,
  kRedraw = 3,
  kCenter = 4,
  kTop = 5,
  kBottom = 6,
  kLeft = 7,
  kRight = 8,
  kTopLeft = 9,
  kTopRight = 10,
  kBottomLeft = 11,
  kBottomRight = 12,
};

class UIImageView : public UIView {
 public:
  using UIView::UIView;
  static std::shared_ptr<UIImageView> make(CGRect frame = {}) {
    return std::make_shared<UIImageView>(frame);
  }
  std::string className() const override { return "UIImageView"; }

  const std::shared_ptr<UIImage>& image() const { return image_; }
  void setImage(std::shared_ptr<UIImage> image) { image_ = std::move(image); }
  UIViewContentMode contentMode() const { return contentMode_; }
  void setContentMode(UIViewContentMode mode) { contentMode_ = mode; }

  const std::vector<std::shared_ptr<UIImage>>& animationImages() const { return animationImages_; }
  void setAnimationImages(std::vector<std::shared_ptr<UIImage>> images);
  double animationDuration() const { return animationDuration_; }
  void setAnimationDuration(double seconds) { animationDuration_ = seconds > 0 ? seconds : 0; }
  // Starts from the first image at the current run loop's time (no effect without images).
  void startAnimating();
  void stopAnimating() { animationStart_.reset(); }
  bool isAnimating() const { return animationStart_.has_value(); }
  // The run-loop time animation started, when animating.
  std::optional<double> animationStartTime() const { return animationStart_; }
  // The index of the animation image due at the current run loop's time (0 when not animating).
  size_t animationFrameIndex() const;
  size_t animationFrameIndexAt(double time) const;

 private:
  std::shared_ptr<UIImage> image_;
  UIViewContentMode contentMode_ = UIViewContentMode::kScaleToFill;
  std::vector<std::shared_ptr<UIImage>> animationImages_;
  double animationDuration_ = 0;
  std::optional<double> animationStart_;
};

}  // namespace zv
