// What happened to each media item of a notification, for zvpush service --explain: it watches
// the URL session (a TransferLog: HTTP status, bytes received, transfer error, time taken) and,
// once the content
// handler has the content, says on stderr for each media item whether it became an attachment and,
// when not, why (the server's answer, the transfer error, or the attachment check's own error
// read again from the file). A slow download prints a line of progress every few seconds when
// asked to (on a terminal). The reports request gets a line when it ends. The library's own log
// messages are left as they are; these lines all start "zvpush: ".
#pragma once

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "payload/TransferLog.h"

namespace zv {
class ZVMedia;
class UNNotificationContent;
}  // namespace zv

namespace zvpush {

class DownloadExplainer : public TransferLog {
 public:
  // progressEvery: how often a running download prints its progress; zero prints none.
  DownloadExplainer(std::FILE* out, Clock::duration progressEvery);

  void taskProgressed(const zv::UrlSessionTask& task, std::int64_t received,
                      std::int64_t expected) override;
  void taskFinished(const zv::UrlSessionTask& task, long status, std::int64_t received,
                    const std::optional<zv::Error>& error) override;

  // One line per media item, in payload order, once the content has been delivered.
  // attachments: the folder the attachments are moved to.
  void explain(const std::vector<std::shared_ptr<zv::ZVMedia>>& media,
               const zv::UNNotificationContent& delivered,
               const std::filesystem::path& attachments) const;

 private:
  std::string outcome(const std::string& url, const zv::ZVMedia& media,
                      const zv::UNNotificationContent& delivered,
                      const std::filesystem::path& attachments) const;
  void line(const std::string& text) const;

  std::FILE* out_;
  Clock::duration progressEvery_;
  mutable std::mutex mutex_;
  std::map<std::string, Clock::time_point> lastLine_;  // by URL: the last progress line printed
};

}  // namespace zvpush
