// HTML (any bytes) into the plain text of the notification and the styled text of the content
// side, light and dark.
#include <cstdio>
#include <cstdlib>

#include "FuzzInput.h"
#include "model/ZVRichNotifUtils.h"
#include "platform/text/StyledText.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string html = zvfuzz::text(data, size);
  auto plain = zv::ZVRichNotifUtils::getStringFromHTML(html);
  for (bool dark : {false, true}) {
    auto styled = zv::ZVRichNotifUtils::getAttributedStringFromHTMLStr(html, dark);
    if (styled) ZV_FUZZ_CHECK(styled->string().size() <= 4 * html.size() + 16);
  }
  (void)plain;
  return 0;
}
