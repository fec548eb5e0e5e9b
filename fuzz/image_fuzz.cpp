// Still-image bytes (PNG, JPEG, WebP, GIF): the size from the header, then the pixels.
#include <cstdio>
#include <cstdlib>

#include "FuzzInput.h"
#include "platform/graphics/UIImage.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto image = zv::UIImage::imageWithData(zvfuzz::text(data, size));
  if (!image) return 0;
  ZV_FUZZ_CHECK(image->size().width > 0 && image->size().height > 0);
  if (auto pixels = image->cgImage()->pixels()) {
    ZV_FUZZ_CHECK(pixels->data.size() == std::size_t(pixels->width) * std::size_t(pixels->height));
  }
  return 0;
}
