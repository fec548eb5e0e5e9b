// zv::Ffmpeg: FFmpeg's functions, loaded (dlopen) the first time a clip is opened. A process that
// shows no clip never maps FFmpeg's libraries nor the eighty-odd libraries they pull in, whose
// relocated data costs about 3 MB of private dirty memory: memory a notification extension pays
// for out of its limit. The libraries are the ones of the headers this was built with (the same
// major versions), and they stay loaded for the life of the process.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libswscale/swscale.h>
}

namespace zv {

// clang-format off
#define ZV_FFMPEG_FUNCTIONS(X)                                                                  \
  X(av_log_set_level) X(av_version_info) X(av_frame_alloc) X(av_frame_free)                      \
  X(av_packet_alloc) X(av_packet_free) X(av_packet_unref) X(av_read_frame) X(av_seek_frame)      \
  X(av_find_best_stream) X(avformat_version) X(avformat_open_input)                              \
  X(avformat_find_stream_info) X(avformat_close_input) X(avcodec_version)                        \
  X(avcodec_find_decoder) X(avcodec_alloc_context3) X(avcodec_free_context)                      \
  X(avcodec_parameters_to_context) X(avcodec_open2) X(avcodec_send_packet)                       \
  X(avcodec_receive_frame) X(avcodec_flush_buffers) X(sws_getCachedContext) X(sws_scale)         \
  X(sws_freeContext)
// clang-format on

struct Ffmpeg {
  // The functions, or nullptr when the libraries cannot be loaded (then no clip plays). Loads
  // once; safe from any thread.
  static const Ffmpeg* load();

#define ZV_FFMPEG_MEMBER(name) decltype(&::name) name = nullptr;
  ZV_FFMPEG_FUNCTIONS(ZV_FFMPEG_MEMBER)
#undef ZV_FFMPEG_MEMBER
};

}  // namespace zv
