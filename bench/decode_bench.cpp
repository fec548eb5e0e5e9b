// JPEG decoding of a 1500 x 1000 photo made here by ImageMagick: sRGB (no profile) against the
// same pixels carrying a Display P3 profile (the corpus's), which are converted to sRGB. Goal:
// the conversion adds at most 15%. Both at the photo's own size and at the 750 x 500 pixels a
// 375-point media view draws at a scale of 2 (libjpeg's DCT scaling and the resampler).
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "platform/graphics/ImageDecoder.h"

namespace {

namespace fs = std::filesystem;

std::string readFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// The APP2 segment holding the ICC profile of a JPEG (its marker and length included).
std::string iccSegment(const std::string& jpeg) {
  std::size_t at = jpeg.find("ICC_PROFILE");
  if (at == std::string::npos || at < 4) return {};
  std::size_t start = at - 4;
  std::size_t length = (static_cast<unsigned char>(jpeg[start + 2]) << 8) |
                       static_cast<unsigned char>(jpeg[start + 3]);
  return jpeg.substr(start, length + 2);
}

struct Photos {
  std::shared_ptr<const std::string> srgb, p3;
  Photos() {
    fs::path dir = fs::temp_directory_path() / "zv-decode-bench";
    fs::create_directories(dir);
    fs::path file = dir / "photo.jpg";
    std::string command =
        "convert -size 300x200 plasma:steelblue-orange -resize 1500x1000! "
        "-attenuate 0.15 +noise Gaussian -quality 90 -strip '" +
        file.string() + "'";
    if (std::system(command.c_str()) != 0) std::abort();
    std::string plain = readFile(file);
    std::string segment =
        iccSegment(readFile(fs::path(ZV_SOURCE_DIR) / "tests/data/images/p3.jpg"));
    if (segment.empty()) std::abort();
    srgb = std::make_shared<const std::string>(plain);
    p3 = std::make_shared<const std::string>(plain.substr(0, 2) + segment + plain.substr(2));
    fs::remove_all(dir);
  }
};

const Photos& photos() {
  static Photos p;
  return p;
}

void decode(benchmark::State& state, bool p3, zv::DecodeSize size) {
  const auto& bytes = p3 ? photos().p3 : photos().srgb;
  for (auto _ : state) {
    auto pixels = zv::ImageDecoder::decode(bytes, size);
    if (!pixels) state.SkipWithError("not decoded");
    benchmark::DoNotOptimize(pixels);
  }
}

void BM_Srgb1500x1000(benchmark::State& s) { decode(s, false, {}); }
void BM_P3_1500x1000(benchmark::State& s) { decode(s, true, {}); }
void BM_SrgbAt750x500(benchmark::State& s) { decode(s, false, {750, 500}); }
void BM_P3At750x500(benchmark::State& s) { decode(s, true, {750, 500}); }
BENCHMARK(BM_Srgb1500x1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_P3_1500x1000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SrgbAt750x500)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_P3At750x500)->Unit(benchmark::kMillisecond);

}  // namespace
