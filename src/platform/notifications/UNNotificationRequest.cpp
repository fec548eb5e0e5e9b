#include "zentrova/UNNotificationRequest.h"

#include "zentrova/UNMutableNotificationContent.h"

namespace zv {

namespace {

Value entry(const Value& dict, std::string_view key) {
  return dict.isObject() ? dict.get(key) : Value();
}

void applySound(const Value& sound, UNMutableNotificationContent* content) {
  Value name = sound.isObject() ? sound.get("name") : sound;
  if (!name.isString() || name.string().empty()) return;
  content->setSound(name.string() == "default"
                        ? UNNotificationSound::defaultSound()
                        : UNNotificationSound::soundNamed(std::string(name.string())));
}

}  // namespace

std::shared_ptr<UNNotificationRequest> UNNotificationRequest::requestWithIdentifier(
    std::string identifier, const std::shared_ptr<UNNotificationContent>& content) {
  auto copy = content ? content->copy() : std::make_shared<UNNotificationContent>();
  return std::shared_ptr<UNNotificationRequest>(
      new UNNotificationRequest(std::move(identifier), std::move(copy)));
}

std::shared_ptr<UNNotificationRequest> UNNotificationRequest::requestWithRemoteNotification(
    std::string identifier, const Value& payload) {
  UNMutableNotificationContent content;
  content.setUserInfo(payload);  // raises for a non-dictionary
  Value aps = entry(payload, "aps");
  Value alert = entry(aps, "alert");
  if (alert.isString()) {
    content.setBody(std::string(alert.string()));
  } else if (alert.isObject()) {
    if (Value v = alert.get("title"); v.isString()) content.setTitle(std::string(v.string()));
    if (Value v = alert.get("subtitle"); v.isString()) content.setSubtitle(std::string(v.string()));
    if (Value v = alert.get("body"); v.isString()) content.setBody(std::string(v.string()));
  }
  if (Value badge = entry(aps, "badge"); badge.isNumber() && !badge.isBool()) {
    content.setBadge(badge);
  }
  applySound(entry(aps, "sound"), &content);
  if (Value category = entry(aps, "category"); category.isString()) {
    content.setCategoryIdentifier(std::string(category.string()));
  }
  return std::shared_ptr<UNNotificationRequest>(
      new UNNotificationRequest(std::move(identifier), content.copy()));
}

}  // namespace zv
