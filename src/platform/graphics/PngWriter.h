// zv::PngWriter writes decoded pixels to a PNG file with Cairo (whose image format the pixels
// already have).
#pragma once

#include <filesystem>

#include "platform/graphics/PixelBuffer.h"

namespace zv {

class PngWriter {
 public:
  // False when the file cannot be written.
  static bool write(const PixelBuffer& pixels, const std::filesystem::path& file);
};

}  // namespace zv
