#include "platform/ui/RunLoop.h"

#include <chrono>

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

double SteadyRunLoop::now() const {
  using namespace std::chrono;
  return duration<double>(steady_clock::now().time_since_epoch()).count();
}

void ManualRunLoop::advance(double seconds) {
  if (seconds > 0) now_ += seconds;
}

}  // namespace zv
