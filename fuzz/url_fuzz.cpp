// A media URL string (any bytes) through the URL reader, the attachment identifier and the file
// name: a file name is one clean path component.
#include <cstdio>
#include <cstdlib>

#include "FuzzInput.h"
#include "model/ZVRichNotifUtils.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto url = zv::ZVRichNotifUtils::getURLFromString(zvfuzz::text(data, size));
  auto id = zv::ZVRichNotifUtils::getAttachmentIDForURL(url);
  if (!url) return 0;
  ZV_FUZZ_CHECK(id && id->size() == 32);
  std::string name = zv::ZVRichNotifUtils::getAttachmentImageNameForURL(*url);
  ZV_FUZZ_CHECK(name.find('/') == std::string::npos);
  ZV_FUZZ_CHECK(name.find('\0') == std::string::npos);
  (void)zv::ZVRichNotifUtils::getFileExtension(*url);
  (void)zv::ZVRichNotifUtils::isImageGifWithURL(*url);
  return 0;
}
