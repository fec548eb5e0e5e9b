#include "platform/foundation/OperationQueue.h"

#include <fmt/format.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include "platform/foundation/Log.h"
#include "zentrova/Exception.h"

namespace zv {

// The shared state lives as long as the last thread that uses it, so a queue destroyed from one of
// its own operations (its last owner released there) still lets that thread finish cleanly.
struct OperationQueue::State {
  std::mutex mutex;
  std::condition_variable work;      // an operation may start, or the queue is stopping
  std::condition_variable finished;  // nothing waiting or running
  std::deque<std::function<void()>> waiting;
  std::vector<std::thread> threads;
  int maxConcurrent = kDefaultMaxConcurrentOperationCount;
  int running = 0;
  bool stopping = false;

  // The number of operations that may run at once. While stopping, a limit of 0 counts as 1 so
  // that operations already added are not lost.
  int limit() const {
    int n = maxConcurrent < 0 ? kDefaultThreadLimit : maxConcurrent;
    return stopping && n == 0 ? 1 : n;
  }

  bool canStart() const { return !waiting.empty() && running < limit(); }

  // Starts threads until there are as many as operations that may run now; threads are never
  // retired, so running plus idle threads is the thread count. Called with the mutex held.
  void balance(const std::shared_ptr<State>& self) {
    size_t wanted = std::min<size_t>(static_cast<size_t>(running) + waiting.size(),
                                     static_cast<size_t>(limit()));
    while (threads.size() < wanted) threads.emplace_back([self] { self->loop(); });
    work.notify_all();
  }

  void loop() {
    std::unique_lock lock(mutex);
    while (true) {
      work.wait(lock, [this] { return canStart() || (stopping && waiting.empty()); });
      if (!canStart()) return;  // stopping and drained
      std::function<void()> block = std::move(waiting.front());
      waiting.pop_front();
      ++running;
      lock.unlock();
      run(block);
      block = nullptr;  // release what the block captured before taking the lock again
      lock.lock();
      --running;
      if (running == 0 && waiting.empty()) finished.notify_all();
      if (canStart()) work.notify_one();
    }
  }

  static void run(const std::function<void()>& block) {
    try {
      block();
    } catch (const Exception& e) {
      log::system(fmt::format("Uncaught exception in an operation: {}", e.description()));
    } catch (const std::exception& e) {
      log::system(fmt::format("Uncaught exception in an operation: {}", e.what()));
    } catch (...) {
      log::system("Uncaught exception in an operation");
    }
  }
};

OperationQueue::OperationQueue() : state_(std::make_shared<State>()) {}

OperationQueue::~OperationQueue() {
  std::vector<std::thread> threads;
  {
    std::lock_guard lock(state_->mutex);
    state_->stopping = true;
    state_->balance(state_);
    threads.swap(state_->threads);
  }
  for (auto& t : threads) {
    if (t.get_id() == std::this_thread::get_id()) {
      t.detach();  // destroyed from its own operation: the thread ends after that operation
    } else {
      t.join();
    }
  }
}

int OperationQueue::maxConcurrentOperationCount() const {
  std::lock_guard lock(state_->mutex);
  return state_->maxConcurrent;
}

void OperationQueue::setMaxConcurrentOperationCount(int count) {
  if (count < kDefaultMaxConcurrentOperationCount) {
    throw Exception(Exception::kInvalidArgument,
                    fmt::format("maxConcurrentOperationCount {} is below -1", count));
  }
  std::lock_guard lock(state_->mutex);
  state_->maxConcurrent = count;
  state_->balance(state_);
}

void OperationQueue::addOperationWithBlock(std::function<void()> block) {
  if (!block) return;
  std::lock_guard lock(state_->mutex);
  state_->waiting.push_back(std::move(block));
  state_->balance(state_);
}

void OperationQueue::waitUntilAllOperationsAreFinished() {
  std::unique_lock lock(state_->mutex);
  state_->finished.wait(lock, [this] { return state_->running == 0 && state_->waiting.empty(); });
}

}  // namespace zv
