/// @file
/// zv::UNNotificationContent is what a notification shows and carries: title, subtitle, body,
/// badge, sound, category identifier, the user-info dictionary (the payload) and the media
/// attachments. This type is read-only; mutableCopy() gives a UNMutableNotificationContent to edit,
/// which the service extension hands back once it has rewritten it.
///
/// Every property may be read and written from any thread: the service flow edits its working
/// content while the badge completion writes the badge from the notification center's thread, so
/// each access takes the content's own lock. Getters return copies.
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "zentrova/Export.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/UNNotificationSound.h"
#include "zentrova/Value.h"

ZENTROVA_API_BEGIN

namespace zv {

class UNMutableNotificationContent;

/// What a notification shows and carries, read-only.
///
/// Held by shared_ptr; copy() and mutableCopy() give independent objects. Every getter returns a
/// copy taken under the content's lock, so any thread may read while another writes a
/// UNMutableNotificationContent. Getters never raise.
class UNNotificationContent {
 public:
  /// Empty content: empty texts, no badge, no sound, an empty user-info dictionary, no attachments.
  UNNotificationContent();
  /// Releases the fields (the shared user-info tree and attachments stay with other holders).
  virtual ~UNNotificationContent();
  UNNotificationContent(const UNNotificationContent&) = delete;
  UNNotificationContent& operator=(const UNNotificationContent&) = delete;

  /// The title, the subtitle and the body, as plain text (empty when not set).
  ///@{
  std::string title() const;
  std::string subtitle() const;
  std::string body() const;
  ///@}
  /// The badge: a number, or nil when the notification leaves the badge alone.
  Value badge() const;
  /// The sound to play; nullptr for a silent notification.
  UNNotificationSoundRef sound() const;
  /// The category, which picks the content extension that shows the notification ("" for none).
  std::string categoryIdentifier() const;
  /// The notification's payload. Always a dictionary.
  Value userInfo() const;
  /// The media attachments, in the order they were set (shared, immutable objects).
  std::vector<std::shared_ptr<UNNotificationAttachment>> attachments() const;

  /// A read-only copy, and an editable one; neither shares state with this content (the user-info
  /// tree and the attachments, being immutable, are shared).
  ///@{
  std::shared_ptr<UNNotificationContent> copy() const;
  std::shared_ptr<UNMutableNotificationContent> mutableCopy() const;
  ///@}

 protected:
  /// Every property of a content, as one value (what the getters read).
  struct Fields {
    std::string title;               ///< See title().
    std::string subtitle;            ///< See subtitle().
    std::string body;                ///< See body().
    Value badge;                     ///< See badge().
    UNNotificationSoundRef sound;    ///< See sound().
    std::string categoryIdentifier;  ///< See categoryIdentifier().
    Value userInfo;                  ///< See userInfo().
    std::vector<std::shared_ptr<UNNotificationAttachment>> attachments;  ///< See attachments().
  };

  /// Content of these fields (for the editable subclass).
  explicit UNNotificationContent(Fields fields) : fields_(std::move(fields)) {}
  /// A copy of every field, taken under the lock.
  Fields snapshot() const;

  mutable std::mutex mutex_;  ///< Guards fields_.
  Fields fields_;             ///< The properties.
};

}  // namespace zv

ZENTROVA_API_END
