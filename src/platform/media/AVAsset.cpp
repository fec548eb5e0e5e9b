#include "platform/media/AVAsset.h"

#include "platform/media/ClipDecoder.h"

namespace zv {

std::shared_ptr<AVAsset> AVAsset::assetWithURL(const Url& url) {
  return std::make_shared<AVAsset>(url);
}

AVAsset::AVAsset(const Url& url) : url_(url) {
  if (url.scheme() == "file") decoder_ = std::make_shared<ClipDecoder>(url.filePath());
}

AVAsset::~AVAsset() = default;

double AVAsset::duration() const { return decoder_ ? decoder_->duration() : 0; }
bool AVAsset::hasVideo() const { return decoder_ && decoder_->hasVideo(); }
bool AVAsset::hasAudio() const { return decoder_ && decoder_->hasAudio(); }
bool AVAsset::isPlayable() const {
  return decoder_ && decoder_->isOpen() && (hasVideo() || hasAudio());
}
CGSize AVAsset::naturalSize() const { return hasVideo() ? decoder_->videoSize() : CGSize{}; }

}  // namespace zv
