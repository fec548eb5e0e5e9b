// An RGBA colour with components from 0 to 1. Colours are shared immutable objects: the clear
// colour is one object (Color::clear()), so code can tell that very object from a colour that
// merely has the same components.
#pragma once

#include <memory>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  double alpha = 0;

  static std::shared_ptr<const Color> make(double r, double g, double b, double a);
  // The one fully transparent colour object.
  static const std::shared_ptr<const Color>& clear();
  bool operator==(const Color&) const = default;
};

using ColorRef = std::shared_ptr<const Color>;

}  // namespace zv

ZENTROVA_API_END
