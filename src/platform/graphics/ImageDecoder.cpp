#include "platform/graphics/ImageDecoder.h"

#include <algorithm>
#include <cmath>

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
  if (!header || header->width <= 0 || header->height <= 0 || header->width > kMaxSide ||
      header->height > kMaxSide) {
    return std::nullopt;
  }
  auto pixels = static_cast<std::size_t>(header->width) * static_cast<std::size_t>(header->height);
  // JPEG and PNG decode shrunk as they go; the other formats decode whole.
  bool shrinks = header->format == ImageFormat::kJpeg || header->format == ImageFormat::kPng;
  if (pixels > (shrinks ? kMaxSourcePixels : PixelBuffer::kMaxPixels)) return std::nullopt;
  return header;
}

DecodeSize ImageDecoder::decodedSize(int width, int height, DecodeSize request) {
  if (width <= 0 || height <= 0) return {};
  // Enough to cover the request on both axes, no more than the image has.
  double scale = 1;
  if (request.width > 0 && request.height > 0) {
    scale = std::min(1.0, std::max(static_cast<double>(request.width) / width,
                                   static_cast<double>(request.height) / height));
  }
  double pixels = scale * scale * width * height;
  if (pixels > PixelBuffer::kMaxPixels) scale *= std::sqrt(PixelBuffer::kMaxPixels / pixels);
  auto side = [&](int n) {
    return std::clamp(static_cast<int>(std::floor(n * scale + 0.5)), 1, n);
  };
  DecodeSize out{side(width), side(height)};
  while (!PixelBuffer::withinBudget(out.width, out.height)) {  // rounding up went over
    out.width = std::max(1, out.width - 1);
    out.height = std::max(1, out.height - 1);
  }
  return out;
}

std::shared_ptr<const PixelBuffer> ImageDecoder::decode(
    const std::shared_ptr<const std::string>& bytes, DecodeSize size) {
  if (!bytes || !readHeader(*bytes)) return nullptr;
  switch (sniff(*bytes)) {
    case ImageFormat::kPng:
      return decodePng(*bytes, size);
    case ImageFormat::kJpeg:
      return decodeJpeg(*bytes, size);
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
