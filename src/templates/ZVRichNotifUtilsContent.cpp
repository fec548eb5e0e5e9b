#include "templates/ZVRichNotifUtilsContent.h"

#include "platform/graphics/UIImage.h"
#include "platform/ui/NSBundle.h"
#include "zentrova/Exception.h"

namespace zv {

double ZVRichNotifUtilsContent::getOptmisedImageHeightFromImage(
    const std::shared_ptr<UIImage>& image, float width) {
  if (!image) return 0;
  CGSize size = image->size();
  if (!(size.width > 0) || !(size.height > 0)) return 0;
  return static_cast<double>(width) * (size.height / size.width);
}

bool ZVRichNotifUtilsContent::isDefaultPushBodyViewHidden() {
  Value extension = NSBundle::mainBundle().objectForInfoDictionaryKey("NSExtension");
  if (!extension.isObject()) return false;
  Value attributes = extension.get("NSExtensionAttributes");
  if (!attributes.isObject()) return false;
  Value hidden = attributes.get("UNNotificationExtensionDefaultContentHidden");
  if (hidden.isNil()) return false;
  try {
    return hidden.boolValue();
  } catch (const Exception&) {
    return false;  // neither a number nor a string
  }
}

}  // namespace zv
