#include "model/ZVRichPush.h"

#include "model/ModelParts.h"
#include "model/ZVPushAction.h"
#include "model/ZVRichPushMode.h"

namespace zv {

std::shared_ptr<ZVRichPush> ZVRichPush::initWithDictionary(const Value& dict) {
  auto push = std::make_shared<ZVRichPush>();
  if (dict.isNil()) return push;
  using U = ZVRichNotifUtils;
  push->templateDisplayName =
      U::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushTemplateName, dict);
  push->title = U::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushTitle, dict);
  push->subTitle = U::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushSubTitle, dict);
  push->body = U::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushBody, dict);
  if (push->title.isNil() || push->body.isNil() || push->templateDisplayName.isNil()) {
    U::raiseMandatoryParamsMissingException();
  }
  // "collapsed" is never read: the collapsed presentation is always the platform's own.
  push->collapsedMode = nullptr;
  // Sound and category come from "ios" only, never from the rich-push dictionary itself.
  Value ios = U::validObjectForKey(kPushPayloadKeyIOS, dict);
  if (!ios.isNil()) {
    push->sound = U::validObjectForKey(kPushPayloadKeyAPSSound, ios);
    push->category = U::validObjectForKey(kPushPayloadKeyAPSCategory, ios);
  }
  Value expanded = U::validObjectForKey(kPushPayloadKeyZovFeaturesRichPushExpanded, dict);
  if (expanded.isNil()) U::raiseMandatoryParamsMissingException();
  push->expandedMode = ZVRichPushMode::initWithDictionary(expanded);
  push->defaultActions =
      model::listForKey<ZVPushAction>(kPushPayloadKeyZovFeaturesRichPushDefaultActions, dict);
  return push;
}

}  // namespace zv
