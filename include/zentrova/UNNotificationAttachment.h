/// @file
/// zv::UNNotificationAttachment is a media file (image, audio or video) shown with a notification.
/// It is made from a local file, which it checks as the phone's system does: the file must exist,
/// its bytes must be of a supported media type, and it must be within that type's size limit:
///   images (PNG, JPEG, GIF) up to 10 MB, audio (MP3, AAC/M4A, WAV, AIFF) up to 5 MB,
///   video (MPEG-4, QuickTime, MPEG) up to 50 MB.
/// The file stays where it is; the attachment keeps its identifier, URL and the detected MIME type.
/// The content extension finds an attachment again by its identifier.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "zentrova/Error.h"
#include "zentrova/Export.h"
#include "zentrova/Url.h"
#include "zentrova/Value.h"

ZENTROVA_API_BEGIN

namespace zv {

/// A checked media file shown with a notification.
///
/// Made only by attachmentWithIdentifier(), which reports a refused file as a zv::Error (domain
/// Error::kAttachmentDomain) and never raises. Immutable and held by shared_ptr: content copies
/// share their attachments, and any thread may read one. The file itself is neither copied nor
/// owned: it must stay in place for as long as the attachment is shown.
class UNNotificationAttachment {
 public:
  /// The largest file of each media kind, in bytes. A megabyte is 1024 * 1024 bytes; a file of
  /// exactly the limit is accepted.
  ///@{
  static constexpr std::uintmax_t kMegabyte = 1024 * 1024;
  static constexpr std::uintmax_t kMaxImageBytes = 10 * kMegabyte;
  static constexpr std::uintmax_t kMaxAudioBytes = 5 * kMegabyte;
  static constexpr std::uintmax_t kMaxVideoBytes = 50 * kMegabyte;
  ///@}
  /// The largest file any attachment may be: a download beyond it can never become one.
  static constexpr std::uintmax_t kMaxAttachmentBytes = kMaxVideoBytes;

  /// The codes of the errors attachmentWithIdentifier() reports (domain Error::kAttachmentDomain),
  /// the same numbers as the phone's.
  /// Not a file URL, or the file is missing, unreadable or not a regular file.
  ///@{
  static constexpr long kInvalidUrlError = 100;
  /// The bytes are of no media type, or of one an attachment does not accept.
  static constexpr long kUnrecognizedTypeError = 101;
  /// The file is over its kind's size limit.
  static constexpr long kInvalidFileSizeError = 102;
  ///@}

  /// An attachment of the file at a file URL, or nullptr with *error set (when error is non-null)
  /// to one of the codes above. Reads the start of the file on the calling thread; any thread.
  /// An empty identifier gets a unique one, as on the phone. The options (nil or a dictionary)
  /// change nothing here: on the phone they only hint at the type and the thumbnail, and the type
  /// is always read from the bytes.
  static std::shared_ptr<UNNotificationAttachment> attachmentWithIdentifier(
      const std::string& identifier, const Url& url, const Value& options, Error* error);

  /// The identifier (the one given, or the unique one made for an empty one).
  const std::string& identifier() const { return identifier_; }
  /// The file URL it was made from, as given.
  const Url& URL() const { return url_; }
  /// The MIME type read from the file's bytes ("image/png", "video/mp4", ...).
  const std::string& type() const { return type_; }

  /// The media kind of a MIME type that an attachment accepts ("image", "audio", "video"), or ""
  /// for any other type.
  static std::string mediaKindOfType(const std::string& mimeType);

 private:
  UNNotificationAttachment(std::string identifier, Url url, std::string type)
      : identifier_(std::move(identifier)), url_(std::move(url)), type_(std::move(type)) {}

  std::string identifier_;
  Url url_;
  std::string type_;
};

}  // namespace zv

ZENTROVA_API_END
