// The service's content-only flow (no store, no report) run for real on one request, downloading
// through a URL session of the caller's own (its observer sees each transfer), as the studio and
// zvpush check --fetch run it. Waits at most the budget; then, as the phone does, it tells the
// extension its time is up and takes the best attempt. The caller shuts the session down once it
// has read what it needs from the observer.
#pragma once

#include <chrono>
#include <memory>

#include "platform/net/UrlSessionConfiguration.h"

namespace zv {
class UNNotificationContent;
class UNNotificationRequest;
class UrlSession;
}  // namespace zv

namespace zvpush {

struct ContentOnlyFlow {
  std::shared_ptr<zv::UNNotificationContent> content;
  std::shared_ptr<zv::UrlSession> session;
  bool expired = false;

  static ContentOnlyFlow run(const std::shared_ptr<zv::UNNotificationRequest>& request,
                             const zv::UrlSessionConfiguration& configuration,
                             std::chrono::seconds budget);
};

}  // namespace zvpush
