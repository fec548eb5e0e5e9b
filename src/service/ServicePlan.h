// zv::ServicePlan is what the service extension makes of one notification request before it
// touches the network or the store: the first envelope and whether the notification is Zentrova's,
// the content rewritten from the rich push, the second envelope built from the rewritten user info
// (everything stored and downloaded comes from it), the media to download, or the guard's message
// when a step raised. Both request flows of ZVRichNotificationHandler and `zvpush inspect` make it
// with ServicePlan::make, so what inspect reports is what the service does.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zv {

class UNNotificationRequest;
class UNMutableNotificationContent;
class ZVMedia;
class ZVPushPayload;
class ZVRichNotificationHandler;

struct ServicePlan {
  // Which flow the plan is for: the full one (store and report) or the content-only one. They
  // share every step; only the wording of the guard's message differs.
  enum class Flow { kFull, kContentOnly };

  // Makes the plan. The badge rule runs only when countBadge is set (it asks the handler's
  // notification center, whose answer lands later). Never raises zv::Exception: a raise in a step
  // ends the plan there with its description in failure.
  static ServicePlan make(ZVRichNotificationHandler& handler,
                          const std::shared_ptr<UNNotificationRequest>& request, bool countBadge);

  // The working content: a mutable copy of the request's content, rewritten when the notification
  // is Zentrova's. The content handler receives it.
  std::shared_ptr<UNMutableNotificationContent> content;
  // The envelope of the request's payload; nullptr when making it raised.
  std::shared_ptr<ZVPushPayload> envelope;
  // The envelope of the rewritten user info; nullptr when the notification is not Zentrova's or
  // when the rewrite raised.
  std::shared_ptr<ZVPushPayload> payload;
  // The media to download, in payload order, each URL once.
  std::vector<std::shared_ptr<ZVMedia>> media;
  // The description of the exception that ended the plan early. With a payload, the rewrite is
  // done and only the media could not be listed.
  std::optional<std::string> failure;

  // The message the request flow's guard gives the log sink for failure.
  std::string guardMessage(Flow flow) const;
};

}  // namespace zv
