#include "platform/media/Ffmpeg.h"

#include <dlfcn.h>

#include <memory>
#include <string>
#include <vector>

namespace zv {

const Ffmpeg* Ffmpeg::load() {
  // Never destroyed: clips released during the process's exit still find it.
  static const Ffmpeg* const loaded = []() -> const Ffmpeg* {
    const std::string libraries[] = {"libavutil.so." + std::to_string(LIBAVUTIL_VERSION_MAJOR),
                                     "libswscale.so." + std::to_string(LIBSWSCALE_VERSION_MAJOR),
                                     "libavcodec.so." + std::to_string(LIBAVCODEC_VERSION_MAJOR),
                                     "libavformat.so." + std::to_string(LIBAVFORMAT_VERSION_MAJOR)};
    // Never closed: the functions are used for the life of the process.
    std::vector<void*> handles;
    for (const auto& library : libraries) {
      void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
      if (!handle) return nullptr;
      handles.push_back(handle);
    }
    auto find = [&](const char* name) -> void* {
      for (void* handle : handles) {
        if (void* symbol = dlsym(handle, name)) return symbol;
      }
      return nullptr;
    };
    auto functions = std::make_unique<Ffmpeg>();
#define ZV_FFMPEG_LOAD(name)                                                  \
  functions->name = reinterpret_cast<decltype(functions->name)>(find(#name)); \
  if (!functions->name) return nullptr;
    ZV_FFMPEG_FUNCTIONS(ZV_FFMPEG_LOAD)
#undef ZV_FFMPEG_LOAD
    return functions.release();
  }();
  return loaded;
}

}  // namespace zv
