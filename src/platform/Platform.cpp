#include "zentrova/Platform.h"

#include <cstdlib>

#include "platform/foundation/Clock.h"
#include "platform/foundation/FileManager.h"
#include "platform/foundation/SystemVersion.h"
#include "platform/net/UrlSession.h"
#include "platform/notifications/NotificationCenter.h"
#include "platform/text/TextMeasurer.h"

namespace zv {

namespace {

std::filesystem::path defaultStoreDirectory() {
  if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg) {
    return std::filesystem::path(xdg) / "zentrova";
  }
  const char* home = std::getenv("HOME");
  return std::filesystem::path(home && *home ? home : ".") / ".local" / "share" / "zentrova";
}

}  // namespace

Platform::Platform() { reset(); }

Platform& Platform::shared() {
  static Platform platform;
  return platform;
}

void Platform::reset() {
  // The ports are released after the lock: their destructors may finish pending work whose
  // completions use the platform object.
  std::shared_ptr<UrlSession> session;
  std::shared_ptr<NotificationCenter> center;
  std::shared_ptr<TextMeasurer> measurer;
  std::lock_guard lock(mutex_);
  setSystemVersion(17.0);
  clock_ = std::make_shared<SystemClock>();
  bundleIdentifier_ = "com.zentrova.extension";
  storeDirectory_ = defaultStoreDirectory();
  temporaryDirectory_ = FileManager::processTemporaryDirectory();
  extraCaFile_.clear();
  session.swap(urlSession_);
  center.swap(notificationCenter_);
  measurer.swap(textMeasurer_);
}

double Platform::version() const { return systemVersion(); }
void Platform::setVersion(double v) { setSystemVersion(v); }

std::shared_ptr<Clock> Platform::clock() const {
  std::lock_guard lock(mutex_);
  return clock_;
}
void Platform::setClock(std::shared_ptr<Clock> clock) {
  std::lock_guard lock(mutex_);
  clock_ = clock ? std::move(clock) : std::make_shared<SystemClock>();
}

std::string Platform::bundleIdentifier() const {
  std::lock_guard lock(mutex_);
  return bundleIdentifier_;
}
void Platform::setBundleIdentifier(std::string id) {
  std::lock_guard lock(mutex_);
  bundleIdentifier_ = std::move(id);
}

std::filesystem::path Platform::storeDirectory() const {
  std::lock_guard lock(mutex_);
  return storeDirectory_;
}
void Platform::setStoreDirectory(std::filesystem::path dir) {
  std::lock_guard lock(mutex_);
  storeDirectory_ = std::move(dir);
}

std::filesystem::path Platform::temporaryDirectory() const {
  std::lock_guard lock(mutex_);
  return temporaryDirectory_;
}
void Platform::setTemporaryDirectory(std::filesystem::path dir) {
  std::lock_guard lock(mutex_);
  temporaryDirectory_ = std::move(dir);
}

std::string Platform::extraCaFile() const {
  std::lock_guard lock(mutex_);
  return extraCaFile_;
}
void Platform::setExtraCaFile(std::string path) {
  std::lock_guard lock(mutex_);
  extraCaFile_ = std::move(path);
}

// At process exit the session's delegate thread is stopped and joined by an exit handler that is
// registered when the first session is handed out, so it runs before the static objects that
// existed then are destroyed (the platform object included): a completion never runs against
// objects that static destruction has already taken down. Transfers still running at exit are
// dropped.
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
  if (!urlSession_) urlSession_ = UrlSession::sessionWithConfiguration(configurationLocked());
  return urlSession_;
}

UrlSessionConfiguration Platform::urlSessionConfiguration() const {
  std::lock_guard lock(mutex_);
  return configurationLocked();
}

UrlSessionConfiguration Platform::configurationLocked() const {
  auto configuration = UrlSessionConfiguration::defaultSessionConfiguration();
  configuration.requestCachePolicy = UrlRequest::kReloadIgnoringLocalCacheData;
  configuration.extraCaFile = extraCaFile_;
  configuration.temporaryDirectory = temporaryDirectory_;
  return configuration;
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

std::shared_ptr<NotificationCenter> Platform::notificationCenter() {
  std::lock_guard lock(mutex_);
  if (!notificationCenter_) notificationCenter_ = std::make_shared<NotificationCenter>(clock_);
  return notificationCenter_;
}

void Platform::setNotificationCenter(std::shared_ptr<NotificationCenter> center) {
  {
    std::lock_guard lock(mutex_);
    notificationCenter_.swap(center);
  }
  // The previous center (now in center) answers its pending queries as it goes, outside the lock.
}

std::shared_ptr<TextMeasurer> Platform::textMeasurer() {
  std::lock_guard lock(mutex_);
  return textMeasurer_;
}

void Platform::setTextMeasurer(std::shared_ptr<TextMeasurer> measurer) {
  std::lock_guard lock(mutex_);
  textMeasurer_ = std::move(measurer);
}

}  // namespace zv
