/// @file
/// An RGBA colour with components from 0 to 1. Colours are shared immutable objects: the clear
/// colour is one object (Color::clear()), so code can tell that very object from a colour that
/// merely has the same components.
#pragma once

#include <memory>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

/// An RGBA colour, shared as an immutable ColorRef.
///
/// Ownership: colours are made by make() and held by std::shared_ptr<const Color>; they never
/// change, so any thread may read one.
struct Color {
  double red = 0;    ///< Red, from 0 to 1.
  double green = 0;  ///< Green, from 0 to 1.
  double blue = 0;   ///< Blue, from 0 to 1.
  double alpha = 0;  ///< Opacity, from 0 (transparent) to 1.

  /// A new colour object of these components (each from 0 to 1; not clamped).
  static std::shared_ptr<const Color> make(double r, double g, double b, double a);
  /// The one fully transparent colour object.
  static const std::shared_ptr<const Color>& clear();
  /// Equal components (the clear() object equals any other colour of four zeros).
  bool operator==(const Color&) const = default;
};

/// A colour as views hold it; null means no colour (nothing is drawn).
using ColorRef = std::shared_ptr<const Color>;

}  // namespace zv

ZENTROVA_API_END
