// The versions of the libraries this build runs on, as they report themselves at run time: what
// `zvpush --version` lists under its own version, and what a host can log beside a bug report.
// service() needs only the service library; content() lists the content side's libraries and
// lives in the content library.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace zv {

struct LibraryVersions {
  using List = std::vector<std::pair<std::string, std::string>>;  // name, version
  // libcurl, SQLite, OpenSSL.
  static List service();
  // Pango, Cairo, FFmpeg (libavformat, libavcodec), libwebp.
  static List content();
};

}  // namespace zv
