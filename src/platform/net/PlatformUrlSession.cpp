// The platform object's URL session: created on first use with the configuration the reporting
// and the media downloads want (reload ignoring local data; sessions keep no URL cache anyway).
//
// At process exit the session's delegate thread is stopped and joined by an exit handler that is
// registered when the first session is handed out, so it runs before the static objects that
// existed then are destroyed (the platform object included): a completion never runs against
// objects that static destruction has already taken down. Transfers still running at exit are
// dropped.
#include <cstdlib>
#include <mutex>

#include "platform/foundation/Platform.h"
#include "platform/net/UrlSession.h"

namespace zv {

std::shared_ptr<UrlSession> Platform::urlSession() {
  static std::once_flag exitHandler;
  std::call_once(exitHandler, [] {
    std::atexit([] {
      std::shared_ptr<UrlSession> session;
      {
        Platform& platform = Platform::shared();
        std::lock_guard lock(platform.mutex_);
        session = platform.urlSession_;
      }
      if (session) session->shutdown();
    });
  });
  std::lock_guard lock(mutex_);
  if (!urlSession_) {
    auto configuration = UrlSessionConfiguration::defaultSessionConfiguration();
    configuration.requestCachePolicy = UrlRequest::kReloadIgnoringLocalCacheData;
    urlSession_ = UrlSession::sessionWithConfiguration(configuration);
  }
  return urlSession_;
}

void Platform::setUrlSession(std::shared_ptr<UrlSession> session) {
  std::shared_ptr<UrlSession> previous;
  {
    std::lock_guard lock(mutex_);
    previous = std::move(urlSession_);
    urlSession_ = std::move(session);
  }
  // The previous session (if this was its last owner) is destroyed here, outside the lock: its
  // destructor joins its delegate thread, whose completions may use the platform object.
}

}  // namespace zv
