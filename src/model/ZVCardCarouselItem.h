// ZVCardCarouselItem is the image carousel's record of one card: the card, the attachment holding
// its downloaded image, whether that image is an animated GIF, and the height given to the card.
#pragma once

#include <cstdint>
#include <memory>

namespace zv {

class ZVPushCard;
class UNNotificationAttachment;

struct ZVCardCarouselItem {
  bool isGif = false;
  std::shared_ptr<ZVPushCard> cardInfo;
  std::shared_ptr<UNNotificationAttachment> cardAttachment;
  std::int64_t cardHeight = 0;
};

}  // namespace zv
