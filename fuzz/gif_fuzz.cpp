// GIF bytes through the decoder: every frame composited, and the animated image built from them.
// Damage gives fewer frames or none, never a crash or unbounded memory.
#include <cstdio>
#include <cstdlib>

#include "FuzzInput.h"
#include "platform/graphics/CGImageSource.h"
#include "templates/ZVRichPushGif.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto bytes = std::make_shared<const std::string>(zvfuzz::text(data, size));
  if (auto source = zv::CGImageSource::createWithData(bytes)) {
    for (std::size_t i = 0; i < source->count(); ++i) {
      auto image = source->createImageAtIndex(i);
      ZV_FUZZ_CHECK(image);
      if (auto pixels = image->pixels()) {
        ZV_FUZZ_CHECK(pixels->width == image->width() && pixels->height == image->height());
      }
    }
  }
  if (auto animated = zv::ZVRichPushGif::animatedImageWithAnimatedGIFData(bytes)) {
    ZV_FUZZ_CHECK(!animated->images().empty());
    ZV_FUZZ_CHECK(animated->images().size() <= std::size_t(zv::ZVRichPushGif::kMaxSlots));
  }
  return 0;
}
