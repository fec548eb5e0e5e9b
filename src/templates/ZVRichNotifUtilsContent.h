// zv::ZVRichNotifUtilsContent holds the content side's two utilities of ZVRichNotifUtils, kept out
// of the model library because they need images and the host's bundle: the height an image takes
// at a width, and whether the host hides the system's own notification text.
#pragma once

#include <memory>

namespace zv {

class UIImage;

class ZVRichNotifUtilsContent {
 public:
  // width x (image height / image width), in double precision after widening the 32-bit width.
  // An image without a size (bytes that did not decode) gives 0, so it never raises a height.
  static double getOptmisedImageHeightFromImage(const std::shared_ptr<UIImage>& image, float width);
  // "UNNotificationExtensionDefaultContentHidden" of the main bundle's NSExtension attributes, by
  // its boolean reading; NO when any level is absent.
  static bool isDefaultPushBodyViewHidden();
};

}  // namespace zv
