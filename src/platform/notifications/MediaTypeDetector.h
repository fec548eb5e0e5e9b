// zv::MediaTypeDetector tells the MIME type of a file from its bytes (libmagic), never from its
// name: a PNG saved as "photo.mp4" is "image/png". Notification attachments use it to accept only
// the media types that a notification can show. One libmagic handle serves the whole process
// behind a lock (libmagic handles are not thread-safe).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zv {

class MediaTypeDetector {
 public:
  // The MIME type of some bytes ("image/png", "text/plain", "application/x-empty", ...), or
  // nullopt with a description in *reason when the type database cannot be loaded.
  static std::optional<std::string> mimeTypeOfBytes(std::string_view bytes, std::string* reason);
};

}  // namespace zv
