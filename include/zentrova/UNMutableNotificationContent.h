/// @file
/// zv::UNMutableNotificationContent is notification content that can be edited: the service
/// extension's working copy of an incoming request's content. Setters are safe from any thread
/// (see UNNotificationContent).
#pragma once

#include "zentrova/Export.h"
#include "zentrova/UNNotificationContent.h"

ZENTROVA_API_BEGIN

namespace zv {

/// Notification content that can be edited.
///
/// Made by UNNotificationContent::mutableCopy(). Setters take the content's lock, so any thread may
/// write while others read; the service side hands its working copy to the content handler and
/// writes the badge from the notification center's thread. Only setBadge() and setUserInfo()
/// raise (zv::Exception, invalid argument, for a value of the wrong kind).
class UNMutableNotificationContent : public UNNotificationContent {
 public:
  /// Empty content, as UNNotificationContent().
  UNMutableNotificationContent() = default;
  /// Content of these fields.
  explicit UNMutableNotificationContent(Fields fields) : UNNotificationContent(std::move(fields)) {}
  /// Releases the fields, as ~UNNotificationContent().
  ~UNMutableNotificationContent() override;

  /// Set the title, subtitle and body (plain text).
  ///@{
  void setTitle(std::string title);
  void setSubtitle(std::string subtitle);
  void setBody(std::string body);
  ///@}
  /// Nil removes the badge. Raises zv::Exception (invalid argument) for anything but a number.
  void setBadge(Value badge);
  /// The sound to play; null for none.
  void setSound(UNNotificationSoundRef sound);
  /// The category, which picks the content extension.
  void setCategoryIdentifier(std::string identifier);
  /// Nil becomes the empty dictionary. Raises zv::Exception (invalid argument) for anything but a
  /// dictionary.
  void setUserInfo(Value userInfo);
  /// Replaces the attachments (shared, not copied).
  void setAttachments(std::vector<std::shared_ptr<UNNotificationAttachment>> attachments);
};

}  // namespace zv

ZENTROVA_API_END
