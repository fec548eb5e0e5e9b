// ZVPushCard is one card of the expanded template: its id, background colour, widgets and actions.
// The card type carries no information: every card is of type 3.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "zentrova/Color.h"
#include "zentrova/Value.h"

namespace zv {

class ZVPushWidget;
class ZVPushAction;

class ZVPushCard {
 public:
  static std::shared_ptr<ZVPushCard> initWithDictionary(const Value& dict);
  static std::int32_t getCardTypeForCardTypeStr(const Value& str);

  std::int32_t cardType = 0;
  std::int64_t cardID = 0;
  ColorRef bgColor;
  std::vector<std::shared_ptr<ZVPushWidget>> widgets;
  std::vector<std::shared_ptr<ZVPushAction>> actions;
};

}  // namespace zv
