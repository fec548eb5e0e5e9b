// LibraryVersions::content(): the content side's libraries, in the content library.
#include <cairo.h>
#include <pango/pango.h>
#include <webp/decode.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
}

#include <fmt/format.h>

#include "zentrova/platform/LibraryVersions.h"

namespace zv {

namespace {

std::string dotted(unsigned version) {
  return fmt::format("{}.{}.{}", version >> 16, (version >> 8) & 0xFF, version & 0xFF);
}

}  // namespace

LibraryVersions::List LibraryVersions::content() {
  int webp = WebPGetDecoderVersion();
  return {{"Pango", pango_version_string()},
          {"Cairo", cairo_version_string()},
          {"FFmpeg", fmt::format("{} (libavformat {}, libavcodec {})", av_version_info(),
                                 dotted(avformat_version()), dotted(avcodec_version()))},
          {"libwebp", fmt::format("{}.{}.{}", webp >> 16, (webp >> 8) & 0xFF, webp & 0xFF)}};
}

}  // namespace zv
