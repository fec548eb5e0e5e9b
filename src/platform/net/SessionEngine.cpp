#include "platform/net/SessionEngine.h"

#include <algorithm>
#include <chrono>
#include <new>

#include "platform/foundation/Clock.h"
#include "platform/net/UrlSession.h"

namespace zv {

namespace {

void initCurlOnce() {
  static std::once_flag once;
  std::call_once(once, [] { curl_global_init(CURL_GLOBAL_DEFAULT); });
}

// How long the delegate thread sleeps with nothing to do; a new task wakes it at once.
constexpr int kIdleWaitMs = 60000;
// The longest sleep while transfers run, so that idle deadlines are checked often enough.
constexpr long kBusyWaitMs = 1000;

}  // namespace

SessionEngine::SessionEngine(UrlSessionConfiguration configuration)
    : configuration_(configuration) {
  initCurlOnce();
  multi_.reset(curl_multi_init());
  if (!multi_) throw std::bad_alloc();
  curl_multi_setopt(multi_.get(), CURLMOPT_PIPELINING, CURLPIPE_MULTIPLEX);
}

SessionEngine::~SessionEngine() {
  shutdown();
  dropAll();
}

void SessionEngine::start(std::shared_ptr<UrlSessionTask> task) {
  {
    std::lock_guard lock(mutex_);
    if (stopping_) return;
    pending_.push_back(std::move(task));
    if (!thread_.joinable()) {
      // The thread keeps the engine alive until it has left its loop, so an engine released from
      // inside a completion is destroyed only once the thread no longer uses it.
      thread_ = std::thread([self = shared_from_this()] { self->run(); });
      threadId_ = thread_.get_id();
    }
  }
  curl_multi_wakeup(multi_.get());
}

void SessionEngine::cancel() { curl_multi_wakeup(multi_.get()); }

void SessionEngine::shutdown() {
  std::thread thread;
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
    thread = std::move(thread_);
  }
  curl_multi_wakeup(multi_.get());
  if (!thread.joinable()) return;
  if (thread.get_id() == std::this_thread::get_id()) {
    thread.detach();
  } else {
    thread.join();
  }
}

bool SessionEngine::isDelegateThread() const {
  std::lock_guard lock(mutex_);
  return threadId_ == std::this_thread::get_id();
}

void SessionEngine::run() {
  while (!stopping_) {
    endCancelled();
    beginPending();
    int running = 0;
    curl_multi_perform(multi_.get(), &running);
    finishDone();
    if (stopping_) break;
    expireIdle();
    if (stopping_) break;
    curl_multi_poll(multi_.get(), nullptr, 0, nextWaitMilliseconds(), nullptr);
  }
  dropAll();
  std::lock_guard lock(mutex_);
  pending_.clear();
}

void SessionEngine::beginPending() {
  std::vector<std::shared_ptr<UrlSessionTask>> starting;
  {
    std::lock_guard lock(mutex_);
    starting.swap(pending_);
  }
  for (auto& task : starting) {
    if (stopping_) return;
    bool cancelled = task->isCancelled();
    auto transfer = CurlTransfer::create(std::move(task), configuration_);
    if (cancelled) {
      transfer->finishWithError(
          Error{Error::kUrlDomain, UrlSession::kCancelledError, "The task was cancelled."});
      continue;
    }
    if (auto error = transfer->setupError()) {
      transfer->finishWithError(*error);
      continue;
    }
    CURL* easy = transfer->handle();
    if (curl_multi_add_handle(multi_.get(), easy) != CURLM_OK) {
      transfer->finishWithError(
          Error{Error::kUrlDomain, CURLE_FAILED_INIT, curl_easy_strerror(CURLE_FAILED_INIT)});
      continue;
    }
    transfers_.emplace(easy, std::move(transfer));
  }
}

void SessionEngine::finishDone() {
  int left = 0;
  while (!stopping_) {
    CURLMsg* message = curl_multi_info_read(multi_.get(), &left);
    if (!message) break;
    if (message->msg != CURLMSG_DONE) continue;
    CURL* easy = message->easy_handle;
    CURLcode code = message->data.result;
    curl_multi_remove_handle(multi_.get(), easy);
    auto it = transfers_.find(easy);
    if (it == transfers_.end()) continue;
    if (code == CURLE_OK && it->second->followRedirectWithBody() &&
        curl_multi_add_handle(multi_.get(), easy) == CURLM_OK) {
      continue;
    }
    std::unique_ptr<CurlTransfer> transfer = std::move(it->second);
    transfers_.erase(it);
    transfer->finish(code);
  }
}

void SessionEngine::expireIdle() {
  auto now = CurlTransfer::Clock::now();
  std::vector<CURL*> expired;
  for (const auto& [easy, transfer] : transfers_) {
    auto deadline = transfer->idleDeadline();
    if (deadline && *deadline <= now) expired.push_back(easy);
  }
  for (CURL* easy : expired) {
    if (stopping_) return;
    curl_multi_remove_handle(multi_.get(), easy);
    std::unique_ptr<CurlTransfer> transfer = std::move(transfers_[easy]);
    transfers_.erase(easy);
    transfer->finishWithError(transfer->timeoutError());
  }
}

void SessionEngine::endCancelled() {
  std::vector<CURL*> cancelled;
  for (const auto& [easy, transfer] : transfers_) {
    if (transfer->task()->isCancelled()) cancelled.push_back(easy);
  }
  for (CURL* easy : cancelled) {
    if (stopping_) return;
    curl_multi_remove_handle(multi_.get(), easy);
    std::unique_ptr<CurlTransfer> transfer = std::move(transfers_[easy]);
    transfers_.erase(easy);
    transfer->finishWithError(
        Error{Error::kUrlDomain, UrlSession::kCancelledError, "The task was cancelled."});
  }
}

int SessionEngine::nextWaitMilliseconds() const {
  if (transfers_.empty()) return kIdleWaitMs;
  long wait = kBusyWaitMs;
  long curlWait = -1;
  curl_multi_timeout(multi_.get(), &curlWait);
  if (curlWait >= 0) wait = std::min(wait, curlWait);
  auto now = CurlTransfer::Clock::now();
  for (const auto& [easy, transfer] : transfers_) {
    if (auto deadline = transfer->idleDeadline()) {
      auto ms = std::chrono::ceil<std::chrono::milliseconds>(*deadline - now).count();
      wait = std::min<long>(wait, std::max<long>(ms, 0));
    }
  }
  return static_cast<int>(wait);
}

void SessionEngine::dropAll() {
  for (const auto& [easy, transfer] : transfers_) curl_multi_remove_handle(multi_.get(), easy);
  transfers_.clear();
}

}  // namespace zv
