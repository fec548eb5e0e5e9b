// ZVPushAction is one tap action: navigate (to a rich landing page, a deep link or a screen) or
// apply a coupon, with its value and the key-value pairs handed to the host application. An action
// never fails to build. actionType is only read for navigate actions; for others it stays 0, the
// number that also means rich landing, so consumers look at actionName first.
#pragma once

#include <cstdint>
#include <memory>

#include "zentrova/Value.h"

namespace zv {

enum class ZVPushActionName : std::int32_t {
  Navigate = 0,  // "navigate"
  Coupon = 1,    // "coupon"
  Other = 2,     // any other string, or absent
};

enum class ZVPushNavigationType : std::int32_t {
  RichLanding = 0,  // "richLanding"
  DeepLink = 1,     // "deepLink"
  ScreenName = 2,   // "screenName"
  Other = 3,        // any other string, or absent
};

class ZVPushAction {
 public:
  static std::shared_ptr<ZVPushAction> initWithDictionary(const Value& dict);
  ZVPushActionName getActionTypeFromDict(const Value& dict) const;
  void setNavigationTypeFromDict(const Value& dict);

  ZVPushActionName actionName = ZVPushActionName::Other;
  ZVPushNavigationType actionType = ZVPushNavigationType::RichLanding;
  Value value;
  Value kvPairs;
};

}  // namespace zv
