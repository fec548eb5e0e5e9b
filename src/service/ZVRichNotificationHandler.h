// ZVRichNotificationHandler is the process-wide worker of the notification-service extension: the
// facade forwards every request to it. For a Zentrova notification it applies the badge rule,
// rewrites the visible content and the tap actions from the rich push, records the notification and
// its events in the app-group store, downloads the media side by side and attaches them, reports
// the events, and only then hands the content back. Foreign notifications pass through unchanged.
//
// The request flow starts on the caller's thread, continues on the URL session's delegate thread
// when there are downloads, and ends in the report's completion. Every stage runs inside a guard
// that catches zv::Exception, logs a fixed message and still delivers the content.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "zentrova/ZVRichNotification.h"

namespace zv {

class ZVMedia;
class MediaDownloads;
class ZVPushPayload;
class ZVRichPush;
class OperationQueue;
class NotificationCenter;
class UNNotificationRequest;
class UNNotificationContent;
class UNMutableNotificationContent;
class UNNotificationAttachment;

class ZVRichNotificationHandler {
 public:
  // The one handler of the process, created on first use and never released. Its first use takes
  // the notification center from the platform object, and so does the first use after
  // resetSharedHandler() (tests).
  static ZVRichNotificationHandler& sharedHandler();
  static void resetSharedHandler();

  // The center the badge rule asks how many notifications are shown.
  std::shared_ptr<NotificationCenter> notificationCenter() const;
  void setNotificationCenter(std::shared_ptr<NotificationCenter> center);

  using ContentHandler = ZVRichNotification::ContentHandler;
  using Attachments = std::vector<std::shared_ptr<UNNotificationAttachment>>;

  // The full service flow; the content handler receives the working content (a mutable copy of the
  // request's content) once the report has finished, failed or been skipped. If the handler raises
  // zv::Exception, the guard around it calls it once more.
  void handleRichNotificationRequest(const std::shared_ptr<UNNotificationRequest>& request,
                                     ContentHandler contentHandler);
  // The same rewriting and attachments without store or reporting.
  void getLocalNotificationContentForRequest(const std::shared_ptr<UNNotificationRequest>& request,
                                             ContentHandler completionHandler);
  // A badge of exactly 1 becomes the number of delivered notifications plus one, whenever the
  // notification center answers (not awaited).
  void updateBadgeWithNotificationContent(
      const std::shared_ptr<UNMutableNotificationContent>& content);
  // Title, subtitle, body (plain text of the HTML), sound and category, in the content and in the
  // user info's "aps".
  void updateNotificationContent(const std::shared_ptr<UNMutableNotificationContent>& content,
                                 const std::shared_ptr<ZVRichPush>& richPush);
  // The default tap actions, written into the user info's "zentrova" and "app_extra".
  void updateNotificationDefaultActions(
      const std::shared_ptr<UNMutableNotificationContent>& content,
      const std::shared_ptr<ZVRichPush>& richPush);
  // Downloads every media item of the payload side by side; completion receives the attachments
  // made, in the order the downloads finished (an empty list when there is nothing to download, at
  // once on the caller's thread).
  void getAttachmentsForNotification(const std::shared_ptr<ZVPushPayload>& payload,
                                     std::function<void(const Attachments&)> completion);

  // The phone is about to end the extension. Every request still in flight is delivered at once
  // with what is ready (a copy of its rewritten content with the attachments finished so far) and
  // its downloads still running are stopped. Its flow then goes on to its own end, which calls the
  // content handler again, as it would on the phone, where the system ignores the later call.
  void serviceExtensionTimeWillExpire();

  // The queue each media download is started from; its width is set per request.
  std::shared_ptr<OperationQueue> imageDownloadOperationQueue;

  // The media to download for a payload, in payload order, each URL once (the first occurrence
  // wins). When the rich push has a card list (even an empty one), only the cards' image widgets
  // count and the top-level media is ignored. A nil payload gives none. Raises zv::Exception when
  // a media value is not a string; the request flow's guard catches it.
  std::vector<std::shared_ptr<ZVMedia>> getMediaURLsFromPayload(
      const std::shared_ptr<ZVPushPayload>& payload) const;

  ZVRichNotificationHandler(const ZVRichNotificationHandler&) = delete;
  ZVRichNotificationHandler& operator=(const ZVRichNotificationHandler&) = delete;

 private:
  ZVRichNotificationHandler();

  // The one request flow: the plan, then (full flow only) the store, the downloads, then (full
  // flow only) the shown event and the report, and the content handler, called at each end the
  // flow reaches.
  void runRequestFlow(const std::shared_ptr<UNNotificationRequest>& request, bool full,
                      ContentHandler contentHandler);
  // One request in flight, as its flow and the time budget share it.
  struct InFlight;
  // An end of the flow: the request leaves the in-flight list and its handler gets the content.
  void deliver(const std::shared_ptr<InFlight>& flight);

  // Downloads the media side by side; completion as for getAttachmentsForNotification. Returns
  // the running downloads, or nullptr when there is nothing to download.
  std::shared_ptr<MediaDownloads> downloadAttachments(
      const std::vector<std::shared_ptr<ZVMedia>>& media,
      std::function<void(const Attachments&)> completion);

  mutable std::mutex mutex_;
  std::shared_ptr<NotificationCenter> notificationCenter_;
  std::vector<std::weak_ptr<InFlight>> inFlight_;
};

}  // namespace zv
