// LibraryVersions::content(): the content side's libraries, in the content library.
#include <cairo.h>
#include <fmt/format.h>
#include <pango/pango.h>
#include <webp/decode.h>

#include "platform/LibraryVersions.h"
#include "platform/media/Ffmpeg.h"

namespace zv {

namespace {

std::string dotted(unsigned version) {
  return fmt::format("{}.{}.{}", version >> 16, (version >> 8) & 0xFF, version & 0xFF);
}

}  // namespace

LibraryVersions::List LibraryVersions::content() {
  const Ffmpeg* ff = Ffmpeg::load();  // loaded on demand: asking for its version loads it
  std::string ffmpeg =
      ff ? fmt::format("{} (libavformat {}, libavcodec {})", ff->av_version_info(),
                       dotted(ff->avformat_version()), dotted(ff->avcodec_version()))
         : fmt::format("not found (libavformat.so.{})", LIBAVFORMAT_VERSION_MAJOR);
  return {{"Pango", pango_version_string()},
          {"Cairo", cairo_version_string()},
          {"FFmpeg", ffmpeg},
          {"libwebp", dotted(static_cast<unsigned>(WebPGetDecoderVersion()))}};
}

}  // namespace zv
