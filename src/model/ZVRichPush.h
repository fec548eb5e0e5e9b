// ZVRichPush is the rich part of a notification: the texts that replace the platform alert (HTML
// fragments), sound and category (from "ios"), the expanded template and the default tap actions.
// Construction is strict: a missing "title", "body", "displayName" or "expanded" raises the
// mandatory-parameters exception.
#pragma once

#include <memory>
#include <vector>

#include "zentrova/Value.h"

namespace zv {

class ZVRichPushMode;
class ZVPushAction;

class ZVRichPush {
 public:
  // nullptr for a nil dictionary is not used: a nil dictionary gives a bare object.
  static std::shared_ptr<ZVRichPush> initWithDictionary(const Value& dict);

  Value title;
  Value subTitle;
  Value body;
  Value category;
  Value sound;
  Value templateDisplayName;
  std::shared_ptr<ZVRichPushMode> expandedMode;
  std::shared_ptr<ZVRichPushMode>
      collapsedMode;  // always nil: the collapsed look is the platform's
  std::vector<std::shared_ptr<ZVPushAction>> defaultActions;
};

}  // namespace zv
