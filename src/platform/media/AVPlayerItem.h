// zv::AVPlayerItem is an asset as a player plays it.
#pragma once

#include <memory>

#include "platform/media/AVAsset.h"

namespace zv {

class AVPlayerItem {
 public:
  static std::shared_ptr<AVPlayerItem> playerItemWithAsset(std::shared_ptr<AVAsset> asset) {
    return asset ? std::make_shared<AVPlayerItem>(std::move(asset)) : nullptr;
  }
  explicit AVPlayerItem(std::shared_ptr<AVAsset> asset) : asset_(std::move(asset)) {}
  const std::shared_ptr<AVAsset>& asset() const { return asset_; }

 private:
  std::shared_ptr<AVAsset> asset_;
};

}  // namespace zv
