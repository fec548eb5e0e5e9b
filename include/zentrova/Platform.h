/// @file
/// zv::Platform holds the process-wide settings and default ports that the edges of the system hand
/// to what they make: the clock, the platform version, where stores and temporary files live, the
/// extra trusted CA, the URL session, the notification center and the text measurer. The host
/// application, the CLI or a test installs what it wants before first use; anything not installed
/// is the real default.
///
/// Only the edges read it: the facade's entry points, a process-wide object's first use, the CLI
/// and tests. Adapters never do: each gets its configuration, clock or folder when it is made (the
/// URL session made here carries the extra CA file and the temporary folder in its configuration;
/// the notification center made here gets the clock). The platform version is forwarded to the
/// foundation's process-wide setting (zv::systemVersion), which the content side reads. All
/// accessors are thread-safe.
#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

class Clock;
class UrlSession;
struct UrlSessionConfiguration;
class NotificationCenter;
class TextMeasurer;

/// The process-wide settings a host sets once, before the first notification.
///
/// @par Ownership
/// One object for the process (shared()), never destroyed before exit. It shares the ports it
/// holds (shared_ptr): an object made with one keeps it even when another is installed later.
///
/// @par Threads
/// Every call is thread-safe. Settings are read when something is made (a store, a session), so
/// set them before the first request; a later change reaches only what is made after it.
///
/// @par Errors
/// Nothing here raises or fails: a folder that cannot be written shows later, as a store that
/// reads nil and writes nothing.
///
/// The clock, URL session, notification center and text measurer are the project's internal
/// ports (declared here, defined inside): a host leaves them to their defaults.
class Platform {
 public:
  /// The process's one platform object.
  static Platform& shared();

  /// The platform version that version tests compare with (12.0, 13.0, 14.0, 15.0). Default 17.0.
  /// Forwards to zv::systemVersion / zv::setSystemVersion.
  ///@{
  double version() const;
  void setVersion(double v);
  ///@}

  /// The clock that stamps stored events and delivered notifications; the system clock by default
  /// (setting null restores it).
  ///@{
  std::shared_ptr<Clock> clock() const;
  void setClock(std::shared_ptr<Clock> clock);
  ///@}

  /// The process's bundle identifier: names the extension's own standard store.
  ///@{
  std::string bundleIdentifier() const;
  void setBundleIdentifier(std::string id);
  ///@}

  /// The folder holding the key-value stores. Default $XDG_DATA_HOME/zentrova, else
  /// ~/.local/share/zentrova.
  ///@{
  std::filesystem::path storeDirectory() const;
  void setStoreDirectory(std::filesystem::path dir);
  ///@}

  /// The process's temporary directory. Default $TMPDIR, else /tmp.
  ///@{
  std::filesystem::path temporaryDirectory() const;
  void setTemporaryDirectory(std::filesystem::path dir);
  ///@}

  /// A PEM file of extra trusted certificate authorities for the URL session ("" for none).
  ///@{
  std::string extraCaFile() const;
  void setExtraCaFile(std::string path);
  ///@}

  /// The shared URL session, made on first use with the real default: caching off, and the extra CA
  /// file and temporary folder set at that moment.
  ///@{
  std::shared_ptr<UrlSession> urlSession();
  void setUrlSession(std::shared_ptr<UrlSession> session);
  ///@}
  /// The configuration urlSession() makes its session with, for an edge that makes its own (to
  /// watch the transfers, say) and installs it with setUrlSession.
  UrlSessionConfiguration urlSessionConfiguration() const;

  /// The notification center (delivered notifications), made on first use with the clock set then.
  ///@{
  std::shared_ptr<NotificationCenter> notificationCenter();
  void setNotificationCenter(std::shared_ptr<NotificationCenter> center);
  ///@}

  /// The text measurer; null until one is installed (the content library installs its Pango
  /// measurer).
  ///@{
  std::shared_ptr<TextMeasurer> textMeasurer();
  void setTextMeasurer(std::shared_ptr<TextMeasurer> measurer);
  ///@}

  /// Back to the defaults (tests). Ports in use elsewhere live on with their holders.
  void reset();

 private:
  Platform();
  UrlSessionConfiguration configurationLocked() const;

  mutable std::mutex mutex_;
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

ZENTROVA_API_END
