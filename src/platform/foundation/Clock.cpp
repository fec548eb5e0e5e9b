#include "platform/foundation/Clock.h"

#include <chrono>
#include <cmath>

namespace zv {

double SystemClock::now() const {
  using namespace std::chrono;
  return duration<double>(system_clock::now().time_since_epoch()).count();
}

std::tm SystemClock::localTime(double secondsSince1970) const {
  std::time_t t = static_cast<std::time_t>(std::floor(secondsSince1970));
  std::tm out{};
  localtime_r(&t, &out);
  return out;
}

std::tm FixedClock::localTime(double secondsSince1970) const {
  std::time_t t = static_cast<std::time_t>(std::floor(secondsSince1970)) + offset_;
  std::tm out{};
  gmtime_r(&t, &out);
  return out;
}

}  // namespace zv
