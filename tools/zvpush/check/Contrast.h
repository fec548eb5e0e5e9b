// Contrast as WCAG 2.1 defines it: the relative luminance of an sRGB colour, the ratio
// (L1 + 0.05) / (L2 + 0.05) of the lighter to the darker, and the ratio text needs (4.5:1, or 3:1
// for large text: 24 points and up, or 18.66 points and up in bold). Colours with alpha are
// composited over what lies behind them before they are compared, as the screen shows them.
#pragma once

#include <string>

#include "zentrova/Color.h"

namespace zvpush {

struct Contrast {
  // The luminance of an opaque colour (alpha ignored), from 0 (black) to 1 (white).
  static double luminance(const zv::Color& c);
  // From 1 (equal) to 21 (black on white), whichever colour is lighter.
  static double ratio(const zv::Color& a, const zv::Color& b);
  // top painted over an opaque bottom with top's alpha: an opaque colour.
  static zv::Color over(const zv::Color& top, const zv::Color& bottom);
  // The ratio text of this size (points) and weight needs.
  static double threshold(double points, bool bold);
  // "#RRGGBB" of an opaque colour (alpha ignored).
  static std::string hex(const zv::Color& c);
};

}  // namespace zvpush
