// A folder of one run under the temporary directory, removed with everything in it when the run
// ends. path is empty when it could not be made.
#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>

namespace zvpush {

struct ScratchFolder {
  std::filesystem::path path;

  explicit ScratchFolder(const std::string& prefix) {
    std::string pattern = (std::filesystem::temp_directory_path() / (prefix + "-XXXXXX")).string();
    if (mkdtemp(pattern.data())) path = pattern;
  }
  ~ScratchFolder() {
    std::error_code ec;
    if (!path.empty()) std::filesystem::remove_all(path, ec);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
};

}  // namespace zvpush
