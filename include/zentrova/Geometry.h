/// @file
/// Points, sizes and rectangles in points, as the view system, images and clips exchange them. A
/// rectangle's origin is its top-left corner; y grows downwards, as on the phone's screen.
#pragma once

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

/// A length or coordinate in points.
using CGFloat = double;

/// A point: x to the right, y downwards.
struct CGPoint {
  CGFloat x = 0;  ///< Horizontal position.
  CGFloat y = 0;  ///< Vertical position, growing downwards.
  /// Exact equality of both coordinates.
  bool operator==(const CGPoint&) const = default;
};

/// A width and a height.
struct CGSize {
  CGFloat width = 0;   ///< Horizontal extent.
  CGFloat height = 0;  ///< Vertical extent.
  /// Exact equality of both extents.
  bool operator==(const CGSize&) const = default;
};

/// A rectangle: its top-left corner and its size.
struct CGRect {
  CGPoint origin;  ///< The top-left corner.
  CGSize size;     ///< Width and height.

  /// The rectangle at (x, y) of width w and height h.
  static constexpr CGRect make(CGFloat x, CGFloat y, CGFloat w, CGFloat h) {
    return CGRect{{x, y}, {w, h}};
  }
  /// The left (minX), top (minY), right (maxX) and bottom (maxY) edges, and the size's width
  /// and height.
  ///@{
  constexpr CGFloat minX() const { return origin.x; }
  constexpr CGFloat minY() const { return origin.y; }
  constexpr CGFloat maxX() const { return origin.x + size.width; }
  constexpr CGFloat maxY() const { return origin.y + size.height; }
  constexpr CGFloat width() const { return size.width; }
  constexpr CGFloat height() const { return size.height; }
  ///@}
  /// Whether p lies in the rectangle. Half-open: a point on the right or bottom edge is outside, as
  /// in hit testing on the phone.
  constexpr bool contains(CGPoint p) const {
    return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
  }
  /// Exact equality of origin and size.
  bool operator==(const CGRect&) const = default;
};

}  // namespace zv

ZENTROVA_API_END
