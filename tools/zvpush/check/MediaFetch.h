// zvpush check --fetch: the payload's media downloaded for real, by the service's own content
// flow (no store, no report) through a URL session of the check's own that watches each
// transfer. What the phone would refuse becomes findings:
//   media-unreachable    the download failed (transfer error, not 200, no answer in time);
//   media-too-large      more bytes than the phone takes for the kind (image 10 MB, GIF 50 MB,
//                        audio 5 MB, video 50 MB; a megabyte is 1024 * 1024 bytes);
//   media-type-mismatch  the bytes are not of the declared media type, or of no kind at all.
// Content side only (zvpush-content), in a worker process.
#pragma once

#include <boost/json/array.hpp>
#include <filesystem>

#include "check/Finding.h"
#include "zentrova/Value.h"

namespace zvpush {

class MediaFetch {
 public:
  // folder: where the downloads and attachments go; removed with the object.
  explicit MediaFetch(std::filesystem::path folder);
  ~MediaFetch();
  MediaFetch(const MediaFetch&) = delete;
  MediaFetch& operator=(const MediaFetch&) = delete;

  // The delivered content (what zvpush service prints) for payload; the media findings are
  // added to findings, each a copy of stamp with its code, message and details.
  zv::Value deliver(const zv::Value& payload, const Finding& stamp, boost::json::array& findings);

  // The most bytes the phone takes for a MIME type ("image/gif", "video/mp4", ...) or a declared
  // media kind ("image", "audio", "video").
  static std::uintmax_t limitFor(const std::string& mimeType);

 private:
  std::filesystem::path folder_;
};

}  // namespace zvpush
