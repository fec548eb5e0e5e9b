// ZVPushWidget is one widget of a card: a text, a button or an image (whose content is the image's
// URL string), with its id, background colour and actions.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "zentrova/Color.h"
#include "zentrova/Value.h"

namespace zv {

class ZVPushAction;

enum class ZVPushWidgetType : std::int32_t {
  Text = 0,     // "text"
  Button = 1,   // "button"
  Image = 2,    // "image"
  Invalid = 3,  // any other string, or absent
};

class ZVPushWidget {
 public:
  static std::shared_ptr<ZVPushWidget> initWithDictionary(const Value& dict);
  static ZVPushWidgetType getWidgetTypeForWidgetTypeStr(const Value& str);

  ZVPushWidgetType type = ZVPushWidgetType::Text;
  std::int64_t widgetId = 0;
  Value content;
  ColorRef bgColor;
  std::vector<std::shared_ptr<ZVPushAction>> actions;
};

}  // namespace zv
