#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <future>
#include <thread>

#include "platform/foundation/OperationQueue.h"
#include "support/TestSupport.h"
#include "zentrova/Exception.h"

namespace zv {
namespace {

using namespace std::chrono_literals;

// Adds count operations and returns the most that ran at once. Each waits until `together` of them
// have been running at once (the limit the queue should reach), then finishes; a queue that runs
// more at once shows it in the peak.
int peakOverlap(OperationQueue& queue, int count, int together) {
  std::mutex m;
  std::condition_variable cv;
  int running = 0;
  int peak = 0;
  for (int i = 0; i < count; ++i) {
    queue.addOperationWithBlock([&] {
      std::unique_lock lock(m);
      peak = std::max(peak, ++running);
      cv.notify_all();
      cv.wait_for(lock, 20s, [&] { return peak >= together; });  // 20 s: only if broken
      --running;
    });
  }
  queue.waitUntilAllOperationsAreFinished();
  return peak;
}

TEST(OperationQueueTest, TheLimitHoldsAndCanChangeAtAnyTime) {
  OperationQueue queue;
  EXPECT_EQ(peakOverlap(queue, 16, 16), 16);  // the default is not the number of cores
  queue.setMaxConcurrentOperationCount(3);
  EXPECT_EQ(peakOverlap(queue, 6, 3), 3);

  // A limit of 0 holds operations; raising it starts them.
  queue.setMaxConcurrentOperationCount(0);
  std::atomic<int> ran{0};
  for (int i = 0; i < 4; ++i) queue.addOperationWithBlock([&] { ++ran; });
  EXPECT_EQ(ran.load(), 0);
  queue.setMaxConcurrentOperationCount(5);
  EXPECT_EQ(peakOverlap(queue, 5, 5), 5);
  EXPECT_EQ(ran.load(), 4);
  EXPECT_THROW(queue.setMaxConcurrentOperationCount(-2), Exception);
}

TEST(OperationQueueTest, AFailingOperationIsLoggedAndTheQueueGoesOn) {
  zvtest::LogCapture log;
  OperationQueue queue;
  queue.setMaxConcurrentOperationCount(1);
  std::atomic<int> ran{0};
  queue.addOperationWithBlock([] { throw Exception("X", "broken block"); });
  queue.addOperationWithBlock([] { throw std::runtime_error("plain failure"); });
  queue.addOperationWithBlock([&] { ++ran; });
  queue.waitUntilAllOperationsAreFinished();
  EXPECT_EQ(ran.load(), 1);
  EXPECT_EQ(log.system(),
            (std::vector<std::string>{"Uncaught exception in an operation: broken block",
                                      "Uncaught exception in an operation: plain failure"}));
}

TEST(OperationQueueTest, DestructionRunsWhatWasAddedEvenFromItsOwnOperation) {
  std::atomic<int> ran{0};
  {
    OperationQueue queue;
    queue.setMaxConcurrentOperationCount(0);  // nothing could start before destruction
    for (int i = 0; i < 5; ++i) queue.addOperationWithBlock([&] { ++ran; });
  }
  EXPECT_EQ(ran.load(), 5);

  auto queue = std::make_shared<OperationQueue>();
  std::promise<void> released;
  std::promise<void> done;
  queue->addOperationWithBlock([q = queue, &released, &done]() mutable {
    released.get_future().wait();
    q.reset();  // the last owner, inside the queue's own operation
    done.set_value();
  });
  queue.reset();
  released.set_value();
  EXPECT_EQ(done.get_future().wait_for(2s), std::future_status::ready);
}

}  // namespace
}  // namespace zv
