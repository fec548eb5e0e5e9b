#include "zentrova/UNNotificationAttachment.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <random>

#include "platform/notifications/MediaTypeDetector.h"

namespace zv {

namespace {

// The MIME types that libmagic reports for the supported formats, including the spellings of
// other libmagic versions.
struct Accepted {
  const char* mimeType;
  const char* kind;
};
constexpr std::array kAccepted{
    Accepted{"image/png", "image"},           Accepted{"image/jpeg", "image"},
    Accepted{"image/gif", "image"},           Accepted{"audio/mpeg", "audio"},
    Accepted{"audio/x-hx-aac-adts", "audio"}, Accepted{"audio/aac", "audio"},
    Accepted{"audio/x-m4a", "audio"},         Accepted{"audio/mp4", "audio"},
    Accepted{"audio/x-wav", "audio"},         Accepted{"audio/wav", "audio"},
    Accepted{"audio/vnd.wave", "audio"},      Accepted{"audio/x-aiff", "audio"},
    Accepted{"audio/aiff", "audio"},          Accepted{"video/mp4", "video"},
    Accepted{"video/x-m4v", "video"},         Accepted{"video/quicktime", "video"},
    Accepted{"video/mpeg", "video"},
};

// How much of a file the type check reads: every supported format is known by its first bytes.
constexpr size_t kSniffBytes = 256 * 1024;

std::uintmax_t limitForKind(const std::string& kind) {
  if (kind == "image") return UNNotificationAttachment::kMaxImageBytes;
  if (kind == "audio") return UNNotificationAttachment::kMaxAudioBytes;
  return UNNotificationAttachment::kMaxVideoBytes;
}

std::shared_ptr<UNNotificationAttachment> fail(Error* error, long code, std::string description) {
  if (error) *error = Error{Error::kAttachmentDomain, code, std::move(description)};
  return nullptr;
}

std::string uniqueIdentifier() {
  static thread_local std::mt19937_64 random{std::random_device{}()};
  uint64_t a = random();
  uint64_t b = random();
  return fmt::format("{:08X}-{:04X}-4{:03X}-{:04X}-{:012X}", a >> 32, (a >> 16) & 0xFFFF, a & 0xFFF,
                     0x8000 | ((b >> 48) & 0x3FFF), b & 0xFFFFFFFFFFFFULL);
}

// Reads the start of an open file.
bool readStart(int fd, std::string* bytes) {
  bytes->resize(kSniffBytes);
  size_t have = 0;
  while (have < kSniffBytes) {
    ssize_t n = ::read(fd, bytes->data() + have, kSniffBytes - have);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    if (n == 0) break;
    have += static_cast<size_t>(n);
  }
  bytes->resize(have);
  return true;
}

}  // namespace

std::string UNNotificationAttachment::mediaKindOfType(const std::string& mimeType) {
  for (const auto& a : kAccepted) {
    if (mimeType == a.mimeType) return a.kind;
  }
  return "";
}

std::shared_ptr<UNNotificationAttachment> UNNotificationAttachment::attachmentWithIdentifier(
    const std::string& identifier, const Url& url, const Value& /*options*/, Error* error) {
  if (!url.isFileUrl()) {
    return fail(error, kInvalidUrlError,
                fmt::format("The attachment URL {} is not a file URL", url.absoluteString()));
  }
  std::string path = url.filePath().string();
  // O_NONBLOCK: opening a FIFO must not wait for a writer; it is refused below anyway.
  int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (fd < 0) {
    return fail(
        error, kInvalidUrlError,
        fmt::format("The attachment file {} cannot be read: {}", path, std::strerror(errno)));
  }
  struct stat st {};
  std::string start;
  bool regular = ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode);
  bool readable = regular && readStart(fd, &start);
  int readErrno = errno;
  ::close(fd);
  if (!regular) {
    return fail(error, kInvalidUrlError,
                fmt::format("The attachment {} is not a regular file", path));
  }
  if (!readable) {
    return fail(
        error, kInvalidUrlError,
        fmt::format("The attachment file {} cannot be read: {}", path, std::strerror(readErrno)));
  }

  std::string reason;
  auto type = MediaTypeDetector::mimeTypeOfBytes(start, &reason);
  if (!type) {
    return fail(error, kUnrecognizedTypeError,
                fmt::format("The type of the attachment file {} is unknown: {}", path, reason));
  }
  std::string kind = mediaKindOfType(*type);
  if (kind.empty()) {
    return fail(error, kUnrecognizedTypeError,
                fmt::format("The attachment file {} is of an unsupported type ({})", path, *type));
  }
  auto size = static_cast<std::uintmax_t>(st.st_size);
  if (std::uintmax_t limit = limitForKind(kind); size > limit) {
    return fail(error, kInvalidFileSizeError,
                fmt::format("The attachment file {} ({}) is {} bytes, more than the {} bytes "
                            "allowed for {}",
                            path, *type, size, limit, kind));
  }
  std::string id = identifier.empty() ? uniqueIdentifier() : identifier;
  return std::shared_ptr<UNNotificationAttachment>(
      new UNNotificationAttachment(std::move(id), url, std::move(*type)));
}

}  // namespace zv
