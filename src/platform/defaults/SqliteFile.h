// SqliteFile opens the SQLite database file of one suite, ready for SqliteStore: it makes the
// folder, checks that an existing file is a sound database of ours before writing anything to it,
// and configures the connection (write-ahead log, busy timeout, the table of values).
//
// A file that is not a database, is corrupt, or holds another program's tables is moved aside
// (renamed with a ".damaged-<time>-<pid>" suffix and kept exactly as found, its write-ahead log
// with it), the system log says so, and a new empty file takes its place. Two processes finding
// the same damaged file do not both move it: the move happens under a lock on the folder, after a
// second look.
#pragma once

#include <sys/types.h>

#include <filesystem>
#include <optional>
#include <string>

struct sqlite3;

namespace zv {

class SqliteFile {
 public:
  struct Opened {
    sqlite3* db;  // the caller closes it
    dev_t device;
    ino_t inode;
  };

  // How long a write waits for another process's transaction before giving up. Transactions last
  // milliseconds; an extension that waited much longer would miss its delivery deadline.
  static constexpr int kBusyTimeoutMs = 5000;

  // nullopt when the folder cannot be written or the file cannot be opened; *reason says why.
  static std::optional<Opened> open(const std::filesystem::path& path, std::string* reason);

  // Whether a result code says the file is damaged (not a database, or a corrupt one).
  static bool isDamage(int rc);

 private:
  // One attempt. *damaged tells a damaged file from one that cannot be opened at all.
  static std::optional<Opened> tryOpen(const std::filesystem::path& path, std::string* reason,
                                       bool* damaged);
  static bool moveAside(const std::filesystem::path& path, const std::string& why,
                        std::string* reason);
};

}  // namespace zv
