// zv::UNNotificationContent is what a notification shows and carries: title, subtitle, body, badge,
// sound, category identifier, the user-info dictionary (the payload) and the media attachments.
// This type is read-only; mutableCopy() gives a UNMutableNotificationContent to edit, which the
// service extension hands back once it has rewritten it.
//
// Every property may be read and written from any thread: the service flow edits its working
// content while the badge completion writes the badge from the notification center's thread, so
// each access takes the content's own lock. Getters return copies.
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

class UNNotificationContent {
 public:
  // Empty content: empty texts, no badge, no sound, an empty user-info dictionary, no attachments.
  UNNotificationContent();
  virtual ~UNNotificationContent() = default;
  UNNotificationContent(const UNNotificationContent&) = delete;
  UNNotificationContent& operator=(const UNNotificationContent&) = delete;

  std::string title() const;
  std::string subtitle() const;
  std::string body() const;
  // A number, or nil when the notification leaves the badge alone.
  Value badge() const;
  // nullptr for a silent notification.
  UNNotificationSoundRef sound() const;
  std::string categoryIdentifier() const;
  // Always a dictionary.
  Value userInfo() const;
  std::vector<std::shared_ptr<UNNotificationAttachment>> attachments() const;

  // A read-only copy, and an editable one; neither shares state with this content (the user-info
  // tree and the attachments, being immutable, are shared).
  std::shared_ptr<UNNotificationContent> copy() const;
  std::shared_ptr<UNMutableNotificationContent> mutableCopy() const;

 protected:
  struct Fields {
    std::string title;
    std::string subtitle;
    std::string body;
    Value badge;
    UNNotificationSoundRef sound;
    std::string categoryIdentifier;
    Value userInfo;
    std::vector<std::shared_ptr<UNNotificationAttachment>> attachments;
  };

  explicit UNNotificationContent(Fields fields) : fields_(std::move(fields)) {}
  Fields snapshot() const;

  mutable std::mutex mutex_;
  Fields fields_;
};

}  // namespace zv

ZENTROVA_API_END
