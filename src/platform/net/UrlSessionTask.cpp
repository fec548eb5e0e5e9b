#include "platform/net/UrlSessionTask.h"

#include "platform/net/SessionEngine.h"

namespace zv {

namespace {
std::atomic<std::uint64_t> nextIdentifier{1};
}  // namespace

UrlSessionTask::UrlSessionTask(std::weak_ptr<SessionEngine> engine, UrlRequest request)
    : engine_(std::move(engine)), request_(std::move(request)), identifier_(nextIdentifier++) {}

std::shared_ptr<UrlSessionTask> UrlSessionTask::makeDataTask(std::weak_ptr<SessionEngine> engine,
                                                             UrlRequest request,
                                                             DataTaskCompletion completion) {
  std::shared_ptr<UrlSessionTask> task(new UrlSessionTask(std::move(engine), std::move(request)));
  task->dataCompletion_ = std::move(completion);
  return task;
}

std::shared_ptr<UrlSessionTask> UrlSessionTask::makeDownloadTask(
    std::weak_ptr<SessionEngine> engine, UrlRequest request, DownloadTaskCompletion completion,
    std::optional<std::uint64_t> maximumSize) {
  std::shared_ptr<UrlSessionTask> task(new UrlSessionTask(std::move(engine), std::move(request)));
  task->download_ = true;
  task->downloadCompletion_ = std::move(completion);
  task->maximumSize_ = maximumSize;
  return task;
}

void UrlSessionTask::resume() {
  State expected = State::kSuspended;
  if (!state_.compare_exchange_strong(expected, State::kRunning)) return;
  if (auto engine = engine_.lock()) engine->start(shared_from_this());
}

void UrlSessionTask::cancel() {
  if (cancelled_.exchange(true)) return;
  if (state_.load() != State::kRunning) return;  // suspended: resume() finds it cancelled
  if (auto engine = engine_.lock()) engine->cancel();
}

DataTaskCompletion UrlSessionTask::takeDataCompletion() { return std::move(dataCompletion_); }

DownloadTaskCompletion UrlSessionTask::takeDownloadCompletion() {
  return std::move(downloadCompletion_);
}

}  // namespace zv
