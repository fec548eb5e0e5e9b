// zv::ImageOrientation reads a photo's EXIF orientation (1 to 8: how the stored pixels turn and
// mirror to stand upright, as a camera records it) and applies it to decoded pixels. Orientations
// 5 to 8 swap width and height. EXIF is read with libexif; a missing, damaged or out-of-range tag
// reads as 1 (upright as stored).
#pragma once

#include <cstddef>
#include <memory>

#include "platform/graphics/PixelBuffer.h"

namespace zv {

struct ImageOrientation {
  // The orientation in an EXIF block: "Exif\0\0" and a TIFF structure (a JPEG's APP1 segment), or
  // the TIFF structure alone (a PNG's eXIf chunk).
  static int fromExif(const unsigned char* data, std::size_t size);
  static bool swapsAxes(int orientation) { return orientation >= 5 && orientation <= 8; }
  // The pixels turned upright; the same buffer for orientation 1, nullptr when out of memory.
  static std::shared_ptr<PixelBuffer> apply(std::shared_ptr<PixelBuffer> pixels, int orientation);
};

}  // namespace zv
