// Any bytes as a downloaded file: the attachment's type is read from the bytes, and only an
// image, audio or video type makes an attachment.
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "FuzzInput.h"
#include "zentrova/Error.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/Url.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto file = zvfuzz::scratch() / "media.bin";
  std::ofstream(file, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  zv::Error error;
  auto attachment = zv::UNNotificationAttachment::attachmentWithIdentifier(
      "fuzz", zv::Url::fileUrl(file), zv::Value(), &error);
  if (attachment) {
    ZV_FUZZ_CHECK(!zv::UNNotificationAttachment::mediaKindOfType(attachment->type()).empty());
  }
  return 0;
}
