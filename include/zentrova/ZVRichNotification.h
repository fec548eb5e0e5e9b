/// @file
/// ZVRichNotification is the public facade that a host application's notification-service
/// extension calls. It holds no state: each operation forwards to the process-wide handler or
/// store.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

class UNNotificationRequest;
class UNNotificationContent;
class UNMutableNotificationContent;

/// The notification-service extension's entry points: hand in a request, get content back.
///
/// Every call is static and may be made from any thread; several requests may be in flight at
/// once.
///
/// @par Ownership
/// The request is shared, never changed: the service side edits a mutable copy of its content
/// and keeps the request, the copy and the handler until its flow has ended. The content handed
/// to the handler is the caller's to keep.
///
/// @par Threads
/// The content handler is called at every end the flow reaches: once on the usual paths, and
/// again when the flow ends after serviceExtensionTimeWillExpire() delivered its best attempt, or
/// when a guard catches an exception that the handler itself raised (it is then called once more
/// with the same content). As the phone's system does, keep the first content and ignore later
/// calls. For a notification that is not this
/// system's, or whose payload is refused, it runs on the calling thread before the call returns.
/// Otherwise it may run there too (nothing to download or report) or later on a worker thread of
/// the URL session, once the downloads and the event report have finished, failed or been
/// skipped; or on the thread that calls serviceExtensionTimeWillExpire() if that comes first.
/// Do not block in the handler, and do not assume the call has returned when it runs.
///
/// @par Errors
/// Nothing raises out of these calls: a payload of the wrong shape, a refused attachment or a
/// failed download is logged and the content is still delivered (with the
/// rewriting and attachments done so far, or as it came). The request must not be null.
class ZVRichNotification {
 public:
  /// Receives the content to show; the first call counts (see the class's threads contract).
  using ContentHandler = std::function<void(const std::shared_ptr<UNNotificationContent>& content)>;

  /// The full service flow. For this system's notification: applies the badge rule, rewrites
  /// title, subtitle, body, sound, category and tap actions from the rich push, records the
  /// notification and its events in the app group's store, downloads the media side by side and
  /// attaches them, reports the events, and then calls `handler` with the rewritten mutable
  /// copy. A foreign notification's content is handed back unchanged (as a copy).
  static void handleRichNotificationRequest(const std::shared_ptr<UNNotificationRequest>& request,
                                            ContentHandler handler);
  /// The same badge rule, rewriting and attachments as handleRichNotificationRequest(), without
  /// the store and the report.
  static void getLocalNotificationContentForRequest(
      const std::shared_ptr<UNNotificationRequest>& request, ContentHandler completionHandler);
  /// The phone gives the service extension about 30 seconds: when they are nearly up, it calls
  /// this, and every request still in flight is delivered at once, on this thread, with what is
  /// ready (its rewritten content and the attachments finished so far); downloads still running
  /// are then stopped. Each of those flows still calls its handler again when it ends: the system
  /// keeps the first content.
  static void serviceExtensionTimeWillExpire();
  /// Records the app group whose store the extensions share with the host application (kept in
  /// the extension's standard store). nullopt and "" are ignored; a store that cannot be written
  /// leaves it unrecorded, silently.
  static void setAppGroupID(const std::optional<std::string>& appGroupID);
  /// The badge rule: a badge of exactly 1 becomes the number of delivered notifications plus
  /// one, set on `content` from the notification center's thread whenever it answers (not
  /// awaited: content handed back before that keeps its 1). Null content or any other badge is
  /// left alone; never raises.
  static void updateBadgeWithNotificationContent(
      const std::shared_ptr<UNMutableNotificationContent>& content);
  /// Kept for the host application's code; deliberately does nothing.
  static void enableDebugging(bool enabled);
};

}  // namespace zv

ZENTROVA_API_END
