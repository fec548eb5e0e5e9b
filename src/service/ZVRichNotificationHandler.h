// ZVRichNotificationHandler is the process-wide worker of the notification-service extension: the
// facade forwards every request to it. It collects the media that a Zentrova payload names (the
// image widgets of the expanded template's cards, else the one top-level media URL) as ZVMedia
// items to download and attach.
#pragma once

#include <memory>
#include <vector>

namespace zv {

class ZVMedia;
class ZVPushPayload;

class ZVRichNotificationHandler {
 public:
  // The one handler of the process, created on first use and never released.
  static ZVRichNotificationHandler& sharedHandler();

  // The media to download for a payload, in payload order, each URL once (the first occurrence
  // wins). When the rich push has a card list (even an empty one), only the cards' image widgets
  // count and the top-level media is ignored. A nil payload gives none. Raises zv::Exception when
  // a media value is not a string; the request flow's guard catches it.
  std::vector<std::shared_ptr<ZVMedia>> getMediaURLsFromPayload(
      const std::shared_ptr<ZVPushPayload>& payload) const;

  ZVRichNotificationHandler(const ZVRichNotificationHandler&) = delete;
  ZVRichNotificationHandler& operator=(const ZVRichNotificationHandler&) = delete;

 private:
  ZVRichNotificationHandler() = default;
};

}  // namespace zv
