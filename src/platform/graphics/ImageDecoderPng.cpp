// PNG through libpng's simplified reader, which reports errors by its return value.
#include <png.h>

#include <cstring>

#include "platform/foundation/UniqueHandle.h"
#include "platform/graphics/ImageDecoder.h"
#include "platform/graphics/PixelBuffer.h"

namespace zv {

namespace {

struct PngImage {
  png_image image;
  PngImage() {
    std::memset(&image, 0, sizeof image);
    image.version = PNG_IMAGE_VERSION;
  }
  ~PngImage() { png_image_free(&image); }
  bool begin(std::string_view bytes) {
    return png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) != 0;
  }
};

}  // namespace

std::optional<ImageHeader> ImageDecoder::pngHeader(std::string_view bytes) {
  PngImage png;
  if (!png.begin(bytes)) return std::nullopt;
  return ImageHeader{ImageFormat::kPng, static_cast<int>(png.image.width),
                     static_cast<int>(png.image.height)};
}

std::shared_ptr<const PixelBuffer> ImageDecoder::decodePng(std::string_view bytes) {
  PngImage png;
  if (!png.begin(bytes)) return nullptr;
  auto pixels = PixelBuffer::make(png.image.width, png.image.height);
  if (!pixels) return nullptr;
  // Straight BGRA bytes are ARGB words on a little-endian machine; premultiplied below.
  png.image.format = PNG_FORMAT_BGRA;
  if (!png_image_finish_read(&png.image, nullptr, pixels->data.data(),
                             static_cast<png_int_32>(png.image.width * 4), nullptr)) {
    return nullptr;
  }
  for (std::uint32_t& p : pixels->data) {
    unsigned a = p >> 24;
    if (a != 255) p = PixelBuffer::premultiplied((p >> 16) & 0xFF, (p >> 8) & 0xFF, p & 0xFF, a);
  }
  return pixels;
}

}  // namespace zv
