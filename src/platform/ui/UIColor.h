// zv::UIColor holds the colours that follow the style. systemBackgroundColor() is one colour object
// (compare by identity, like Color::clear()) whose components are the light ones; resolve() turns
// it into white or black for a trait collection, and passes every other colour through unchanged.
// The renderer and the tree dump resolve a view's background through its traits this way; model
// code keeps treating colours as plain RGBA values.
#pragma once

#include "zentrova/Color.h"
#include "zentrova/UITraitCollection.h"

namespace zv {

class UIColor {
 public:
  static const ColorRef& systemBackgroundColor();
  static const ColorRef& whiteColor();
  static const ColorRef& blackColor();
  static ColorRef resolve(const ColorRef& color, const UITraitCollection& traits);
};

}  // namespace zv
