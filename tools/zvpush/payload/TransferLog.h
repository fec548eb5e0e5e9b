// What became of each download of a notification's media, by URL: when it started, how many bytes
// arrived, whether it finished, the HTTP status, the transfer error and the time it took. A URL
// session observer (progress and end of every task, on the session's delegate thread); other
// requests than downloads (the reports request) are not recorded. zvpush service --explain and the
// studio read it to say why a media item was not attached, zvpush check --fetch to find media
// the phone would not show. Thread-safe.
#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

#include "platform/net/UrlSessionObserver.h"

namespace zv {
class UrlSessionTask;
}  // namespace zv

namespace zvpush {

class TransferLog : public zv::UrlSessionObserver {
 public:
  using Clock = std::chrono::steady_clock;

  struct Transfer {
    Clock::time_point started;
    bool finished = false;
    long status = 0;
    std::int64_t received = 0;
    std::optional<zv::Error> error;
    double seconds = 0;  // from the first sign of the download to its end
  };

  void taskProgressed(const zv::UrlSessionTask& task, std::int64_t received,
                      std::int64_t expected) override;
  void taskFinished(const zv::UrlSessionTask& task, long status, std::int64_t received,
                    const std::optional<zv::Error>& error) override;

  // The download of this URL as it stands, or nullopt when it never started.
  std::optional<Transfer> of(const std::string& url) const;

  static std::string urlOf(const zv::UrlSessionTask& task);

 private:
  mutable std::mutex mutex_;
  std::map<std::string, Transfer> byUrl_;
};

}  // namespace zvpush
