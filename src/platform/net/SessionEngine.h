// zv::SessionEngine is the machinery behind a URL session: one curl multi handle and the one
// serial delegate thread that drives it. The thread starts with the first task, adds the tasks
// handed to it, runs the transfers (connections and TLS sessions are reused between them, HTTP/2
// streams share a connection) and calls every completion, one at a time. It stops on shutdown():
// transfers still running are dropped without calling their completions.
//
// Thread use: start() and shutdown() from any thread; everything else on the delegate thread.
#pragma once

#include <curl/curl.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <vector>

#include "platform/foundation/UniqueHandle.h"
#include "platform/net/CurlTransfer.h"
#include "platform/net/UrlSessionConfiguration.h"
#include "platform/net/UrlSessionTask.h"

namespace zv {

class SessionEngine : public std::enable_shared_from_this<SessionEngine> {
 public:
  explicit SessionEngine(UrlSessionConfiguration configuration);
  ~SessionEngine();
  SessionEngine(const SessionEngine&) = delete;
  SessionEngine& operator=(const SessionEngine&) = delete;

  const UrlSessionConfiguration& configuration() const { return configuration_; }

  // Queues a resumed task for the delegate thread (starting the thread if needed). Ignored once
  // the engine is shutting down.
  void start(std::shared_ptr<UrlSessionTask> task);
  // Wakes the delegate thread to end the tasks that were cancelled.
  void cancel();
  // Stops the delegate thread and waits for it, unless called on it (from a completion), in which
  // case the thread ends as soon as that completion returns. Idempotent.
  void shutdown();
  // Whether the calling thread is the delegate thread.
  bool isDelegateThread() const;

 private:
  void run();
  void beginPending();
  void finishDone();
  void expireIdle();
  void endCancelled();
  int nextWaitMilliseconds() const;
  void dropAll();

  const UrlSessionConfiguration configuration_;
  UniqueHandle<CURLM, curl_multi_cleanup> multi_;
  std::atomic<bool> stopping_{false};
  mutable std::mutex mutex_;
  std::vector<std::shared_ptr<UrlSessionTask>> pending_;
  std::thread thread_;
  std::thread::id threadId_;
  // Delegate thread only.
  std::unordered_map<CURL*, std::unique_ptr<CurlTransfer>> transfers_;
};

}  // namespace zv
