/// @file
/// zv::UNNotificationSound is the sound a notification plays: the system's default sound, or a
/// sound file of the application by name. Sounds are immutable values, shared freely.
#pragma once

#include <memory>
#include <string>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

/// The sound a notification plays: the default sound or an application sound file.
///
/// Immutable and held by shared_ptr<const UNNotificationSound> (UNNotificationSoundRef), so any
/// thread may share and read one.
class UNNotificationSound {
 public:
  /// The one default sound object.
  static std::shared_ptr<const UNNotificationSound> defaultSound();
  /// A sound file of the application ("chime.caf"). The name is kept as given.
  static std::shared_ptr<const UNNotificationSound> soundNamed(const std::string& name);

  /// Whether this is the system's default sound.
  bool isDefault() const { return isDefault_; }
  /// The file name; "" for the default sound.
  const std::string& name() const { return name_; }

 private:
  UNNotificationSound(bool isDefault, std::string name)
      : isDefault_(isDefault), name_(std::move(name)) {}

  bool isDefault_;
  std::string name_;
};

/// A sound as content holds it; null for a silent notification.
using UNNotificationSoundRef = std::shared_ptr<const UNNotificationSound>;

}  // namespace zv

ZENTROVA_API_END
