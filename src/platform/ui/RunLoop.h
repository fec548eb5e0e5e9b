// zv::RunLoop is the port through which the content side reads time and schedules its timers: the
// main thread's run loop. Everything that moves on screen (a GIF's frames, a clip's current time,
// the carousel's paging) reads now() from it, so a manual run loop makes every animation exact in
// tests and in previews.
//
// Each thread has a current run loop, as on the phone. The edges (a test, the CLI) install one with
// setCurrent(); a thread that has none gets a real one that follows the steady clock. Run loops are
// used from their own thread only. Timers (NSTimer.h) are scheduled on a loop and fire, in order of
// their due times, when the loop runs: the manual loop as it advances, the steady one in
// runUntil().
#pragma once

#include <memory>
#include <vector>

namespace zv {

class NSTimer;

class RunLoop {
 public:
  virtual ~RunLoop() = default;

  // Seconds on the loop's monotonic clock; only differences mean anything.
  virtual double now() const = 0;

  // The calling thread's run loop.
  static std::shared_ptr<RunLoop> current();
  // Makes `loop` the calling thread's run loop and returns the one it replaces (null to go back to
  // a real one on next use).
  static std::shared_ptr<RunLoop> setCurrent(std::shared_ptr<RunLoop> loop);

  // Schedules a timer (the loop keeps it until it is invalidated or, if it does not repeat, fired).
  void addTimer(const std::shared_ptr<NSTimer>& timer);
  size_t scheduledTimerCount() const;

 protected:
  // The valid timer due first at or before `time`, or null.
  std::shared_ptr<NSTimer> nextDueTimer(double time);
  // Fires `timer` (its due time has come) and reschedules or drops it.
  void fire(const std::shared_ptr<NSTimer>& timer);
  // The earliest due time of a valid timer (infinity when none).
  double nextDueTime() const;

 private:
  std::vector<std::shared_ptr<NSTimer>> timers_;
};

// The run loop that follows the steady clock.
class SteadyRunLoop : public RunLoop {
 public:
  double now() const override;
  // Runs due timers, sleeping between them, until now() reaches `time`.
  void runUntil(double time);
};

// The run loop whose time moves only when advance() is called: tests and `zvpush preview --at`.
// Time starts at 0.
class ManualRunLoop : public RunLoop {
 public:
  double now() const override { return now_; }
  // Lets `seconds` of run-loop time pass, firing every timer that comes due, in order of due time,
  // with now() equal to that due time during each callback.
  void advance(double seconds);

 private:
  double now_ = 0;
};

}  // namespace zv
