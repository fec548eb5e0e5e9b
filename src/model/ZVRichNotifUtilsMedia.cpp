// The URL, MD5 and file-name operations of ZVRichNotifUtils, shared by the service extension (which
// names every attachment by the MD5 of its media URL) and the content extension (which finds the
// attachment of a widget again from the widget's URL alone).
#include <algorithm>

#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/Md5.h"

namespace zv {

std::optional<Url> ZVRichNotifUtils::getURLFromString(const std::optional<std::string>& s) {
  if (!s || s->empty()) return std::nullopt;
  // A string with any valid escape is taken as already encoded and parsed as it stands; any other
  // is encoded first, so "a b" and "a%20b" name the same URL and a raw "#" becomes "%23".
  if (isPercentageEncodedString(*s)) return Url::parse(*s);
  return Url::parse(percentEncodeQueryAllowed(*s));
}

bool ZVRichNotifUtils::isPercentageEncodedString(std::string_view s) {
  std::optional<std::string> decoded = percentDecode(s);
  return !(decoded && *decoded == s);
}

std::optional<std::string> ZVRichNotifUtils::getAttachmentIDForURL(const std::optional<Url>& url) {
  if (!url) return std::nullopt;
  return MD5hashForString(url->absoluteString());
}

std::string ZVRichNotifUtils::getAttachmentImageNameForURL(const Url& url) {
  return MD5hashForString(url.absoluteString()) + "." + getFileExtension(url);
}

std::string ZVRichNotifUtils::getDefaultExtensionForMediaType(
    const std::optional<std::string>& mediaType) {
  if (mediaType == "audio") return "mp3";
  if (mediaType == "video") return "mp4";
  return "png";  // "image", anything else, and none
}

std::string ZVRichNotifUtils::MD5hashForString(std::string_view s) {
  // The text is hashed as a C string: its UTF-8 bytes up to the first zero byte.
  return md5Hex(s.substr(0, s.find('\0')));
}

std::string ZVRichNotifUtils::getFileExtension(const Url& url) {
  return isImageGifWithURL(url) ? "gif" : "png";
}

bool ZVRichNotifUtils::isImageGifWithURL(const Url& url) {
  std::string s = url.absoluteString();
  s.erase(std::min(s.size(), s.find('?')));
  std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) {
    return static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
  });
  return s.ends_with(".gif");
}

}  // namespace zv
