// zv::NSTimer calls its block when its due time comes on the run loop it is scheduled on, once or
// every `interval` seconds. A repeating timer's due times stay on its original grid (3.0, 6.0, 9.0
// ...) however late the loop runs it. invalidate() stops it for good. Main thread only.
#pragma once

#include <functional>
#include <memory>

#include "platform/ui/RunLoop.h"

namespace zv {

class NSTimer : public std::enable_shared_from_this<NSTimer> {
 public:
  using Block = std::function<void(NSTimer&)>;

  // A timer first due `interval` seconds after `loop`'s now(). Intervals below 0.0001 s are
  // raised to it (as on the phone), so a repeating timer never spins.
  NSTimer(double interval, bool repeats, Block block, double firstDue);
  // Makes a timer and schedules it on the current run loop.
  static std::shared_ptr<NSTimer> scheduledTimerWithTimeInterval(double interval, bool repeats,
                                                                 Block block);
  // Makes a timer not yet scheduled (RunLoop::addTimer schedules it).
  static std::shared_ptr<NSTimer> timerWithTimeInterval(double interval, bool repeats, Block block);

  double timeInterval() const { return interval_; }
  bool repeats() const { return repeats_; }
  double fireDate() const { return fireDate_; }
  bool isValid() const { return valid_; }
  void invalidate() { valid_ = false; }
  // Calls the block now (a valid timer only), without changing its schedule.
  void fire();

 private:
  friend class RunLoop;
  double interval_;
  bool repeats_;
  Block block_;
  double fireDate_;
  bool valid_ = true;
};

}  // namespace zv
