// zv::ImageDecoder reads still images from bytes: the format from the first bytes, the size from
// the header alone, and the pixels (premultiplied ARGB32, sRGB) only when asked. PNG (libpng),
// JPEG (libjpeg-turbo, whose errors come back here instead of ending the process), WebP (libwebp;
// the first frame of an animated one) and GIF (the first frame, composited).
//
// Photos come out as they are meant to be seen: turned upright by their EXIF orientation (the
// header's size is the upright one), their embedded ICC profile (or a PNG's gAMA and cHRM)
// converted to sRGB, CMYK and YCCK JPEGs converted to RGB, 16-bit PNGs rounded to 8 bits.
//
// Pixels are decoded at the size they are drawn: a JPEG by libjpeg's DCT scaling to the smallest
// eighth at least that size, then both formats shrunk row by row as they decode (Resampler), so
// a 48-megapixel camera photo costs the pixels of its view. Limits: a file may claim at most
// kMaxSourcePixels (and 65,535 pixels a side); the decoded pixels never exceed the pixel budget
// (PixelBuffer::kMaxPixels), a larger request being shrunk to fit. An interlaced PNG and a
// progressive JPEG hold the whole image while they decode: over the budget (the JPEG's
// coefficients over kMaxJpegWorkBytes) they are refused. Damage after the first rows gives the
// rows decoded before it (a cut JPEG or PNG shows its top); anything else damaged or of another
// format gives nothing; no input crashes or exhausts the process.
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
  int width = 0;  // upright, after the EXIF orientation
  int height = 0;
  int orientation = 1;  // EXIF: 1 (as stored) to 8
};

// The pixel size an image is drawn at (upright); 0 by 0 for its own size.
struct DecodeSize {
  int width = 0;
  int height = 0;
};

class ImageDecoder {
 public:
  // 64 megapixels: an 8000 x 6000 camera photo with room to spare. Larger files are refused.
  static constexpr std::size_t kMaxSourcePixels = 64u * 1000 * 1000;
  static constexpr int kMaxSide = 65535;
  // What libjpeg may hold while it decodes: a progressive JPEG keeps every coefficient, 3 bytes a
  // pixel for a photo's usual 4:2:0 sampling, so up to about 26 megapixels (a 6000 x 4000 one).
  static constexpr long kMaxJpegWorkBytes = 80l << 20;

  static ImageFormat sniff(std::string_view bytes);
  // The format and upright pixel size; nullopt for another format, a damaged header or a size
  // over the limits.
  static std::optional<ImageHeader> readHeader(std::string_view bytes);
  // The pixels, upright, at least the size asked for where the image has that many (the aspect
  // ratio kept) and within the pixel budget; nullptr when they cannot be decoded.
  static std::shared_ptr<const PixelBuffer> decode(const std::shared_ptr<const std::string>& bytes,
                                                   DecodeSize size = {});
  // The size pixels of an image of the given upright size are decoded at for a request.
  static DecodeSize decodedSize(int width, int height, DecodeSize request);

  static std::optional<ImageHeader> pngHeader(std::string_view bytes);
  static std::shared_ptr<const PixelBuffer> decodePng(std::string_view bytes, DecodeSize size = {});
  static std::optional<ImageHeader> jpegHeader(std::string_view bytes);
  static std::shared_ptr<const PixelBuffer> decodeJpeg(std::string_view bytes,
                                                       DecodeSize size = {});
  static std::optional<ImageHeader> webpHeader(std::string_view bytes);
  static std::shared_ptr<const PixelBuffer> decodeWebp(std::string_view bytes);
};

}  // namespace zv
