// The phones zvpush check lays a notification out for, by screen width in points: the screen's
// height and its scale (pixels per point).
//   width  height  scale
//   320    568     2      small phones
//   375    812     2      the preview's default phone
//   390    844     3
//   414    896     3
//   430    932     3      the largest
// Another width gets a height in the same proportion (19.5:9) and scale 3 from 390 points up.
#pragma once

namespace zvpush {

struct Device {
  double width = 375, height = 812, scale = 2;

  static Device ofWidth(double width);
};

}  // namespace zvpush
