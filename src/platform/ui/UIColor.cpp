#include "platform/ui/UIColor.h"

namespace zv {

const ColorRef& UIColor::systemBackgroundColor() {
  static const ColorRef color = Color::make(1, 1, 1, 1);
  return color;
}

const ColorRef& UIColor::whiteColor() {
  static const ColorRef color = Color::make(1, 1, 1, 1);
  return color;
}

const ColorRef& UIColor::blackColor() {
  static const ColorRef color = Color::make(0, 0, 0, 1);
  return color;
}

ColorRef UIColor::resolve(const ColorRef& color, const UITraitCollection& traits) {
  if (color != systemBackgroundColor()) return color;
  return traits.isDark() ? blackColor() : whiteColor();
}

}  // namespace zv
