#include "platform/media/ClipDecoder.h"

#include <algorithm>
#include <cmath>

#include "platform/graphics/PixelBuffer.h"
#include "platform/media/Ffmpeg.h"

namespace zv {

// Handles exist only once FFmpeg is loaded, so the deleters find it loaded.
namespace ffmpeg {
void closeInput(AVFormatContext* context) { Ffmpeg::load()->avformat_close_input(&context); }
void freeCodec(AVCodecContext* context) { Ffmpeg::load()->avcodec_free_context(&context); }
void freeFrame(AVFrame* frame) { Ffmpeg::load()->av_frame_free(&frame); }
void freePacket(AVPacket* packet) { Ffmpeg::load()->av_packet_free(&packet); }
void freeScaler(SwsContext* scaler) { Ffmpeg::load()->sws_freeContext(scaler); }
}  // namespace ffmpeg

ClipDecoder::ClipDecoder(const std::filesystem::path& file) : ff_(Ffmpeg::load()) {
  if (!ff_) return;                     // without FFmpeg's libraries no clip plays
  ff_->av_log_set_level(AV_LOG_QUIET);  // damaged files are expected; FFmpeg need not say so
  AVFormatContext* raw = nullptr;
  if (ff_->avformat_open_input(&raw, file.c_str(), nullptr, nullptr) != 0) return;
  format_.reset(raw);
  if (ff_->avformat_find_stream_info(format_.get(), nullptr) < 0) {
    format_.reset();
    return;
  }
  if (format_->duration > 0) duration_ = static_cast<double>(format_->duration) / AV_TIME_BASE;
  for (unsigned i = 0; i < format_->nb_streams; ++i) {
    if (format_->streams[i]->codecpar->codec_type == AVMEDIA_TYPE_AUDIO) hasAudio_ = true;
  }
  stream_ = ff_->av_find_best_stream(format_.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
  if (stream_ < 0) return;
  AVStream* stream = format_->streams[stream_];
  const AVCodecParameters* parameters = stream->codecpar;
  // A cover picture in an audio file is not a video.
  if (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) return;
  if (!PixelBuffer::withinBudget(static_cast<std::size_t>(std::max(parameters->width, 0)),
                                 static_cast<std::size_t>(std::max(parameters->height, 0)))) {
    return;
  }
  const AVCodec* codec = ff_->avcodec_find_decoder(parameters->codec_id);
  if (!codec) return;
  video_.reset(ff_->avcodec_alloc_context3(codec));
  if (!video_ || ff_->avcodec_parameters_to_context(video_.get(), parameters) < 0 ||
      ff_->avcodec_open2(video_.get(), codec, nullptr) < 0) {
    video_.reset();
    return;
  }
  current_.reset(ff_->av_frame_alloc());
  next_.reset(ff_->av_frame_alloc());
  packet_.reset(ff_->av_packet_alloc());
  if (!current_ || !next_ || !packet_) {
    video_.reset();
    return;
  }
  timeBase_ = av_q2d(stream->time_base);
  double aspect =
      parameters->sample_aspect_ratio.num > 0 ? av_q2d(parameters->sample_aspect_ratio) : 1.0;
  size_ = CGSize{parameters->width * aspect, static_cast<double>(parameters->height)};
  if (duration_ <= 0 && stream->duration > 0) duration_ = stream->duration * timeBase_;
}

ClipDecoder::~ClipDecoder() = default;

double ClipDecoder::timeOf(const AVFrame* frame) const {
  int64_t pts = frame->best_effort_timestamp;
  if (pts == AV_NOPTS_VALUE) pts = frame->pts;
  if (pts == AV_NOPTS_VALUE) return 0;
  double start = format_->streams[stream_]->start_time != AV_NOPTS_VALUE
                     ? format_->streams[stream_]->start_time * timeBase_
                     : 0;
  return pts * timeBase_ - start;
}

bool ClipDecoder::seek(double seconds) {
  int64_t target = static_cast<int64_t>(seconds / timeBase_);
  if (format_->streams[stream_]->start_time != AV_NOPTS_VALUE) {
    target += format_->streams[stream_]->start_time;
  }
  if (ff_->av_seek_frame(format_.get(), stream_, target, AVSEEK_FLAG_BACKWARD) < 0) {
    // Not seekable: start again from the beginning.
    if (ff_->av_seek_frame(format_.get(), stream_, 0, AVSEEK_FLAG_BACKWARD | AVSEEK_FLAG_BYTE) <
        0) {
      return false;
    }
  }
  ff_->avcodec_flush_buffers(video_.get());
  hasCurrent_ = hasNext_ = ended_ = false;
  return true;
}

bool ClipDecoder::decodeNext() {
  while (!ended_) {
    int got = ff_->avcodec_receive_frame(video_.get(), next_.get());
    if (got == 0) return true;
    if (got != AVERROR(EAGAIN)) {
      ended_ = true;
      return false;
    }
    int read = ff_->av_read_frame(format_.get(), packet_.get());
    if (read < 0) {
      ff_->avcodec_send_packet(video_.get(), nullptr);  // drain what the decoder still holds
      continue;
    }
    if (packet_->stream_index == stream_) ff_->avcodec_send_packet(video_.get(), packet_.get());
    ff_->av_packet_unref(packet_.get());
  }
  return false;
}

std::shared_ptr<const PixelBuffer> ClipDecoder::frameAt(double seconds) {
  if (!video_) return nullptr;
  seconds = std::clamp(std::isfinite(seconds) ? seconds : 0.0, 0.0, std::max(duration_, 0.0));
  if (shown_ && seconds == shownTime_) return shown_;
  // Decoding forward is cheap for a little while; going back, or far ahead, seeks.
  bool behind = hasCurrent_ && timeOf(current_.get()) > seconds;
  bool farAhead = hasCurrent_ && seconds - timeOf(current_.get()) > 2.0;
  if ((!hasCurrent_ && !hasNext_) || behind || farAhead) {
    if (!seek(seconds)) return nullptr;
  }
  while (true) {
    if (!hasNext_) {
      if (!decodeNext()) break;
      hasNext_ = true;
    }
    if (hasCurrent_ && timeOf(next_.get()) > seconds) break;
    std::swap(current_, next_);
    hasCurrent_ = true;
    hasNext_ = false;
  }
  if (!hasCurrent_) return nullptr;
  shown_ = convert(current_.get());
  shownTime_ = seconds;
  return shown_;
}

std::shared_ptr<const PixelBuffer> ClipDecoder::convert(AVFrame* frame) {
  auto pixels = PixelBuffer::make(static_cast<std::size_t>(frame->width),
                                  static_cast<std::size_t>(frame->height));
  if (!pixels) return nullptr;
  scaler_.reset(ff_->sws_getCachedContext(
      scaler_.release(), frame->width, frame->height, static_cast<AVPixelFormat>(frame->format),
      frame->width, frame->height, AV_PIX_FMT_BGRA, SWS_BILINEAR, nullptr, nullptr, nullptr));
  if (!scaler_) return nullptr;
  uint8_t* planes[1] = {reinterpret_cast<uint8_t*>(pixels->data.data())};
  int strides[1] = {pixels->width * 4};
  ff_->sws_scale(scaler_.get(), frame->data, frame->linesize, 0, frame->height, planes, strides);
  return pixels;
}

}  // namespace zv
