#include "model/ZVPushAction.h"

#include "model/ModelParts.h"

namespace zv {

std::shared_ptr<ZVPushAction> ZVPushAction::initWithDictionary(const Value& dict) {
  auto action = std::make_shared<ZVPushAction>();
  action->actionName = action->getActionTypeFromDict(dict);
  // Only a navigate action reads its navigation type; the others keep 0.
  if (action->actionName == ZVPushActionName::Navigate) action->setNavigationTypeFromDict(dict);
  action->value =
      ZVRichNotifUtils::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushActionValue, dict);
  action->kvPairs =
      ZVRichNotifUtils::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushActionkvPairs, dict);
  return action;
}

ZVPushActionName ZVPushAction::getActionTypeFromDict(const Value& dict) const {
  Value name =
      ZVRichNotifUtils::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushActionName, dict);
  if (model::isString(name, kPushPayloadValActionNameNavigate)) return ZVPushActionName::Navigate;
  if (model::isString(name, kPushPayloadValActionNameCoupon)) return ZVPushActionName::Coupon;
  return ZVPushActionName::Other;
}

void ZVPushAction::setNavigationTypeFromDict(const Value& dict) {
  Value type =
      ZVRichNotifUtils::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushActionType, dict);
  if (model::isString(type, kPushPayloadValActionTypeRichLanding)) {
    actionType = ZVPushNavigationType::RichLanding;
  } else if (model::isString(type, kPushPayloadValActionTypeDeepLinking)) {
    actionType = ZVPushNavigationType::DeepLink;
  } else if (model::isString(type, kPushPayloadValActionTypeScreenNav)) {
    actionType = ZVPushNavigationType::ScreenName;
  } else {
    actionType = ZVPushNavigationType::Other;
  }
}

}  // namespace zv
