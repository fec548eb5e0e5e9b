#include "platform/foundation/Log.h"

#include <cstdio>
#include <memory>
#include <mutex>

namespace zv::log {

namespace {

// Receivers are swapped under a lock and called outside it, so a receiver may log itself.
class Outlet {
 public:
  explicit Outlet(Receiver fallback) : fallback_(std::move(fallback)) {}

  void set(Receiver r) {
    auto next = r ? std::make_shared<const Receiver>(std::move(r)) : nullptr;
    std::lock_guard lock(mutex_);
    receiver_ = std::move(next);
  }

  void send(const std::string& message) {
    std::shared_ptr<const Receiver> r;
    {
      std::lock_guard lock(mutex_);
      r = receiver_;
    }
    if (r) {
      (*r)(message);
    } else if (fallback_) {
      fallback_(message);
    }
  }

 private:
  std::mutex mutex_;
  std::shared_ptr<const Receiver> receiver_;
  Receiver fallback_;
};

Outlet& sinkOutlet() {
  static Outlet outlet{Receiver{}};
  return outlet;
}

Outlet& systemOutlet() {
  static Outlet outlet{[](const std::string& m) { std::fprintf(stderr, "%s\n", m.c_str()); }};
  return outlet;
}

}  // namespace

void setSinkReceiver(Receiver receiver) { sinkOutlet().set(std::move(receiver)); }
void sink(const std::string& message) { sinkOutlet().send(message); }
void setSystemReceiver(Receiver receiver) { systemOutlet().set(std::move(receiver)); }
void system(const std::string& message) { systemOutlet().send(message); }

}  // namespace zv::log
