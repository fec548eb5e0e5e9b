// zv::OperationQueue runs blocks on threads of its own, in the order they were added, with at most
// maxConcurrentOperationCount of them at once. The service extension starts every media download
// from such a queue and sets the limit to the number of media of each request, so that all of a
// notification's downloads run side by side; the notification center answers from one.
//
// Threads are started on demand, up to the limit, and kept for later operations. The limit may be
// changed at any time: raising it starts waiting operations at once, lowering it lets running ones
// finish. Destroying the queue runs every operation already added, then joins the threads.
#pragma once

#include <functional>
#include <memory>

namespace zv {

class OperationQueue {
 public:
  // The platform default: the queue decides. Design note: "deciding" means up to 64 operations at
  // once (the size of the phone's shared thread pool), not the number of cores: the operations of
  // this system mostly wait on the network, and a two-core machine must not serialise them.
  static constexpr int kDefaultMaxConcurrentOperationCount = -1;
  static constexpr int kDefaultThreadLimit = 64;

  OperationQueue();
  ~OperationQueue();
  OperationQueue(const OperationQueue&) = delete;
  OperationQueue& operator=(const OperationQueue&) = delete;

  int maxConcurrentOperationCount() const;
  // -1 (the default) lets the queue decide; 0 holds every operation until the limit is raised.
  // Raises zv::Exception (invalid argument) for a value below -1.
  void setMaxConcurrentOperationCount(int count);

  // Adds a block; it runs on one of the queue's threads. A zv::Exception or other exception that
  // escapes the block goes to the system log and does not stop the queue.
  void addOperationWithBlock(std::function<void()> block);

  // Blocks until no operation is waiting or running. Never call it from one of the queue's own
  // operations (it would wait for itself), nor while the limit is 0 with operations waiting.
  void waitUntilAllOperationsAreFinished();

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace zv
