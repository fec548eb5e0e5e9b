#include "model/ZVPushWidget.h"

#include "model/ModelParts.h"
#include "model/ZVPushAction.h"

namespace zv {

std::shared_ptr<ZVPushWidget> ZVPushWidget::initWithDictionary(const Value& dict) {
  auto widget = std::make_shared<ZVPushWidget>();
  if (dict.isNil()) return widget;
  widget->type = getWidgetTypeForWidgetTypeStr(
      ZVRichNotifUtils::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushWidgetType, dict));
  widget->content =
      ZVRichNotifUtils::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushWidgetContent, dict);
  Value id = ZVRichNotifUtils::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushWidgetID, dict);
  // An empty string is content; only a missing one (or null) is not.
  if (id.isNil() || widget->content.isNil() || widget->type == ZVPushWidgetType::Invalid) {
    ZVRichNotifUtils::raiseMandatoryParamsMissingException();
  }
  // Ids convert as the platform converts: leading digits of a string, fractions truncated, values
  // beyond the 64-bit range saturated; an id that is an array or a dictionary raises.
  widget->widgetId = id.integerValue();
  widget->bgColor = model::backgroundColor(dict);
  widget->actions =
      model::listForKey<ZVPushAction>(kPushPayloadKeyZovFeaturesRichPushActions, dict);
  return widget;
}

ZVPushWidgetType ZVPushWidget::getWidgetTypeForWidgetTypeStr(const Value& str) {
  if (model::isString(str, kPushPayloadValWidgetTypeText)) return ZVPushWidgetType::Text;
  if (model::isString(str, kPushPayloadValWidgetTypeButton)) return ZVPushWidgetType::Button;
  if (model::isString(str, kPushPayloadValWidgetTypeImage)) return ZVPushWidgetType::Image;
  return ZVPushWidgetType::Invalid;
}

}  // namespace zv
