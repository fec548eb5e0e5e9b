// zv::ImageDecoder reads still images from bytes: the format from the first bytes, the size from
// the header alone, and the pixels (premultiplied ARGB32) only when asked. PNG (libpng), JPEG
// (libjpeg-turbo, whose errors come back here instead of ending the process), WebP (libwebp; the
// first frame of an animated one) and GIF (the first frame, composited). Anything over the pixel
// budget, damaged or of another format gives nothing; no input crashes or exhausts the process.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/graphics/PixelBuffer.h"

namespace zv {

enum class ImageFormat { kUnknown, kPng, kJpeg, kWebp, kGif };

struct ImageHeader {
  ImageFormat format = ImageFormat::kUnknown;
  int width = 0;
  int height = 0;
};

class ImageDecoder {
 public:
  static ImageFormat sniff(std::string_view bytes);
  // The format and pixel size; nullopt for another format, a damaged header or a size over the
  // pixel budget.
  static std::optional<ImageHeader> readHeader(std::string_view bytes);
  // The pixels; nullptr when they cannot be decoded.
  static std::shared_ptr<const PixelBuffer> decode(const std::shared_ptr<const std::string>& bytes);

  static std::optional<ImageHeader> pngHeader(std::string_view bytes);
  static std::shared_ptr<const PixelBuffer> decodePng(std::string_view bytes);
  static std::optional<ImageHeader> jpegHeader(std::string_view bytes);
  static std::shared_ptr<const PixelBuffer> decodeJpeg(std::string_view bytes);
  static std::optional<ImageHeader> webpHeader(std::string_view bytes);
  static std::shared_ptr<const PixelBuffer> decodeWebp(std::string_view bytes);
};

}  // namespace zv
