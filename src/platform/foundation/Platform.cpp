#include "platform/foundation/Platform.h"

#include <cstdlib>

namespace zv {

namespace {

std::filesystem::path defaultStoreDirectory() {
  if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg) {
    return std::filesystem::path(xdg) / "zentrova";
  }
  const char* home = std::getenv("HOME");
  return std::filesystem::path(home && *home ? home : ".") / ".local" / "share" / "zentrova";
}

std::filesystem::path defaultTemporaryDirectory() {
  const char* tmp = std::getenv("TMPDIR");
  return std::filesystem::path(tmp && *tmp ? tmp : "/tmp");
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
  version_ = 17.0;
  clock_ = std::make_shared<SystemClock>();
  bundleIdentifier_ = "com.zentrova.extension";
  storeDirectory_ = defaultStoreDirectory();
  temporaryDirectory_ = defaultTemporaryDirectory();
  extraCaFile_.clear();
  session.swap(urlSession_);
  center.swap(notificationCenter_);
  measurer.swap(textMeasurer_);
}

double Platform::version() const {
  std::lock_guard lock(mutex_);
  return version_;
}
void Platform::setVersion(double v) {
  std::lock_guard lock(mutex_);
  version_ = v;
}

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

}  // namespace zv
