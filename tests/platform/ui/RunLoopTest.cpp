#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/ui/NSTimer.h"
#include "platform/ui/RunLoop.h"

namespace zv {
namespace {

TEST(RunLoopTest, ManualLoopFiresDueTimersInOrderAtTheirTimes) {
  auto loop = std::make_shared<ManualRunLoop>();
  auto previous = RunLoop::setCurrent(loop);
  std::vector<std::string> fired;
  auto log = [&](const char* name) {
    return [&fired, name, loop](NSTimer&) {
      fired.push_back(std::string(name) + "@" + std::to_string(loop->now()).substr(0, 3));
    };
  };
  auto paging = NSTimer::scheduledTimerWithTimeInterval(3.0, true, log("page"));
  NSTimer::scheduledTimerWithTimeInterval(4.5, false, log("once"));
  auto stopped = NSTimer::scheduledTimerWithTimeInterval(1.0, true, log("never"));
  stopped->invalidate();
  loop->advance(6.1);
  EXPECT_EQ(fired, (std::vector<std::string>{"page@3.0", "once@4.5", "page@6.0"}));
  EXPECT_DOUBLE_EQ(loop->now(), 6.1);

  // A timer invalidated from its own block fires no more.
  fired.clear();
  NSTimer::scheduledTimerWithTimeInterval(0.5, true, [&](NSTimer& t) {
    fired.push_back("self");
    t.invalidate();
  });
  paging->invalidate();
  loop->advance(10);
  EXPECT_EQ(fired, (std::vector<std::string>{"self"}));
  EXPECT_EQ(loop->scheduledTimerCount(), 0u);
  RunLoop::setCurrent(previous);
}

TEST(RunLoopTest, SteadyLoopRunsDueTimers) {
  auto loop = std::make_shared<SteadyRunLoop>();
  auto previous = RunLoop::setCurrent(loop);
  int count = 0;
  NSTimer::scheduledTimerWithTimeInterval(0.001, true, [&](NSTimer& t) {
    if (++count == 3) t.invalidate();
  });
  loop->runUntil(loop->now() + 0.05);
  EXPECT_EQ(count, 3);
  RunLoop::setCurrent(previous);
}

}  // namespace
}  // namespace zv
