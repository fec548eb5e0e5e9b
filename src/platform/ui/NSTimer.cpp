#include "platform/ui/NSTimer.h"

#include <algorithm>
#include <cmath>

namespace zv {

namespace {
double sanitized(double interval) {
  if (!std::isfinite(interval)) return 1e9;
  return std::max(interval, 0.0001);
}
}  // namespace

NSTimer::NSTimer(double interval, bool repeats, Block block, double firstDue)
    : interval_(sanitized(interval)),
      repeats_(repeats),
      block_(std::move(block)),
      fireDate_(firstDue) {}

std::shared_ptr<NSTimer> NSTimer::timerWithTimeInterval(double interval, bool repeats,
                                                        Block block) {
  double due = RunLoop::current()->now() + sanitized(interval);
  return std::make_shared<NSTimer>(interval, repeats, std::move(block), due);
}

std::shared_ptr<NSTimer> NSTimer::scheduledTimerWithTimeInterval(double interval, bool repeats,
                                                                 Block block) {
  auto timer = timerWithTimeInterval(interval, repeats, std::move(block));
  RunLoop::current()->addTimer(timer);
  return timer;
}

void NSTimer::fire() {
  if (!block_) return;
  auto keep = shared_from_this();
  Block block = block_;  // the block may invalidate or replace the timer
  block(*this);
}

}  // namespace zv
