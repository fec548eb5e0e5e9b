/// @file
/// zv::Error is an error that the platform reports without raising (file, attachment, network):
/// a domain, a code and a human-readable description. description() is what a "%@" prints.
#pragma once

#include <string>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

/// An error reported by value (a return value or an out-parameter), never raised.
///
/// Calls that can fail this way take an `Error*` (filled when non-null) or return one beside
/// their result; a failed call returns null, nullopt or false as its own documentation says.
struct Error {
  /// Reading or writing a local file.
  ///@{
  static constexpr const char* kFileDomain = "ZVFileErrorDomain";
  /// Making an attachment (codes in UNNotificationAttachment).
  static constexpr const char* kAttachmentDomain = "ZVNotificationAttachmentErrorDomain";
  /// A URL transfer (a download that failed or was stopped).
  static constexpr const char* kUrlDomain = "ZVURLErrorDomain";
  ///@}

  std::string domain;                ///< The error's domain (one of the k...Domain names).
  long code = 0;                     ///< The code within its domain.
  std::string localizedDescription;  ///< What went wrong, in a sentence for people.

  /// The error as a "%@" placeholder prints it:
  /// `Error Domain=<domain> Code=<code> "<localized description>"`.
  std::string description() const;
};

}  // namespace zv

ZENTROVA_API_END
