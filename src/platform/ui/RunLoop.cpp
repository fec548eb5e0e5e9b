#include "platform/ui/RunLoop.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <thread>

#include "platform/ui/NSTimer.h"

namespace zv {

namespace {
thread_local std::shared_ptr<RunLoop> currentLoop;
}

std::shared_ptr<RunLoop> RunLoop::current() {
  if (!currentLoop) currentLoop = std::make_shared<SteadyRunLoop>();
  return currentLoop;
}

std::shared_ptr<RunLoop> RunLoop::setCurrent(std::shared_ptr<RunLoop> loop) {
  std::swap(loop, currentLoop);
  return loop;
}

void RunLoop::addTimer(const std::shared_ptr<NSTimer>& timer) {
  if (!timer || !timer->isValid()) return;
  if (std::find(timers_.begin(), timers_.end(), timer) == timers_.end()) timers_.push_back(timer);
}

size_t RunLoop::scheduledTimerCount() const {
  return static_cast<size_t>(
      std::count_if(timers_.begin(), timers_.end(), [](const auto& t) { return t->isValid(); }));
}

double RunLoop::nextDueTime() const {
  double due = std::numeric_limits<double>::infinity();
  for (const auto& t : timers_)
    if (t->isValid()) due = std::min(due, t->fireDate());
  return due;
}

std::shared_ptr<NSTimer> RunLoop::nextDueTimer(double time) {
  timers_.erase(
      std::remove_if(timers_.begin(), timers_.end(), [](const auto& t) { return !t->isValid(); }),
      timers_.end());
  std::shared_ptr<NSTimer> first;
  // The first scheduled wins a tie, so timers due together fire in the order they were added.
  for (const auto& t : timers_)
    if (t->fireDate() <= time && (!first || t->fireDate() < first->fireDate())) first = t;
  return first;
}

void RunLoop::fire(const std::shared_ptr<NSTimer>& timer) {
  if (timer->repeats()) {
    timer->fireDate_ += timer->timeInterval();
  } else {
    timer->valid_ = false;
  }
  timer->fire();
}

double SteadyRunLoop::now() const {
  using namespace std::chrono;
  return duration<double>(steady_clock::now().time_since_epoch()).count();
}

void SteadyRunLoop::runUntil(double time) {
  for (;;) {
    double t = now();
    if (auto timer = nextDueTimer(t)) {
      fire(timer);
      continue;
    }
    if (t >= time) return;
    double wake = std::min(time, nextDueTime());
    std::this_thread::sleep_for(std::chrono::duration<double>(std::max(0.0, wake - t)));
  }
}

void ManualRunLoop::advance(double seconds) {
  if (!(seconds > 0) || !std::isfinite(seconds)) return;
  double target = now_ + seconds;
  while (auto timer = nextDueTimer(target)) {
    now_ = std::max(now_, timer->fireDate());
    fire(timer);
  }
  now_ = target;
}

}  // namespace zv
