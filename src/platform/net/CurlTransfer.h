// zv::CurlTransfer is the libcurl side of one running task: the easy handle with its options, the
// body being collected (in memory for a data task, in a temporary file for a download), the
// response header fields, and the bookkeeping for the idle time-out and the size limit. It lives
// on the session's delegate thread only, from the moment the task starts until its completion
// has returned.
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "platform/foundation/UniqueHandle.h"
#include "platform/net/HttpUrlResponse.h"
#include "platform/net/UrlSessionConfiguration.h"
#include "platform/net/UrlSessionTask.h"
#include "zentrova/Error.h"

namespace zv {

class CurlTransfer {
 public:
  using Clock = std::chrono::steady_clock;

  // Prepares the transfer of a task. When that fails (no URL, no temporary file), setupError()
  // says why and the transfer must be finished with it instead of being run.
  static std::unique_ptr<CurlTransfer> create(std::shared_ptr<UrlSessionTask> task,
                                              const UrlSessionConfiguration& configuration);
  const std::optional<Error>& setupError() const { return setupError_; }
  ~CurlTransfer();
  CurlTransfer(const CurlTransfer&) = delete;
  CurlTransfer& operator=(const CurlTransfer&) = delete;

  CURL* handle() const { return easy_.get(); }
  const std::shared_ptr<UrlSessionTask>& task() const { return task_; }
  // When the transfer times out unless data moves before; nullopt without a time-out.
  std::optional<Clock::time_point> idleDeadline() const;
  // The time-out error for a transfer whose idle deadline has passed.
  Error timeoutError() const;

  // After a transfer that ended well: when it sent a body and the answer is a 307 or 308, points
  // it at the new location and returns true, and the engine runs it again (with its method and
  // body). Other redirects of a request with a body are its answer.
  bool followRedirectWithBody();
  // Runs the task's completion with the outcome of the transfer (curl's result code), then
  // removes the downloaded file if the completion left it in place.
  void finish(CURLcode code);
  // Runs the task's completion with an error and no body.
  void finishWithError(const Error& error);

 private:
  CurlTransfer(std::shared_ptr<UrlSessionTask> task, double timeoutSeconds);
  bool configure(const UrlSessionConfiguration& configuration, Error* error);
  bool openDownloadFile(Error* error);
  std::shared_ptr<HttpUrlResponse> response() const;
  Error errorFor(CURLcode code) const;
  void deliver(std::optional<std::string> body, std::optional<Url> location,
               std::shared_ptr<HttpUrlResponse> response, std::optional<Error> error);
  void removeDownloadFile();

  static size_t onWrite(char* data, size_t size, size_t count, void* self);
  static size_t onHeader(char* data, size_t size, size_t count, void* self);
  static int onProgress(void* self, curl_off_t, curl_off_t dlnow, curl_off_t, curl_off_t ulnow);
  static CURLcode onSslContext(CURL*, void* sslContext, void* self);

  std::shared_ptr<UrlSessionTask> task_;
  std::optional<Error> setupError_;
  UniqueHandle<CURL, curl_easy_cleanup> easy_;
  UniqueHandle<curl_slist, curl_slist_free_all> headerList_;
  static constexpr long kMaxRedirects = 16;
  std::string requestBody_;
  bool sendsBody_ = false;
  long redirects_ = 0;
  std::string extraCaFile_;
  std::filesystem::path downloadDirectory_;
  std::shared_ptr<UrlSessionObserver> observer_;
  char errorBuffer_[CURL_ERROR_SIZE] = {};

  std::string body_;
  UniqueHandle<std::FILE, std::fclose> file_;
  std::filesystem::path filePath_;
  std::uint64_t received_ = 0;
  bool sizeExceeded_ = false;
  bool writeFailed_ = false;
  HttpUrlResponse::Headers headers_;

  double timeoutSeconds_;
  Clock::time_point started_;
  Clock::time_point lastActivity_;
  curl_off_t lastDownloaded_ = 0;
  curl_off_t lastUploaded_ = 0;
};

}  // namespace zv
