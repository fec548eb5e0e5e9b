// ZVPushPayload is the envelope of one notification's user-info dictionary: the framework's own
// "zentrova" dictionary, the few fields the rest of the system needs at once (campaign id, app id,
// media attachment and type) and the rich push model read from "zovFeatures"."richPush". It also
// answers whether a notification is Zentrova's at all. Built once per request, then read-only.
#pragma once

#include <memory>

#include "zentrova/Value.h"

namespace zv {

class ZVRichPush;

class ZVPushPayload {
 public:
  // Never fails: a rich part that cannot be built (a missing mandatory field, a value of the wrong
  // kind) leaves richPush nil and is reported to the log sink. A nil payload gives a bare envelope.
  static std::shared_ptr<ZVPushPayload> initWithPushPayload(const Value& payload);

  // True exactly when the payload, its "zentrova" dictionary and that dictionary's "cid" are all
  // present (not nil, not null).
  bool shouldProcessPushNotification() const;

  // Values are kept as found in the payload (no type check), null turned into nil.
  Value pushPayloadDict;
  Value zentrovaDict;
  Value campaignID;
  Value zovAppId;
  Value mediaAttachment;
  Value mediaType;
  std::shared_ptr<ZVRichPush> richPush;
};

}  // namespace zv
