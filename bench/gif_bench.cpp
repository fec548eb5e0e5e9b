// Decoding a 100-frame 480 x 270 GIF, every frame composited and its pixels touched, against
// giflib's own DGifSlurp of the same file plus the compositing it leaves to the caller (goal: at
// most 1.3 times giflib's time). The file is made by bench/gif_bench.sh (ZV_BENCH_GIF names it).
#include <benchmark/benchmark.h>
#include <gif_lib.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "platform/graphics/CGImageSource.h"

namespace {

std::shared_ptr<const std::string> gifBytes() {
  static auto bytes = [] {
    const char* path = std::getenv("ZV_BENCH_GIF");
    std::ifstream in(path ? path : "", std::ios::binary);
    return std::make_shared<const std::string>((std::istreambuf_iterator<char>(in)),
                                               std::istreambuf_iterator<char>());
  }();
  return bytes;
}

void BM_ZentrovaDecode(benchmark::State& state) {
  auto bytes = gifBytes();
  for (auto _ : state) {
    auto source = zv::CGImageSource::createWithData(bytes);
    if (!source) {
      state.SkipWithError("no GIF: run bench/gif_bench.sh");
      return;
    }
    for (size_t i = 0; i < source->count(); ++i) {
      auto pixels = source->createImageAtIndex(i)->pixels();
      benchmark::DoNotOptimize(pixels->data[pixels->data.size() / 2]);
    }
  }
}

struct Memory {
  const std::string* bytes;
  size_t pos = 0;
};

int readMemory(GifFileType* gif, GifByteType* out, int length) {
  auto* m = static_cast<Memory*>(gif->UserData);
  size_t n = std::min<size_t>(static_cast<size_t>(length), m->bytes->size() - m->pos);
  std::memcpy(out, m->bytes->data() + m->pos, n);
  m->pos += n;
  return static_cast<int>(n);
}

// giflib decodes the frames; compositing them on the screen (disposal, transparency) is the
// caller's work, done here as simply as it can be.
void BM_GiflibSlurpAndComposite(benchmark::State& state) {
  auto bytes = gifBytes();
  for (auto _ : state) {
    Memory memory{bytes.get()};
    int error = 0;
    GifFileType* gif = DGifOpen(&memory, readMemory, &error);
    if (!gif || DGifSlurp(gif) != GIF_OK) {
      state.SkipWithError("giflib cannot read the GIF");
      return;
    }
    const int w = gif->SWidth, h = gif->SHeight;
    std::vector<uint32_t> canvas(static_cast<size_t>(w) * h, 0), saved;
    for (int i = 0; i < gif->ImageCount; ++i) {
      const SavedImage& frame = gif->SavedImages[i];
      GraphicsControlBlock gcb{DISPOSAL_UNSPECIFIED, false, 0, NO_TRANSPARENT_COLOR};
      DGifSavedExtensionToGCB(gif, i, &gcb);
      const GifImageDesc& d = frame.ImageDesc;
      const ColorMapObject* map = d.ColorMap ? d.ColorMap : gif->SColorMap;
      if (gcb.DisposalMode == DISPOSE_PREVIOUS) saved = canvas;
      for (int y = 0; y < d.Height && d.Top + y < h; ++y) {
        for (int x = 0; x < d.Width && d.Left + x < w; ++x) {
          int index = frame.RasterBits[y * d.Width + x];
          if (index == gcb.TransparentColor || !map || index >= map->ColorCount) continue;
          const GifColorType& c = map->Colors[index];
          canvas[(d.Top + y) * w + d.Left + x] =
              0xFF000000u | (uint32_t(c.Red) << 16) | (uint32_t(c.Green) << 8) | c.Blue;
        }
      }
      benchmark::DoNotOptimize(canvas[canvas.size() / 2]);
      if (gcb.DisposalMode == DISPOSE_BACKGROUND) {
        for (int y = d.Top; y < d.Top + d.Height && y < h; ++y) {
          for (int x = d.Left; x < d.Left + d.Width && x < w; ++x) canvas[y * w + x] = 0;
        }
      } else if (gcb.DisposalMode == DISPOSE_PREVIOUS) {
        canvas.swap(saved);
      }
    }
    DGifCloseFile(gif, &error);
  }
}

BENCHMARK(BM_GiflibSlurpAndComposite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ZentrovaDecode)->Unit(benchmark::kMillisecond);

}  // namespace
