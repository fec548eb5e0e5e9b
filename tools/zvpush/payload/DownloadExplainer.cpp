#include "payload/DownloadExplainer.h"

#include <fmt/format.h>

#include "model/ZVMedia.h"
#include "platform/foundation/Clock.h"
#include "platform/net/UrlSession.h"
#include "platform/net/UrlSessionTask.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotificationAttachment.h"

namespace zvpush {

namespace {

// "12 ms" under a second, "3.4 s" above.
std::string took(double seconds) {
  return seconds < 1 ? fmt::format("{:.0f} ms", seconds * 1000) : fmt::format("{:.1f} s", seconds);
}

std::string took(DownloadExplainer::Clock::duration d) {
  return took(std::chrono::duration<double>(d).count());
}

}  // namespace

DownloadExplainer::DownloadExplainer(std::FILE* out, Clock::duration progressEvery)
    : out_(out), progressEvery_(progressEvery) {}

void DownloadExplainer::line(const std::string& text) const {
  std::fprintf(out_, "zvpush: %s\n", text.c_str());
  std::fflush(out_);
}

void DownloadExplainer::taskProgressed(const zv::UrlSessionTask& task, std::int64_t received,
                                       std::int64_t expected) {
  TransferLog::taskProgressed(task, received, expected);
  if (!task.isDownload() || progressEvery_ == Clock::duration::zero()) return;
  std::string url = urlOf(task);
  auto now = Clock::now();
  auto started = of(url)->started;
  {
    std::lock_guard lock(mutex_);
    auto [it, added] = lastLine_.try_emplace(url, started);
    if (now - it->second < progressEvery_) return;
    it->second = now;
  }
  std::string total = expected >= 0 ? fmt::format(" of {}", expected) : "";
  line(fmt::format("media {}: {}{} bytes after {}", url, received, total, took(now - started)));
}

void DownloadExplainer::taskFinished(const zv::UrlSessionTask& task, long status,
                                     std::int64_t received, const std::optional<zv::Error>& error) {
  TransferLog::taskFinished(task, status, received, error);
  if (task.isDownload()) return;
  // The reports request: its answer is the whole story.
  std::string answer =
      error ? "failed: " + error->localizedDescription : fmt::format("HTTP {}", status);
  line(fmt::format("reports {} {}: {}", task.originalRequest().httpMethod(), urlOf(task), answer));
}

std::string DownloadExplainer::outcome(const std::string& url, const zv::ZVMedia& media,
                                       const zv::UNNotificationContent& delivered,
                                       const std::filesystem::path& attachments) const {
  auto transfer = of(url);
  if (!transfer) return "the download did not start; not attached";
  const Transfer& t = *transfer;
  for (const auto& a : delivered.attachments()) {
    if (a->identifier() != media.attachmentID) continue;
    return fmt::format("HTTP {}, {} bytes in {}; attached as {} ({})", t.status, t.received,
                       took(t.seconds), zv::UNNotificationAttachment::mediaKindOfType(a->type()),
                       a->type());
  }
  if (!t.finished) {
    return fmt::format(
        "still running when the content was delivered ({} bytes so far); "
        "not attached",
        t.received);
  }
  std::string got =
      t.status != 0 ? fmt::format("HTTP {}, {} bytes in {}", t.status, t.received, took(t.seconds))
                    : fmt::format("no answer after {}", took(t.seconds));
  std::string why;
  if (t.error && t.error->code == zv::UrlSession::kCancelledError) {
    why = "cancelled when the time budget ran out";
  } else if (t.error && t.error->code == zv::UrlSession::kBodyTooLargeError) {
    why = "the body is larger than any attachment may be";
  } else if (t.error) {
    why = "the transfer failed: " + t.error->localizedDescription;
  } else if (t.status != 200) {
    why = fmt::format("the server answered {}, not 200", t.status);
  } else {
    // The attachment check refused the file: ask it again why, from the file it left.
    std::filesystem::path file = attachments / media.getFileNameForMedia();
    zv::Error error;
    std::error_code ec;
    if (!std::filesystem::exists(file, ec)) {
      why = "the file could not be moved to the attachments folder";
    } else if (!zv::UNNotificationAttachment::attachmentWithIdentifier(
                   "explain", zv::Url::fileUrl(file), zv::Value(), &error)) {
      why = error.localizedDescription;
    } else {
      why = "it was not ready when the content was delivered";
    }
  }
  return got + "; not attached: " + why;
}

void DownloadExplainer::explain(const std::vector<std::shared_ptr<zv::ZVMedia>>& media,
                                const zv::UNNotificationContent& delivered,
                                const std::filesystem::path& attachments) const {
  if (media.empty()) line("no media to download");
  for (const auto& m : media) {
    if (!m->mediaURL) continue;
    std::string url = m->mediaURL->absoluteString();
    line(fmt::format("media {}: {}", url, outcome(url, *m, delivered, attachments)));
  }
}

}  // namespace zvpush
