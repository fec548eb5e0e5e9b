#include "zentrova/UNNotificationContent.h"

#include "zentrova/UNMutableNotificationContent.h"

namespace zv {

// Out of line: the library is where the class's vtable and type information live.
UNNotificationContent::~UNNotificationContent() = default;

UNNotificationContent::UNNotificationContent() { fields_.userInfo = Value(json::object()); }

UNNotificationContent::Fields UNNotificationContent::snapshot() const {
  std::lock_guard lock(mutex_);
  return fields_;
}

std::string UNNotificationContent::title() const {
  std::lock_guard lock(mutex_);
  return fields_.title;
}

std::string UNNotificationContent::subtitle() const {
  std::lock_guard lock(mutex_);
  return fields_.subtitle;
}

std::string UNNotificationContent::body() const {
  std::lock_guard lock(mutex_);
  return fields_.body;
}

Value UNNotificationContent::badge() const {
  std::lock_guard lock(mutex_);
  return fields_.badge;
}

UNNotificationSoundRef UNNotificationContent::sound() const {
  std::lock_guard lock(mutex_);
  return fields_.sound;
}

std::string UNNotificationContent::categoryIdentifier() const {
  std::lock_guard lock(mutex_);
  return fields_.categoryIdentifier;
}

Value UNNotificationContent::userInfo() const {
  std::lock_guard lock(mutex_);
  return fields_.userInfo;
}

std::vector<std::shared_ptr<UNNotificationAttachment>> UNNotificationContent::attachments() const {
  std::lock_guard lock(mutex_);
  return fields_.attachments;
}

std::shared_ptr<UNNotificationContent> UNNotificationContent::copy() const {
  return std::shared_ptr<UNNotificationContent>(new UNNotificationContent(snapshot()));
}

std::shared_ptr<UNMutableNotificationContent> UNNotificationContent::mutableCopy() const {
  return std::make_shared<UNMutableNotificationContent>(snapshot());
}

}  // namespace zv
