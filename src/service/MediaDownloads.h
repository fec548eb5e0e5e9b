// zv::MediaDownloads is what the media downloads of one notification share while they run: how
// many have finished, the attachments made so far, and the running tasks, so that the time budget
// can deliver what is ready and stop the rest (each stopped download counts as failed).
// Completions normally arrive one at a time on the URL session's delegate thread, but a download
// that cannot even start is counted from the queue's thread, and the budget reads and stops them
// from the caller's, so every member is guarded by one lock.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace zv {

class UNNotificationAttachment;
class UrlSessionTask;

class MediaDownloads {
 public:
  using Attachments = std::vector<std::shared_ptr<UNNotificationAttachment>>;

  MediaDownloads(std::size_t total, std::function<void(const Attachments&)> completion)
      : total_(total), completion_(std::move(completion)) {}

  // One download ended, with its attachment or nullptr; the last one runs the completion with
  // every attachment made, in the order they finished.
  void finish(const std::shared_ptr<UNNotificationAttachment>& attachment);
  // A download task is running; one that starts after stop() is cancelled at once.
  void started(const std::shared_ptr<UrlSessionTask>& task);
  Attachments finishedSoFar() const;
  // Cancels every running task.
  void stop();

 private:
  mutable std::mutex mutex_;
  std::size_t finished_ = 0;
  const std::size_t total_;
  bool stopped_ = false;
  Attachments results_;
  std::vector<std::weak_ptr<UrlSessionTask>> tasks_;
  std::function<void(const Attachments&)> completion_;
};

}  // namespace zv
