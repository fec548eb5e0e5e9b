#include "model/ZVRichPushMode.h"

#include "model/ModelParts.h"
#include "model/ZVPushCard.h"

namespace zv {

std::shared_ptr<ZVRichPushMode> ZVRichPushMode::initWithDictionary(const Value& dict) {
  auto mode = std::make_shared<ZVRichPushMode>();
  if (dict.isNil()) return mode;
  mode->templateType = getTemplateTypeForTemplateTypeStr(
      ZVRichNotifUtils::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushExpandedType, dict));
  if (mode->templateType == ZVRichPushTemplateType::Invalid) {
    ZVRichNotifUtils::raiseMandatoryParamsMissingException();
  }
  mode->bgColor = model::backgroundColor(dict);
  // A number (non-zero) or a string such as "true", "YES" or "1"; absent is false.
  Value autoStart = ZVRichNotifUtils::validObjectForKey(
      kPushPayloadKeyZovFeaturesRichPushExpandedAutoStart, dict);
  mode->autoStart = !autoStart.isNil() && autoStart.boolValue();
  mode->cards = model::listForKey<ZVPushCard>(kPushPayloadKeyZovFeaturesRichPushCards, dict);
  return mode;
}

ZVRichPushTemplateType ZVRichPushMode::getTemplateTypeForTemplateTypeStr(const Value& str) {
  if (model::isString(str, kPushPayloadValTemplateTypeStylizedBasic)) {
    return ZVRichPushTemplateType::StylizedBasic;
  }
  if (model::isString(str, kPushPayloadValTemplateTypeImageCarousel)) {
    return ZVRichPushTemplateType::ImageCarousel;
  }
  // "prodGrid", "prodWidget" and any other word: only the two templates above are supported.
  return ZVRichPushTemplateType::Invalid;
}

}  // namespace zv
