// zv::WebPAnimationWriter writes frames drawn over time as an animated WebP (libwebp's animation
// encoder). Each frame is shown from its timestamp until the next one's; a frame equal to the one
// before it is not added, so the earlier frame simply lasts longer. Every frame takes the canvas
// size of the first (a larger one is cropped, a smaller one padded with transparency).
#pragma once

#include <filesystem>
#include <memory>

#include "platform/graphics/PixelBuffer.h"

namespace zv {

class WebPAnimationWriter {
 public:
  // Lossy frames of this quality (0 to 100).
  explicit WebPAnimationWriter(int quality = 85);
  ~WebPAnimationWriter();
  WebPAnimationWriter(const WebPAnimationWriter&) = delete;
  WebPAnimationWriter& operator=(const WebPAnimationWriter&) = delete;

  // Adds a frame shown from timestampMs (increasing from one call to the next). False when the
  // encoder refused it.
  bool add(const PixelBuffer& frame, int timestampMs);
  // Ends the last frame at endMs and writes the file. False when encoding or writing failed.
  bool finish(int endMs, const std::filesystem::path& file);
  // The frames added so far (equal ones merged).
  int frameCount() const { return frames_; }

 private:
  struct Encoder;
  std::unique_ptr<Encoder> encoder_;
  std::shared_ptr<PixelBuffer> previous_;
  int quality_;
  int frames_ = 0;
};

}  // namespace zv
