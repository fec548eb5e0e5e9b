// Still-image bytes (PNG, JPEG, WebP, GIF): the size from the header, then the pixels at the size
// asked for by the input's last two bytes (or the image's own size) — orientation, colour
// profiles, DCT scaling and the resampler included.
#include <cstdio>
#include <cstdlib>

#include "FuzzInput.h"
#include "platform/graphics/ImageDecoder.h"
#include "platform/graphics/UIImage.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto image = zv::UIImage::imageWithData(zvfuzz::text(data, size));
  if (!image) return 0;
  const auto w = image->size().width, h = image->size().height;
  ZV_FUZZ_CHECK(w > 0 && h > 0);
  int askW = size >= 2 ? data[size - 2] : 0, askH = size >= 2 ? data[size - 1] : 0;
  auto pixels = (askW & 1) ? image->cgImage()->pixels(askW, askH) : image->cgImage()->pixels();
  if (pixels) {
    ZV_FUZZ_CHECK(pixels->data.size() == std::size_t(pixels->width) * std::size_t(pixels->height));
    ZV_FUZZ_CHECK(zv::PixelBuffer::withinBudget(pixels->width, pixels->height));
    ZV_FUZZ_CHECK(pixels->width <= w && pixels->height <= h);
    // Premultiplied: no colour exceeds its alpha.
    for (std::uint32_t p : pixels->data) {
      std::uint32_t a = p >> 24;
      ZV_FUZZ_CHECK(((p >> 16) & 0xFF) <= a && ((p >> 8) & 0xFF) <= a && (p & 0xFF) <= a);
    }
  }
  return 0;
}
