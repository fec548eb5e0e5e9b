/// @file
/// zv::UNNotificationRequest is one notification as the system hands it to the service extension:
/// an identifier and a read-only content. Requests here have no trigger: they stand for remote
/// notifications that have just arrived.
#pragma once

#include <memory>
#include <string>

#include "zentrova/Export.h"
#include "zentrova/UNNotificationContent.h"
#include "zentrova/Value.h"

ZENTROVA_API_BEGIN

namespace zv {

/// A notification as the service extension receives it: an identifier and read-only content.
///
/// Immutable once made and held by shared_ptr: any thread may read it, and the service side keeps
/// the request it is given only until it has delivered the content.
class UNNotificationRequest {
 public:
  /// A request with a read-only copy of content (nullptr gives empty content).
  static std::shared_ptr<UNNotificationRequest> requestWithIdentifier(
      std::string identifier, const std::shared_ptr<UNNotificationContent>& content);

  /// The request the system makes of a remote-notification payload (the JSON with "aps"), as the
  /// phone does: "aps" "alert" gives title, subtitle and body when it is a dictionary and the body
  /// when it is a string; "badge" a number; "sound" the default sound for "default", else the sound
  /// of that name (a dictionary's "name" likewise); "category" the category identifier. The user
  /// info is the whole payload. Entries of another kind are ignored, as the phone ignores them.
  /// Raises zv::Exception (invalid argument) when the payload is not a dictionary.
  static std::shared_ptr<UNNotificationRequest> requestWithRemoteNotification(
      std::string identifier, const Value& payload);

  /// The identifier the request was made with.
  const std::string& identifier() const { return identifier_; }
  /// The request's read-only content (never null); edit a mutableCopy() of it.
  const std::shared_ptr<UNNotificationContent>& content() const { return content_; }

 private:
  UNNotificationRequest(std::string identifier, std::shared_ptr<UNNotificationContent> content)
      : identifier_(std::move(identifier)), content_(std::move(content)) {}

  std::string identifier_;
  std::shared_ptr<UNNotificationContent> content_;
};

}  // namespace zv

ZENTROVA_API_END
