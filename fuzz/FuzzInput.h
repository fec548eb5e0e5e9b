// The bytes libFuzzer hands a target, as text, and the folder a target may write to.
#pragma once

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

namespace zvfuzz {

inline std::string text(const std::uint8_t* data, std::size_t size) {
  return std::string(reinterpret_cast<const char*>(data), size);
}

// A folder of this process, made once and kept for the run.
inline const std::filesystem::path& scratch() {
  static const std::filesystem::path dir = [] {
    auto d = std::filesystem::temp_directory_path() / ("zv-fuzz-" + std::to_string(getpid()));
    std::filesystem::create_directories(d);
    return d;
  }();
  return dir;
}

// Stops the run with a message when a checked property fails.
#define ZV_FUZZ_CHECK(condition)                                                          \
  do {                                                                                    \
    if (!(condition)) {                                                                   \
      std::fprintf(stderr, "check failed: %s (%s:%d)\n", #condition, __FILE__, __LINE__); \
      std::abort();                                                                       \
    }                                                                                     \
  } while (0)

}  // namespace zvfuzz
