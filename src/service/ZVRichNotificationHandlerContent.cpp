// The content and action rewrites of ZVRichNotificationHandler: the rich push's texts, sound,
// category and default tap actions replace what the payload's "aps" would show, both in the
// visible content and in the user info that travels with the notification.
#include "model/PayloadKeys.h"
#include "model/ZVPushAction.h"
#include "model/ZVRichNotifUtils.h"
#include "model/ZVRichPush.h"
#include "service/EditableDictionary.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Exception.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotificationSound.h"

namespace zv {

namespace {

// Whether a rich-push text is present and not empty. A text of another kind cannot be measured
// and raises, like any wrongly typed payload value.
bool hasText(const Value& v) { return !v.isNil() && !v.string().empty(); }

std::string plainText(const Value& html) {
  return ZVRichNotifUtils::getStringFromHTML(std::string(html.string())).value_or("");
}

}  // namespace

void ZVRichNotificationHandler::updateNotificationContent(
    const std::shared_ptr<UNMutableNotificationContent>& content,
    const std::shared_ptr<ZVRichPush>& richPush) {
  if (!richPush || !content) return;
  auto userInfo = EditableDictionary::copyOf(content->userInfo());
  auto aps = EditableDictionary::copyOf(userInfo.get(kPushPayloadKeyAPS));
  auto alert = EditableDictionary::copyOf(aps.get(kPushPayloadKeyAPSAlert));

  if (hasText(richPush->title)) {
    content->setTitle(plainText(richPush->title));
    alert.set(kPushPayloadKeyAPSAlertTitle, Value(content->title()));
  }
  // Unlike title and body, a missing subtitle clears the visible subtitle.
  if (hasText(richPush->subTitle)) {
    content->setSubtitle(plainText(richPush->subTitle));
    alert.set(kPushPayloadKeyAPSAlertSubTitle, Value(content->subtitle()));
  } else {
    content->setSubtitle("");
  }
  if (hasText(richPush->body)) {
    content->setBody(plainText(richPush->body));
    alert.set(kPushPayloadKeyAPSAlertBody, Value(content->body()));
  }
  aps.set(kPushPayloadKeyAPSAlert, alert.value());

  // A Zentrova notification always plays a sound.
  if (hasText(richPush->sound)) {
    content->setSound(UNNotificationSound::soundNamed(std::string(richPush->sound.string())));
    aps.set(kPushPayloadKeyAPSSound, richPush->sound);
  } else {
    content->setSound(UNNotificationSound::defaultSound());
  }
  if (hasText(richPush->category)) {
    content->setCategoryIdentifier(std::string(richPush->category.string()));
    aps.set(kPushPayloadKeyAPSCategory, richPush->category);
  } else {
    content->setCategoryIdentifier("");
    aps.set(kPushPayloadKeyAPSCategory, Value(""));
  }
  userInfo.set(kPushPayloadKeyAPS, aps.value());
  content->setUserInfo(userInfo.value());
}

void ZVRichNotificationHandler::updateNotificationDefaultActions(
    const std::shared_ptr<UNMutableNotificationContent>& content,
    const std::shared_ptr<ZVRichPush>& richPush) {
  if (!richPush || !content) return;
  auto userInfo = EditableDictionary::copyOf(content->userInfo());
  auto zentrova = EditableDictionary::copyOf(userInfo.get(kPushPayloadKeyZentrova));
  auto extras = EditableDictionary::copyOf(userInfo.get(kPushPayloadKeyAppExtras));

  zentrova.remove(kPushPayloadKeyCoupon);
  zentrova.remove(kPushPayloadKeyRichLanding);
  extras.remove(kPushPayloadKeyDeepLink);
  extras.remove(kPushPayloadKeyScreenName);
  extras.remove(kPushPayloadKeyScreenData);

  // Later actions overwrite earlier ones under the same key. Without "app_extra", navigation into
  // it is silently lost.
  for (const auto& action : richPush->defaultActions) {
    switch (action->actionName) {
      case ZVPushActionName::Navigate:
        switch (action->actionType) {
          case ZVPushNavigationType::RichLanding:
            zentrova.set(kPushPayloadKeyRichLanding, action->value);
            break;
          case ZVPushNavigationType::DeepLink:
            extras.set(kPushPayloadKeyDeepLink, action->value);
            break;
          case ZVPushNavigationType::ScreenName:
            extras.set(kPushPayloadKeyScreenName, action->value);
            break;
          case ZVPushNavigationType::Other:
            break;
        }
        if (!action->kvPairs.isNil()) extras.set(kPushPayloadKeyScreenData, action->kvPairs);
        break;
      case ZVPushActionName::Coupon:
        zentrova.set(kPushPayloadKeyCoupon, action->value);
        break;
      case ZVPushActionName::Other:
        break;
    }
  }
  userInfo.set(kPushPayloadKeyZentrova, zentrova.value());
  userInfo.set(kPushPayloadKeyAppExtras, extras.value());
  content->setUserInfo(userInfo.value());
}

}  // namespace zv
