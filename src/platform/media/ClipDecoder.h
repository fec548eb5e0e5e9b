// zv::ClipDecoder reads a clip file with FFmpeg: its duration, whether it has video and audio, the
// video's display size, and the video frame shown at a time (the last frame whose presentation
// time is not after it), converted to premultiplied ARGB32. It keeps the last frame decoded, so
// asking for later times while a clip plays decodes forward without seeking. A file FFmpeg cannot
// open, or a video over the pixel budget, reads as a clip with nothing in it. Main thread only.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/foundation/UniqueHandle.h"
#include "platform/graphics/PixelBuffer.h"
#include "zentrova/Geometry.h"

struct AVFormatContext;
struct AVCodecContext;
struct AVFrame;
struct AVPacket;
struct SwsContext;

namespace zv {

struct Ffmpeg;

namespace ffmpeg {
// FFmpeg's release functions take a pointer to the handle; these take the handle.
void closeInput(AVFormatContext* context);
void freeCodec(AVCodecContext* context);
void freeFrame(AVFrame* frame);
void freePacket(AVPacket* packet);
void freeScaler(SwsContext* scaler);
}  // namespace ffmpeg

class ClipDecoder {
 public:
  explicit ClipDecoder(const std::filesystem::path& file);
  ~ClipDecoder();
  ClipDecoder(const ClipDecoder&) = delete;
  ClipDecoder& operator=(const ClipDecoder&) = delete;

  bool isOpen() const { return format_ != nullptr; }
  double duration() const { return duration_; }
  bool hasVideo() const { return video_ != nullptr; }
  bool hasAudio() const { return hasAudio_; }
  CGSize videoSize() const { return size_; }
  // The frame shown at `seconds`; nullptr without video or when nothing decodes.
  std::shared_ptr<const PixelBuffer> frameAt(double seconds);

 private:
  bool seek(double seconds);
  // Decodes the next frame into next_; false at the end or on damage.
  bool decodeNext();
  double timeOf(const AVFrame* frame) const;
  std::shared_ptr<const PixelBuffer> convert(AVFrame* frame);

  const Ffmpeg* ff_;  // nullptr when FFmpeg could not be loaded
  UniqueHandle<AVFormatContext, ffmpeg::closeInput> format_;
  UniqueHandle<AVCodecContext, ffmpeg::freeCodec> video_;
  UniqueHandle<AVFrame, ffmpeg::freeFrame> current_, next_;
  UniqueHandle<AVPacket, ffmpeg::freePacket> packet_;
  UniqueHandle<SwsContext, ffmpeg::freeScaler> scaler_;
  int stream_ = -1;
  double timeBase_ = 0;
  double duration_ = 0;
  bool hasAudio_ = false;
  CGSize size_;
  bool ended_ = false;
  bool hasCurrent_ = false, hasNext_ = false;
  double shownTime_ = -1;  // presentation time of the frame in shown_
  std::shared_ptr<const PixelBuffer> shown_;
};

}  // namespace zv
