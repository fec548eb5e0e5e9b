#include "platform/net/UrlSession.h"

#include "platform/net/SessionEngine.h"

namespace zv {

UrlSession::UrlSession(UrlSessionConfiguration configuration)
    : engine_(std::make_shared<SessionEngine>(configuration)) {}

UrlSession::~UrlSession() { engine_->shutdown(); }

std::shared_ptr<UrlSession> UrlSession::sessionWithConfiguration(
    UrlSessionConfiguration configuration) {
  return std::shared_ptr<UrlSession>(new UrlSession(configuration));
}

const UrlSessionConfiguration& UrlSession::configuration() const {
  return engine_->configuration();
}

std::shared_ptr<UrlSessionTask> UrlSession::dataTaskWithRequest(UrlRequest request,
                                                                DataTaskCompletion completion) {
  return UrlSessionTask::makeDataTask(engine_, std::move(request), std::move(completion));
}

std::shared_ptr<UrlSessionTask> UrlSession::downloadTaskWithURL(
    const Url& url, DownloadTaskCompletion completion, std::optional<std::uint64_t> maximumSize) {
  UrlRequest request(url, configuration().requestCachePolicy,
                     configuration().timeoutIntervalForRequest);
  return downloadTaskWithRequest(std::move(request), std::move(completion), maximumSize);
}

std::shared_ptr<UrlSessionTask> UrlSession::downloadTaskWithRequest(
    UrlRequest request, DownloadTaskCompletion completion,
    std::optional<std::uint64_t> maximumSize) {
  return UrlSessionTask::makeDownloadTask(engine_, std::move(request), std::move(completion),
                                          maximumSize);
}

void UrlSession::shutdown() { engine_->shutdown(); }

bool UrlSession::isDelegateThread() const { return engine_->isDelegateThread(); }

}  // namespace zv
