#include "platform/notifications/MediaTypeDetector.h"

#include <magic.h>

#include <mutex>

namespace zv {

namespace {

class MagicHandle {
 public:
  MagicHandle() : cookie_(magic_open(MAGIC_MIME_TYPE | MAGIC_ERROR)) {
    if (cookie_ == nullptr) {
      failure_ = "libmagic could not be opened";
    } else if (magic_load(cookie_, nullptr) != 0) {
      const char* e = magic_error(cookie_);
      failure_ =
          std::string("the media type database could not be loaded: ") + (e ? e : "unknown reason");
    }
  }
  ~MagicHandle() {
    if (cookie_ != nullptr) magic_close(cookie_);
  }
  MagicHandle(const MagicHandle&) = delete;
  MagicHandle& operator=(const MagicHandle&) = delete;

  std::optional<std::string> detect(std::string_view bytes, std::string* reason) {
    std::lock_guard lock(mutex_);
    if (failure_.empty()) {
      const char* type = magic_buffer(cookie_, bytes.data(), bytes.size());
      if (type != nullptr) return std::string(type);
      const char* e = magic_error(cookie_);
      if (reason) *reason = std::string("libmagic failed: ") + (e ? e : "unknown reason");
      return std::nullopt;
    }
    if (reason) *reason = failure_;
    return std::nullopt;
  }

 private:
  std::mutex mutex_;
  magic_t cookie_;
  std::string failure_;
};

}  // namespace

std::optional<std::string> MediaTypeDetector::mimeTypeOfBytes(std::string_view bytes,
                                                              std::string* reason) {
  static MagicHandle handle;
  return handle.detect(bytes, reason);
}

}  // namespace zv
