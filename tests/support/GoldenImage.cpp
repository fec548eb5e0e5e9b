#include "support/GoldenImage.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/graphics/ImageDecoder.h"
#include "platform/graphics/PixelBuffer.h"
#include "platform/graphics/PngWriter.h"
#include "support/TestSupport.h"

namespace zvtest {

void expectMatchesGolden(const zv::PixelBuffer& picture, const std::string& name) {
  namespace fs = std::filesystem;
  constexpr int kTolerance = 8, kPixelsAllowed = 40;
  const fs::path goldens = fs::path(ZV_SOURCE_DIR) / "tests/data/goldens";
  const fs::path golden = goldens / (name + ".png");
  if (std::getenv("ZV_UPDATE_GOLDENS")) zv::PngWriter::write(picture, golden);
  auto expected =
      fs::exists(golden)
          ? zv::ImageDecoder::decode(std::make_shared<const std::string>(readFile(golden)))
          : nullptr;
  int differing = 0;
  bool same = expected && expected->width == picture.width && expected->height == picture.height;
  for (size_t i = 0; same && i < picture.data.size(); ++i) {
    for (int shift = 0; shift < 32; shift += 8) {
      int a = (picture.data[i] >> shift) & 0xFF, b = (expected->data[i] >> shift) & 0xFF;
      if (std::abs(a - b) > kTolerance) {
        ++differing;
        break;
      }
    }
  }
  if (same && differing <= kPixelsAllowed) return;
  fs::path actual = goldens / (name + ".actual.png");
  zv::PngWriter::write(picture, actual);
  ADD_FAILURE() << name << ": " << (expected ? "" : "no golden; ") << differing
                << " pixels differ; the picture drawn is " << actual;
}

}  // namespace zvtest
