#include "check/Device.h"

#include <cmath>

namespace zvpush {

Device Device::ofWidth(double width) {
  static constexpr Device kKnown[] = {
      {320, 568, 2}, {375, 812, 2}, {390, 844, 3}, {414, 896, 3}, {430, 932, 3}};
  for (const Device& d : kKnown) {
    if (d.width == width) return d;
  }
  return {width, std::round(width * 19.5 / 9), width >= 390 ? 3.0 : 2.0};
}

}  // namespace zvpush
