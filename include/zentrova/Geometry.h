// Points, sizes and rectangles in points, as the view system, images and clips exchange them. A
// rectangle's origin is its top-left corner; y grows downwards, as on the phone's screen.
#pragma once

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

using CGFloat = double;

struct CGPoint {
  CGFloat x = 0;
  CGFloat y = 0;
  bool operator==(const CGPoint&) const = default;
};

struct CGSize {
  CGFloat width = 0;
  CGFloat height = 0;
  bool operator==(const CGSize&) const = default;
};

struct CGRect {
  CGPoint origin;
  CGSize size;

  static constexpr CGRect make(CGFloat x, CGFloat y, CGFloat w, CGFloat h) {
    return CGRect{{x, y}, {w, h}};
  }
  constexpr CGFloat minX() const { return origin.x; }
  constexpr CGFloat minY() const { return origin.y; }
  constexpr CGFloat maxX() const { return origin.x + size.width; }
  constexpr CGFloat maxY() const { return origin.y + size.height; }
  constexpr CGFloat width() const { return size.width; }
  constexpr CGFloat height() const { return size.height; }
  // Half-open: a point on the right or bottom edge is outside, as in hit testing on the phone.
  constexpr bool contains(CGPoint p) const {
    return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
  }
  bool operator==(const CGRect&) const = default;
};

}  // namespace zv

ZENTROVA_API_END
