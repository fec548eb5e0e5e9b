// zv::UrlSession runs HTTP(S) requests on libcurl: data tasks that hand the body to their
// completion, and download tasks that stream the body to a temporary file. Every completion runs
// on the session's one serial delegate thread, one at a time, so state that only completions
// touch needs no lock. Redirects are followed; HTTP/2 is used where the server offers it;
// connections are reused; TLS is verified against the system's certificate authorities plus the
// platform's extra CA file when one is set. Failures are zv::Error values in Error::kUrlDomain
// whose code is curl's result code and whose description is curl's message.
//
// A completion must not wait for another task of the same session: that task's completion would
// need the thread the waiting one holds. Destroying (or shutting down) a session stops its thread;
// tasks still running then are dropped and their completions never run.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "platform/net/UrlRequest.h"
#include "platform/net/UrlSessionConfiguration.h"
#include "platform/net/UrlSessionTask.h"
#include "zentrova/Url.h"

namespace zv {

class SessionEngine;

class UrlSession {
 public:
  // The body size limit of the media downloads of the service extension.
  static constexpr std::uint64_t kMediaDownloadLimit = 50ull * 1024 * 1024;
  // The code of the error a task ends with when its body grew past its maximum size.
  static constexpr long kBodyTooLargeError = 63;
  // The code of the error a cancelled task ends with.
  static constexpr long kCancelledError = -999;

  static std::shared_ptr<UrlSession> sessionWithConfiguration(
      UrlSessionConfiguration configuration);
  ~UrlSession();
  UrlSession(const UrlSession&) = delete;
  UrlSession& operator=(const UrlSession&) = delete;

  const UrlSessionConfiguration& configuration() const;

  // A suspended data task for a request; resume() starts it.
  std::shared_ptr<UrlSessionTask> dataTaskWithRequest(UrlRequest request,
                                                      DataTaskCompletion completion);
  // A suspended download task for a URL (GET, the session's cache policy and time-out). A body
  // longer than maximumSize stops the transfer, which then completes with an error (code 63).
  std::shared_ptr<UrlSessionTask> downloadTaskWithURL(
      const Url& url, DownloadTaskCompletion completion,
      std::optional<std::uint64_t> maximumSize = std::nullopt);
  std::shared_ptr<UrlSessionTask> downloadTaskWithRequest(
      UrlRequest request, DownloadTaskCompletion completion,
      std::optional<std::uint64_t> maximumSize = std::nullopt);

  // Stops the delegate thread (see above). Idempotent; also done by the destructor.
  void shutdown();
  // Whether the calling thread is this session's delegate thread.
  bool isDelegateThread() const;

 private:
  explicit UrlSession(UrlSessionConfiguration configuration);
  std::shared_ptr<SessionEngine> engine_;
};

}  // namespace zv
