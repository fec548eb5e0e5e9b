#include "zentrova/UNMutableNotificationContent.h"

#include <fmt/format.h>

#include "zentrova/Exception.h"

namespace zv {

// Out of line: the library is where the class's vtable and type information live.
UNMutableNotificationContent::~UNMutableNotificationContent() = default;

void UNMutableNotificationContent::setTitle(std::string title) {
  std::lock_guard lock(mutex_);
  fields_.title = std::move(title);
}

void UNMutableNotificationContent::setSubtitle(std::string subtitle) {
  std::lock_guard lock(mutex_);
  fields_.subtitle = std::move(subtitle);
}

void UNMutableNotificationContent::setBody(std::string body) {
  std::lock_guard lock(mutex_);
  fields_.body = std::move(body);
}

void UNMutableNotificationContent::setBadge(Value badge) {
  if (!badge.isNil() && !badge.isNumber()) {
    throw Exception(Exception::kInvalidArgument,
                    fmt::format("A badge must be a number, not a {}", kindName(badge)));
  }
  std::lock_guard lock(mutex_);
  fields_.badge = std::move(badge);
}

void UNMutableNotificationContent::setSound(UNNotificationSoundRef sound) {
  std::lock_guard lock(mutex_);
  fields_.sound = std::move(sound);
}

void UNMutableNotificationContent::setCategoryIdentifier(std::string identifier) {
  std::lock_guard lock(mutex_);
  fields_.categoryIdentifier = std::move(identifier);
}

void UNMutableNotificationContent::setUserInfo(Value userInfo) {
  if (userInfo.isNil()) userInfo = Value(json::object());
  if (!userInfo.isObject()) {
    throw Exception(Exception::kInvalidArgument,
                    fmt::format("A user-info dictionary cannot be a {}", kindName(userInfo)));
  }
  std::lock_guard lock(mutex_);
  fields_.userInfo = std::move(userInfo);
}

void UNMutableNotificationContent::setAttachments(
    std::vector<std::shared_ptr<UNNotificationAttachment>> attachments) {
  std::lock_guard lock(mutex_);
  fields_.attachments = std::move(attachments);
}

}  // namespace zv
