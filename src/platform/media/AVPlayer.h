// zv::AVPlayer plays one item on the run loop it was made on: its current time is the time it had
// when play() was called plus the run-loop time passed since, up to the item's duration. At the
// item's end it stops there (rate 0) whatever its action at the end: with kNone the clip stays on
// its last frame and does not loop; there is no queue to advance to, so kAdvance and kPause end
// the same way. Main thread only.
#pragma once

#include <memory>

#include "platform/media/AVPlayerItem.h"

namespace zv {

class RunLoop;

enum class AVPlayerActionAtItemEnd { kAdvance = 0, kPause = 1, kNone = 2 };

class AVPlayer {
 public:
  static std::shared_ptr<AVPlayer> playerWithPlayerItem(std::shared_ptr<AVPlayerItem> item);
  AVPlayer(std::shared_ptr<AVPlayerItem> item, std::shared_ptr<RunLoop> runLoop);

  const std::shared_ptr<AVPlayerItem>& currentItem() const { return item_; }
  void play();
  void pause();
  // 1 while playing, 0 when paused or at the end.
  float rate() const;
  double currentTime() const;
  AVPlayerActionAtItemEnd actionAtItemEnd() const { return actionAtItemEnd_; }
  void setActionAtItemEnd(AVPlayerActionAtItemEnd action) { actionAtItemEnd_ = action; }

 private:
  double duration() const;

  std::shared_ptr<AVPlayerItem> item_;
  std::shared_ptr<RunLoop> runLoop_;
  AVPlayerActionAtItemEnd actionAtItemEnd_ = AVPlayerActionAtItemEnd::kAdvance;
  bool playing_ = false;
  double timeAtStart_ = 0;
  double runLoopAtStart_ = 0;
};

}  // namespace zv
