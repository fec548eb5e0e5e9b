// zv::UNMutableNotificationContent is notification content that can be edited: the service
// extension's working copy of an incoming request's content. Setters are safe from any thread
// (see UNNotificationContent).
#pragma once

#include "zentrova/Export.h"
#include "zentrova/UNNotificationContent.h"

ZENTROVA_API_BEGIN

namespace zv {

class UNMutableNotificationContent : public UNNotificationContent {
 public:
  UNMutableNotificationContent() = default;
  explicit UNMutableNotificationContent(Fields fields) : UNNotificationContent(std::move(fields)) {}

  void setTitle(std::string title);
  void setSubtitle(std::string subtitle);
  void setBody(std::string body);
  // Nil removes the badge. Raises zv::Exception (invalid argument) for anything but a number.
  void setBadge(Value badge);
  void setSound(UNNotificationSoundRef sound);
  void setCategoryIdentifier(std::string identifier);
  // Nil becomes the empty dictionary. Raises zv::Exception (invalid argument) for anything but a
  // dictionary.
  void setUserInfo(Value userInfo);
  void setAttachments(std::vector<std::shared_ptr<UNNotificationAttachment>> attachments);
};

}  // namespace zv

ZENTROVA_API_END
