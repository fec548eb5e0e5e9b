// zv::ZVRichPushGif turns the bytes or the file of an animated GIF into one animated image whose
// frames play at an even pace: each slot lasts the greatest common divisor of the frame delays,
// and each GIF frame is repeated for as many slots as its delay holds (the same image object each
// time, never a copy). The media view and the carousel cells use it for GIF attachments.
//
// Decisions where the arithmetic would fail: a positive delay that rounds to 0 hundredths plays for
// 1; a source without frames gives nil; a frame that does not decode is skipped (a truncated file
// plays the frames before the damage); an animation that would need more than kMaxSlots slots gives
// nil, like an image over the pixel budget.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/graphics/UIImage.h"
#include "zentrova/Url.h"
#include "zentrova/Value.h"

namespace zv {

class ZVRichPushGif {
 public:
  // Ten minutes of hundredths (48,000 entries, under 1 MB of list).
  static constexpr std::int32_t kMaxSlots = 48000;

  // The animated image, or nil when no image source can be made from the bytes.
  static std::shared_ptr<UIImage> animatedImageWithAnimatedGIFData(
      std::shared_ptr<const std::string> data);
  static std::shared_ptr<UIImage> animatedImageWithAnimatedGIFURL(const Url& url);

  // How long a frame with these properties plays, in hundredths (at least 1).
  static std::int32_t delayForFrameProperties(const Value& properties);
};

}  // namespace zv
