#include "platform/media/AVPlayer.h"

#include <algorithm>

#include "platform/ui/RunLoop.h"

namespace zv {

std::shared_ptr<AVPlayer> AVPlayer::playerWithPlayerItem(std::shared_ptr<AVPlayerItem> item) {
  return std::make_shared<AVPlayer>(std::move(item), RunLoop::current());
}

AVPlayer::AVPlayer(std::shared_ptr<AVPlayerItem> item, std::shared_ptr<RunLoop> runLoop)
    : item_(std::move(item)), runLoop_(std::move(runLoop)) {}

double AVPlayer::duration() const {
  return item_ && item_->asset() && item_->asset()->isPlayable() ? item_->asset()->duration() : 0;
}

void AVPlayer::play() {
  if (playing_ || duration() <= 0) return;
  timeAtStart_ = currentTime();
  runLoopAtStart_ = runLoop_->now();
  playing_ = true;
}

void AVPlayer::pause() {
  timeAtStart_ = currentTime();
  playing_ = false;
}

double AVPlayer::currentTime() const {
  if (!playing_) return timeAtStart_;
  return std::min(duration(), timeAtStart_ + (runLoop_->now() - runLoopAtStart_));
}

float AVPlayer::rate() const { return playing_ && currentTime() < duration() ? 1.0f : 0.0f; }

}  // namespace zv
