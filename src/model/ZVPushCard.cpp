#include "model/ZVPushCard.h"

#include "model/ModelParts.h"
#include "model/ZVPushAction.h"
#include "model/ZVPushWidget.h"

namespace zv {

namespace {
constexpr std::int32_t kTheCardType = 3;
}  // namespace

std::shared_ptr<ZVPushCard> ZVPushCard::initWithDictionary(const Value& dict) {
  auto card = std::make_shared<ZVPushCard>();
  if (dict.isNil()) return card;
  card->cardType = getCardTypeForCardTypeStr(
      ZVRichNotifUtils::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushCardType, dict));
  Value id = ZVRichNotifUtils::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushCardID, dict);
  if (id.isNil()) ZVRichNotifUtils::raiseMandatoryParamsMissingException();
  // Leading digits of a string, fractions truncated, huge values saturated; arrays raise.
  card->cardID = id.integerValue();
  card->bgColor = model::backgroundColor(dict);
  card->widgets =
      model::listForKey<ZVPushWidget>(kPushPayloadKeyZovFeaturesRichPushCardWidgets, dict);
  card->actions = model::listForKey<ZVPushAction>(kPushPayloadKeyZovFeaturesRichPushActions, dict);
  return card;
}

std::int32_t ZVPushCard::getCardTypeForCardTypeStr(const Value& /*str*/) {
  // Every card is the same kind: the type the sender writes carries no information.
  return kTheCardType;
}

}  // namespace zv
