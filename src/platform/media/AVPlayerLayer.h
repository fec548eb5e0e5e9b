// zv::AVPlayerLayer shows its player's video: the frame at the player's current time, placed in
// the layer's bounds by the video gravity (fitted, filling, or stretched). Nothing for an asset
// with audio only or one that does not play. Main thread only.
#pragma once

#include <memory>

#include "platform/media/AVPlayer.h"
#include "platform/ui/CALayer.h"

namespace zv {

enum class AVLayerVideoGravity { kResizeAspect, kResizeAspectFill, kResize };

class AVPlayerLayer : public CALayer {
 public:
  static std::shared_ptr<AVPlayerLayer> playerLayerWithPlayer(std::shared_ptr<AVPlayer> player) {
    auto layer = std::make_shared<AVPlayerLayer>();
    layer->player_ = std::move(player);
    return layer;
  }

  const std::shared_ptr<AVPlayer>& player() const { return player_; }
  AVLayerVideoGravity videoGravity() const { return gravity_; }
  void setVideoGravity(AVLayerVideoGravity gravity) { gravity_ = gravity; }

  std::shared_ptr<CGImage> contents() const override;
  CALayerContentsGravity contentsGravity() const override;

 private:
  std::shared_ptr<AVPlayer> player_;
  AVLayerVideoGravity gravity_ = AVLayerVideoGravity::kResizeAspect;
};

}  // namespace zv
