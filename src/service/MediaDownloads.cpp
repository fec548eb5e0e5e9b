#include "service/MediaDownloads.h"

#include "platform/foundation/Log.h"
#include "platform/net/UrlSessionTask.h"

namespace zv {

void MediaDownloads::finish(const std::shared_ptr<UNNotificationAttachment>& attachment) {
  std::unique_lock lock(mutex_);
  ++finished_;
  if (attachment) {
    results_.push_back(attachment);
  } else {
    log::system("Attachment Download failure");
  }
  if (finished_ < total_) return;
  Attachments done = results_;
  // Let go of the completion once it has run: it may hold what holds these downloads.
  auto completion = std::move(completion_);
  completion_ = nullptr;
  lock.unlock();
  if (completion) completion(done);
}

void MediaDownloads::started(const std::shared_ptr<UrlSessionTask>& task) {
  std::unique_lock lock(mutex_);
  if (stopped_) {
    lock.unlock();
    task->cancel();
    return;
  }
  tasks_.push_back(task);
}

MediaDownloads::Attachments MediaDownloads::finishedSoFar() const {
  std::lock_guard lock(mutex_);
  return results_;
}

void MediaDownloads::stop() {
  std::vector<std::weak_ptr<UrlSessionTask>> tasks;
  {
    std::lock_guard lock(mutex_);
    stopped_ = true;
    tasks.swap(tasks_);
  }
  for (const auto& weak : tasks) {
    if (auto task = weak.lock()) task->cancel();
  }
}

}  // namespace zv
