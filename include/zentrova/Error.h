// zv::Error is an error that the platform reports without raising (file, attachment, network):
// a domain, a code and a human-readable description. description() is what a "%@" prints.
#pragma once

#include <string>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

struct Error {
  // Domains used by the platform layer.
  static constexpr const char* kFileDomain = "ZVFileErrorDomain";
  static constexpr const char* kAttachmentDomain = "ZVNotificationAttachmentErrorDomain";
  static constexpr const char* kUrlDomain = "ZVURLErrorDomain";

  std::string domain;
  long code = 0;
  std::string localizedDescription;

  // "Error Domain=<domain> Code=<code> "<localized description>"".
  std::string description() const;
};

}  // namespace zv

ZENTROVA_API_END
