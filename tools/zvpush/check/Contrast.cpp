#include "check/Contrast.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace zvpush {

namespace {

double linear(double channel) {
  channel = std::clamp(channel, 0.0, 1.0);
  return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

int byte(double channel) {
  return static_cast<int>(std::lround(std::clamp(channel, 0.0, 1.0) * 255));
}

}  // namespace

double Contrast::luminance(const zv::Color& c) {
  return 0.2126 * linear(c.red) + 0.7152 * linear(c.green) + 0.0722 * linear(c.blue);
}

double Contrast::ratio(const zv::Color& a, const zv::Color& b) {
  const double la = luminance(a), lb = luminance(b);
  return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

zv::Color Contrast::over(const zv::Color& top, const zv::Color& bottom) {
  double a = std::clamp(top.alpha, 0.0, 1.0);
  return {top.red * a + bottom.red * (1 - a), top.green * a + bottom.green * (1 - a),
          top.blue * a + bottom.blue * (1 - a), 1};
}

double Contrast::threshold(double points, bool bold) {
  return points >= 24 || (bold && points >= 18.66) ? 3.0 : 4.5;
}

std::string Contrast::hex(const zv::Color& c) {
  char text[8];
  std::snprintf(text, sizeof text, "#%02X%02X%02X", byte(c.red), byte(c.green), byte(c.blue));
  return text;
}

}  // namespace zvpush
