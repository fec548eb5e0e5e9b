#include "zentrova/UNNotificationSound.h"

namespace zv {

std::shared_ptr<const UNNotificationSound> UNNotificationSound::defaultSound() {
  static const std::shared_ptr<const UNNotificationSound> sound(new UNNotificationSound(true, ""));
  return sound;
}

std::shared_ptr<const UNNotificationSound> UNNotificationSound::soundNamed(
    const std::string& name) {
  return std::shared_ptr<const UNNotificationSound>(new UNNotificationSound(false, name));
}

}  // namespace zv
