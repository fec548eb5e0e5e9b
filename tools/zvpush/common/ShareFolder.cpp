#include "common/ShareFolder.h"

#include <algorithm>

namespace zvpush {

namespace fs = std::filesystem;

namespace {

fs::path program() {
  std::error_code ec;
  return fs::read_symlink("/proc/self/exe", ec);
}

}  // namespace

fs::path installedShareFolder() {
  return (program().parent_path().parent_path() / "share" / "zentrova").lexically_normal();
}

std::optional<fs::path> shareFolder() {
  std::error_code ec;
  if (fs::path installed = installedShareFolder(); fs::is_directory(installed, ec)) {
    return installed;
  }
  // A program of the build tree (ZVPUSH_BUILD_DIR is that tree) uses the tree's own.
  const fs::path build(ZVPUSH_BUILD_DIR), self = program();
  auto [b, p] = std::mismatch(build.begin(), build.end(), self.begin(), self.end());
  if (b == build.end() && fs::is_directory(build / "share" / "zentrova", ec)) {
    return build / "share" / "zentrova";
  }
  return std::nullopt;
}

}  // namespace zvpush
