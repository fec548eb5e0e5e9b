// zv::UIScreen is the screen the extension shows on: its bounds in points and its scale. The main
// screen is process-wide and settable, so tests and the CLI can pick a phone size.
#pragma once

#include "zentrova/Geometry.h"

namespace zv {

class UIScreen {
 public:
  static UIScreen& mainScreen();
  CGRect bounds() const { return bounds_; }
  void setBounds(CGRect bounds) { bounds_ = bounds; }
  CGFloat scale() const { return scale_; }
  void setScale(CGFloat scale) { scale_ = scale; }

 private:
  CGRect bounds_ = CGRect::make(0, 0, 375, 812);
  CGFloat scale_ = 2;
};

}  // namespace zv
