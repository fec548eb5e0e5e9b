#include "platform/foundation/FileManager.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace zv {

namespace fs = std::filesystem;

namespace {

long codeForErrno(int err, bool writing) {
  switch (err) {
    case ENOENT:
    case ENOTDIR:
      return writing ? FileManager::kNoSuchFileError : FileManager::kReadNoSuchFileError;
    case EACCES:
    case EPERM:
      return FileManager::kWriteNoPermissionError;
    case EEXIST:
    case ENOTEMPTY:
    case EISDIR:
      return FileManager::kWriteFileExistsError;
    case ENOSPC:
    case EDQUOT:
      return FileManager::kWriteOutOfSpaceError;
    case EROFS:
      return FileManager::kWriteVolumeReadOnlyError;
    default:
      return FileManager::kWriteUnknownError;
  }
}

bool fail(Error* error, long code, std::string description) {
  if (error) *error = Error{Error::kFileDomain, code, std::move(description)};
  return false;
}

bool failErrno(Error* error, int err, bool writing, const std::string& what) {
  return fail(error, codeForErrno(err, writing), fmt::format("{}: {}", what, std::strerror(err)));
}

// A URL that can name a local item: a file URL, or a bare absolute path.
bool localPath(const Url& url, fs::path* out) {
  if (!url.isFileUrl() && !url.scheme().empty()) return false;
  *out = url.filePath();
  return out->is_absolute();
}

// Copies newItem next to original and renames the copy over it, so that original is never seen
// half-written; then removes newItem.
bool moveAcrossFileSystems(const fs::path& from, const fs::path& to, Error* error) {
  fs::path staging = to.parent_path() / fmt::format(".{}.zvmove-{}", to.filename().string(),
                                                    static_cast<long>(::getpid()));
  std::error_code ec;
  fs::remove_all(staging, ec);
  fs::copy(from, staging,
           fs::copy_options::recursive | fs::copy_options::copy_symlinks |
               fs::copy_options::overwrite_existing,
           ec);
  if (ec) {
    int err = ec.value();
    fs::remove_all(staging, ec);
    return failErrno(error, err, true,
                     fmt::format("Could not copy {} to {}", from.string(), to.string()));
  }
  // A directory replaces a directory: rename() only replaces an empty one.
  if (fs::is_directory(fs::symlink_status(from, ec)) &&
      fs::is_directory(fs::symlink_status(to, ec))) {
    fs::remove_all(to, ec);
  }
  if (::rename(staging.c_str(), to.c_str()) != 0) {
    int err = errno;
    fs::remove_all(staging, ec);
    return failErrno(error, err, true,
                     fmt::format("Could not move {} to {}", from.string(), to.string()));
  }
  fs::remove_all(from, ec);
  return true;
}

}  // namespace

FileManager& FileManager::defaultManager() {
  static FileManager manager(processTemporaryDirectory());
  return manager;
}

std::filesystem::path FileManager::processTemporaryDirectory() {
  const char* tmp = std::getenv("TMPDIR");
  return std::filesystem::path(tmp && *tmp ? tmp : "/tmp");
}

Url FileManager::temporaryDirectory() const { return Url::fileUrl(temporaryDirectory_); }

bool FileManager::createDirectoryAtURL(const Url& url, bool withIntermediateDirectories,
                                       Error* error) const {
  fs::path dir;
  if (!localPath(url, &dir)) {
    return fail(error, kWriteUnknownError,
                fmt::format("Could not create the directory {}: not a local file URL",
                            url.absoluteString()));
  }
  std::string what = fmt::format("Could not create the directory {}", dir.string());
  std::error_code ec;
  if (fs::is_directory(dir, ec)) return true;
  if (fs::exists(fs::symlink_status(dir, ec))) {
    return fail(error, kWriteFileExistsError, fmt::format("{}: a file of that name exists", what));
  }
  if (withIntermediateDirectories) {
    fs::create_directories(dir, ec);
  } else {
    fs::create_directory(dir, ec);
  }
  // Another process may have made it in the meantime: that is success too.
  if (ec && !fs::is_directory(dir)) return failErrno(error, ec.value(), true, what);
  return true;
}

bool FileManager::replaceItemAtURL(const Url& original, const Url& newItem, Error* error) const {
  fs::path to;
  fs::path from;
  if (!localPath(original, &to) || !localPath(newItem, &from)) {
    return fail(error, kWriteUnknownError,
                fmt::format("Could not replace {} with {}: not a local file URL",
                            original.absoluteString(), newItem.absoluteString()));
  }
  std::string what = fmt::format("Could not replace {} with {}", to.string(), from.string());
  std::error_code ec;
  if (!fs::exists(fs::symlink_status(from, ec))) {
    return fail(error, kReadNoSuchFileError, fmt::format("{}: the new item does not exist", what));
  }
  if (::rename(from.c_str(), to.c_str()) == 0) return true;
  int err = errno;
  if (err == EXDEV) return moveAcrossFileSystems(from, to, error);
  return failErrno(error, err, true, what);
}

}  // namespace zv
