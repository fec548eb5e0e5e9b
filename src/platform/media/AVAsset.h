// zv::AVAsset is a clip file: its duration, whether it has video and audio, and its video size.
// The file is read once, when the asset is made; a file that cannot be read is an asset that plays
// nothing (duration 0, no video, not playable). Main thread only.
#pragma once

#include <memory>

#include "zentrova/Geometry.h"
#include "zentrova/Url.h"

namespace zv {

class ClipDecoder;

class AVAsset {
 public:
  // An asset for a file URL (any URL gives one; only a readable clip plays).
  static std::shared_ptr<AVAsset> assetWithURL(const Url& url);
  explicit AVAsset(const Url& url);
  ~AVAsset();

  const Url& url() const { return url_; }
  double duration() const;
  bool hasVideo() const;
  bool hasAudio() const;
  bool isPlayable() const;
  // The video's size in points (pixels, widened by a non-square pixel aspect); zero without video.
  CGSize naturalSize() const;
  // The decoder players read frames from.
  const std::shared_ptr<ClipDecoder>& decoder() const { return decoder_; }

 private:
  Url url_;
  std::shared_ptr<ClipDecoder> decoder_;
};

}  // namespace zv
