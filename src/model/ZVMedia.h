// ZVMedia is one media item to download for a notification: the URL made from the payload's
// string, the media type as the payload gave it, the attachment identifier (the lower-case hex MD5
// of the URL's absolute string) and the file extension. An item whose string cannot be made into a
// URL has no identifier and no extension, and is never downloaded.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "zentrova/Url.h"
#include "zentrova/Value.h"

namespace zv {

class ZVMedia {
 public:
  // url and mediaType are payload values: nil, or strings. A nil url gives an item with every
  // property nil. A url that is not a string raises zv::Exception, and so does a mediaType that is
  // not a string when the default extension has to be taken from it.
  static std::shared_ptr<ZVMedia> initWithURL(const Value& url, const Value& mediaType);

  // "<attachmentID>.<attachmentExtension>", with "attachment" and "png" standing in for either
  // when it is nil.
  std::string getFileNameForMedia() const;

  std::optional<Url> mediaURL;
  Value mediaType;  // as found in the payload ("image", "audio", "video", anything, or nil)
  std::optional<std::string> attachmentID;
  std::optional<std::string> attachmentExtension;
};

}  // namespace zv
