#include "platform/media/AVPlayerLayer.h"

#include "platform/graphics/CGImage.h"
#include "platform/media/ClipDecoder.h"

namespace zv {

std::shared_ptr<CGImage> AVPlayerLayer::contents() const {
  if (!player_ || !player_->currentItem()) return nullptr;
  const auto& asset = player_->currentItem()->asset();
  if (!asset || !asset->hasVideo()) return nullptr;
  return CGImage::withPixels(asset->decoder()->frameAt(player_->currentTime()));
}

CALayerContentsGravity AVPlayerLayer::contentsGravity() const {
  switch (gravity_) {
    case AVLayerVideoGravity::kResizeAspectFill:
      return CALayerContentsGravity::kResizeAspectFill;
    case AVLayerVideoGravity::kResize:
      return CALayerContentsGravity::kResize;
    case AVLayerVideoGravity::kResizeAspect:
      break;
  }
  return CALayerContentsGravity::kResizeAspect;
}

}  // namespace zv
