// zv::Platform is the one process-wide object through which the system reaches the operating-system
// services it runs on: the clock, the platform version, where stores and temporary files live, the
// URL session, the notification center and the text measurer. The host application, the CLI or a
// test installs what it wants before first use; anything not installed is the real default.
//
// Getters of the ports created on demand (urlSession, notificationCenter, textMeasurer) are defined
// by the module that owns the port, so that this header depends on none of them. All accessors are
// thread-safe.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>

#include "platform/foundation/Clock.h"

namespace zv {

class UrlSession;
class NotificationCenter;
class TextMeasurer;

class Platform {
 public:
  static Platform& shared();

  // The platform version that version tests compare with (12.0, 13.0, 14.0, 15.0). Default 17.0.
  double version() const;
  void setVersion(double v);

  std::shared_ptr<Clock> clock() const;
  void setClock(std::shared_ptr<Clock> clock);

  // The process's bundle identifier: names the extension's own standard store.
  std::string bundleIdentifier() const;
  void setBundleIdentifier(std::string id);

  // The folder holding the key-value stores. Default $XDG_DATA_HOME/zentrova, else
  // ~/.local/share/zentrova.
  std::filesystem::path storeDirectory() const;
  void setStoreDirectory(std::filesystem::path dir);

  // The process's temporary directory. Default $TMPDIR, else /tmp.
  std::filesystem::path temporaryDirectory() const;
  void setTemporaryDirectory(std::filesystem::path dir);

  // A PEM file of extra trusted certificate authorities for the URL session ("" for none).
  std::string extraCaFile() const;
  void setExtraCaFile(std::string path);

  // Defined in platform/net: the shared URL session, created with the real default on first use.
  std::shared_ptr<UrlSession> urlSession();
  void setUrlSession(std::shared_ptr<UrlSession> session);

  // Defined in platform/notifications: the notification center (delivered notifications).
  std::shared_ptr<NotificationCenter> notificationCenter();
  void setNotificationCenter(std::shared_ptr<NotificationCenter> center);

  // Defined in platform/text: the text measurer; null until one is installed (the content library
  // installs its Pango measurer).
  std::shared_ptr<TextMeasurer> textMeasurer();
  void setTextMeasurer(std::shared_ptr<TextMeasurer> measurer);

  // Back to the defaults (tests).
  void reset();

 private:
  Platform();

  mutable std::mutex mutex_;
  double version_;
  std::shared_ptr<Clock> clock_;
  std::string bundleIdentifier_;
  std::filesystem::path storeDirectory_;
  std::filesystem::path temporaryDirectory_;
  std::string extraCaFile_;
  std::shared_ptr<UrlSession> urlSession_;
  std::shared_ptr<NotificationCenter> notificationCenter_;
  std::shared_ptr<TextMeasurer> textMeasurer_;
};

}  // namespace zv
