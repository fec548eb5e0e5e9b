#include "model/ZVPushPayload.h"

#include "model/PayloadKeys.h"
#include "model/ZVRichNotifUtils.h"
#include "model/ZVRichPush.h"
#include "zentrova/Exception.h"

namespace zv {

std::shared_ptr<ZVPushPayload> ZVPushPayload::initWithPushPayload(const Value& payload) {
  auto envelope = std::make_shared<ZVPushPayload>();
  if (payload.isNil()) return envelope;
  using U = ZVRichNotifUtils;
  envelope->pushPayloadDict = payload;
  // Design note: a payload that is not a dictionary cannot be read further; the envelope keeps
  // what it has and the notification is not processed. It still goes through the rich-push guard
  // below, which reports it to the log sink.
  if (payload.isObject()) {
    envelope->zentrovaDict = U::validObjectForKey(kPushPayloadKeyZentrova, payload);
  }
  // A "zentrova" value that is not a dictionary makes the lookup of "cid" raise: the exception
  // leaves the initialiser, and the request flow's guard reports it and delivers the content as
  // it came.
  const Value& z = envelope->zentrovaDict;
  if (!z.isNil()) {
    envelope->campaignID = U::validObjectForKey(kPushPayloadKeyCampaignID, z);
    envelope->zovAppId = U::validObjectForKey(kPushPayloadKeyZoVAppID, z);
    envelope->mediaAttachment = U::validObjectForKey(kPushPayloadKeyMediaURL, z);
    envelope->mediaType = U::validObjectForKey(kPushPayloadKeyMediaType, z);
  }
  try {
    static const std::string keyPath =
        std::string(kPushPayloadKeyZovFeatures) + "." + kPushPayloadKeyZovFeaturesRichPush;
    Value rich = U::validObjectForKeyPath(keyPath, payload);
    if (rich.isNil()) return envelope;
    envelope->richPush = ZVRichPush::initWithDictionary(rich);
  } catch (const Exception& e) {
    if (e.name() == U::kMandatoryParamsMissingExceptionName) {
      // Deliberately unformatted: the placeholder stays in the message.
      U::logWithMessage("Mandatory params missing exception : %@");
    } else {
      U::logWithMessage("Rich Push Exception : " + e.description());
    }
    envelope->richPush = nullptr;
  }
  return envelope;
}

bool ZVPushPayload::shouldProcessPushNotification() const {
  return !pushPayloadDict.isNil() && !zentrovaDict.isNil() && !campaignID.isNil();
}

}  // namespace zv
