#include "payload/TransferLog.h"

#include "platform/net/UrlSessionTask.h"

namespace zvpush {

std::string TransferLog::urlOf(const zv::UrlSessionTask& task) {
  const auto& url = task.originalRequest().url();
  return url ? url->absoluteString() : "";
}

void TransferLog::taskProgressed(const zv::UrlSessionTask& task, std::int64_t received,
                                 std::int64_t) {
  if (!task.isDownload()) return;
  auto now = Clock::now();
  std::lock_guard lock(mutex_);
  auto [it, added] = byUrl_.try_emplace(urlOf(task));
  if (added) it->second.started = now;
  it->second.received = received;
}

void TransferLog::taskFinished(const zv::UrlSessionTask& task, long status, std::int64_t received,
                               const std::optional<zv::Error>& error) {
  if (!task.isDownload()) return;
  auto now = Clock::now();
  std::lock_guard lock(mutex_);
  auto [it, added] = byUrl_.try_emplace(urlOf(task));
  Transfer& t = it->second;
  if (added) t.started = now;
  t.finished = true;
  t.status = status;
  t.received = received;
  t.error = error;
  t.seconds = std::chrono::duration<double>(now - t.started).count();
}

std::optional<TransferLog::Transfer> TransferLog::of(const std::string& url) const {
  std::lock_guard lock(mutex_);
  auto it = byUrl_.find(url);
  if (it == byUrl_.end()) return std::nullopt;
  return it->second;
}

}  // namespace zvpush
