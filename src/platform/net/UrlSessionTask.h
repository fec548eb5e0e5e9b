// zv::UrlSessionTask is one data or download task of a URL session. A task is created suspended;
// resume() hands it to the session, whose delegate thread runs the transfer and then the task's
// completion, exactly once. A task whose session is gone by then never runs.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/net/HttpUrlResponse.h"
#include "platform/net/UrlRequest.h"
#include "zentrova/Error.h"
#include "zentrova/Url.h"

namespace zv {

class SessionEngine;

// A data task's completion: the body (nullopt on error), the response (nullptr when no status line
// arrived) and the error (nullopt on success; an HTTP status of any value is no error).
using DataTaskCompletion =
    std::function<void(std::optional<std::string> data, std::shared_ptr<HttpUrlResponse> response,
                       std::optional<Error> error)>;
// A download task's completion: the file URL of the downloaded body (nullopt on error), the
// response and the error. The file exists until the completion returns and is removed then; to keep
// it, move it elsewhere inside the completion.
using DownloadTaskCompletion =
    std::function<void(std::optional<Url> location, std::shared_ptr<HttpUrlResponse> response,
                       std::optional<Error> error)>;

class UrlSessionTask : public std::enable_shared_from_this<UrlSessionTask> {
 public:
  enum class State { kSuspended, kRunning, kCompleted };

  // Starts the task. Only the first call counts; later calls do nothing.
  void resume();
  // Stops the task: a task not yet completed completes with the cancelled error (code
  // UrlSession::kCancelledError), soon, on the delegate thread; a suspended one when resumed.
  void cancel();
  bool isCancelled() const { return cancelled_.load(); }

  State state() const { return state_.load(); }
  std::uint64_t taskIdentifier() const { return identifier_; }
  const UrlRequest& originalRequest() const { return request_; }
  bool isDownload() const { return download_; }
  // For a download: the largest body accepted; a longer body stops the transfer with an error.
  std::optional<std::uint64_t> maximumSize() const { return maximumSize_; }

  // Internal (session engine): creates tasks and consumes their completions.
  static std::shared_ptr<UrlSessionTask> makeDataTask(std::weak_ptr<SessionEngine> engine,
                                                      UrlRequest request,
                                                      DataTaskCompletion completion);
  static std::shared_ptr<UrlSessionTask> makeDownloadTask(std::weak_ptr<SessionEngine> engine,
                                                          UrlRequest request,
                                                          DownloadTaskCompletion completion,
                                                          std::optional<std::uint64_t> maximumSize);
  DataTaskCompletion takeDataCompletion();
  DownloadTaskCompletion takeDownloadCompletion();
  void markCompleted() { state_ = State::kCompleted; }

 private:
  UrlSessionTask(std::weak_ptr<SessionEngine> engine, UrlRequest request);

  std::weak_ptr<SessionEngine> engine_;
  std::atomic<bool> cancelled_{false};
  UrlRequest request_;
  std::uint64_t identifier_;
  bool download_ = false;
  std::optional<std::uint64_t> maximumSize_;
  DataTaskCompletion dataCompletion_;
  DownloadTaskCompletion downloadCompletion_;
  std::atomic<State> state_{State::kSuspended};
};

}  // namespace zv
