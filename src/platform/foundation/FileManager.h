// zv::FileManager holds the file operations that the service extension needs to keep a downloaded
// media file: its temporary directory (given when it is made), creating a directory, and replacing
// an item by moving a new one over it. Failures are reported as zv::Error values (domain
// Error::kFileDomain) whose description names the operation, the path and the system's reason;
// nothing raises.
#pragma once

#include <filesystem>

#include "zentrova/Error.h"
#include "zentrova/Url.h"

namespace zv {

class FileManager {
 public:
  // Error codes, the same numbers as the phone's file errors.
  static constexpr long kNoSuchFileError = 4;
  static constexpr long kReadNoSuchFileError = 260;
  static constexpr long kWriteUnknownError = 512;
  static constexpr long kWriteNoPermissionError = 513;
  static constexpr long kWriteFileExistsError = 516;
  static constexpr long kWriteOutOfSpaceError = 640;
  static constexpr long kWriteVolumeReadOnlyError = 642;

  // The process's file manager, whose temporary directory is processTemporaryDirectory().
  static FileManager& defaultManager();
  // $TMPDIR, else /tmp.
  static std::filesystem::path processTemporaryDirectory();

  explicit FileManager(std::filesystem::path temporaryDirectory)
      : temporaryDirectory_(std::move(temporaryDirectory)) {}

  // The file URL of this manager's temporary directory.
  Url temporaryDirectory() const;

  // Creates the directory at a file URL, with its missing parents when withIntermediateDirectories
  // is true. Design note: a directory that already exists is success either way; a file of another
  // kind in its place is kWriteFileExistsError.
  bool createDirectoryAtURL(const Url& url, bool withIntermediateDirectories, Error* error) const;

  // Moves the item at newItem to original, replacing what is there (a missing original is fine);
  // the result keeps the new item's contents and metadata, and newItem is gone afterwards. Within
  // one file system this is a rename; across file systems the new item is copied next to the
  // original, renamed over it, and then removed.
  bool replaceItemAtURL(const Url& original, const Url& newItem, Error* error) const;

 private:
  std::filesystem::path temporaryDirectory_;
};

}  // namespace zv
