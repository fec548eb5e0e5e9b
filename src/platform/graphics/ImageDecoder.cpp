#include "platform/graphics/ImageDecoder.h"

#include "platform/graphics/GifDecoder.h"
#include "platform/graphics/PixelBuffer.h"

namespace zv {

ImageFormat ImageDecoder::sniff(std::string_view b) {
  if (b.size() >= 8 && b.substr(0, 8) == "\x89PNG\r\n\x1a\n") return ImageFormat::kPng;
  if (b.size() >= 3 && b.substr(0, 3) == "\xFF\xD8\xFF") return ImageFormat::kJpeg;
  if (b.size() >= 12 && b.substr(0, 4) == "RIFF" && b.substr(8, 4) == "WEBP") {
    return ImageFormat::kWebp;
  }
  if (b.size() >= 6 && (b.substr(0, 6) == "GIF87a" || b.substr(0, 6) == "GIF89a")) {
    return ImageFormat::kGif;
  }
  return ImageFormat::kUnknown;
}

std::optional<ImageHeader> ImageDecoder::readHeader(std::string_view bytes) {
  std::optional<ImageHeader> header;
  switch (sniff(bytes)) {
    case ImageFormat::kPng:
      header = pngHeader(bytes);
      break;
    case ImageFormat::kJpeg:
      header = jpegHeader(bytes);
      break;
    case ImageFormat::kWebp:
      header = webpHeader(bytes);
      break;
    case ImageFormat::kGif: {
      // The screen after the first frame's own rules; a GIF without a whole frame shows nothing.
      auto gif = GifDecoder::openView(bytes, 1);
      if (gif && !gif->frames().empty())
        header = ImageHeader{ImageFormat::kGif, gif->width(), gif->height()};
      break;
    }
    case ImageFormat::kUnknown:
      break;
  }
  if (header && !PixelBuffer::withinBudget(static_cast<std::size_t>(header->width),
                                           static_cast<std::size_t>(header->height))) {
    return std::nullopt;
  }
  return header;
}

std::shared_ptr<const PixelBuffer> ImageDecoder::decode(
    const std::shared_ptr<const std::string>& bytes) {
  if (!bytes || !readHeader(*bytes)) return nullptr;
  switch (sniff(*bytes)) {
    case ImageFormat::kPng:
      return decodePng(*bytes);
    case ImageFormat::kJpeg:
      return decodeJpeg(*bytes);
    case ImageFormat::kWebp:
      return decodeWebp(*bytes);
    case ImageFormat::kGif: {
      auto gif = GifDecoder::open(bytes, 1);
      return gif ? gif->composite(0) : nullptr;
    }
    case ImageFormat::kUnknown:
      break;
  }
  return nullptr;
}

}  // namespace zv
