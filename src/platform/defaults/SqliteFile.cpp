#include "platform/defaults/SqliteFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>

#include "platform/foundation/Log.h"
#include "platform/foundation/UniqueHandle.h"

namespace zv {

namespace {

// An exclusive lock on a folder, released when the object goes.
class FolderLock {
 public:
  explicit FolderLock(const std::filesystem::path& dir)
      : fd_(::open(dir.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    if (fd_ >= 0) ::flock(fd_, LOCK_EX);
  }
  ~FolderLock() {
    if (fd_ >= 0) ::close(fd_);  // closing releases the lock
  }
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  int fd_;
};

using Statement = UniqueHandle<sqlite3_stmt, sqlite3_finalize>;

// Runs one statement and reads the first column of its first row as text ("" when none).
int queryText(sqlite3* db, const char* sql, std::string* out) {
  sqlite3_stmt* raw = nullptr;
  int rc = sqlite3_prepare_v2(db, sql, -1, &raw, nullptr);
  Statement s(raw);
  if (rc != SQLITE_OK) return rc;
  out->clear();
  rc = sqlite3_step(s.get());
  if (rc == SQLITE_ROW) {
    if (const unsigned char* t = sqlite3_column_text(s.get(), 0)) {
      out->assign(reinterpret_cast<const char*>(t));
    }
    while (rc == SQLITE_ROW) rc = sqlite3_step(s.get());
  }
  return rc == SQLITE_DONE ? SQLITE_OK : rc;
}

}  // namespace

bool SqliteFile::isDamage(int rc) {
  int primary = rc & 0xff;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

std::optional<SqliteFile::Opened> SqliteFile::open(const std::filesystem::path& path,
                                                   std::string* reason) {
  std::error_code ec;
  std::filesystem::path dir = path.parent_path();
  std::filesystem::create_directories(dir, ec);
  std::error_code ec2;
  if (!std::filesystem::is_directory(dir, ec2)) {
    *reason =
        fmt::format("the folder {} cannot be made: {}", dir.string(), (ec ? ec : ec2).message());
    return std::nullopt;
  }
  bool damaged = false;
  auto opened = tryOpen(path, reason, &damaged);
  if (opened || !damaged) return opened;
  // Look again under the folder lock: another process may have replaced the file meanwhile.
  FolderLock lock(dir);
  opened = tryOpen(path, reason, &damaged);
  if (opened || !damaged) return opened;
  if (!moveAside(path, *reason, reason)) return std::nullopt;
  return tryOpen(path, reason, &damaged);
}

std::optional<SqliteFile::Opened> SqliteFile::tryOpen(const std::filesystem::path& path,
                                                      std::string* reason, bool* damaged) {
  *damaged = false;
  sqlite3* db = nullptr;  // owned by owner until it is handed out
  // Symbolic links are refused: the store never follows a link out of its folder.
  int flags =
      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW;
  int rc = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
  UniqueHandle<sqlite3, sqlite3_close_v2> owner(db);
  auto failed = [&](std::string why, bool isDamaged) -> std::optional<Opened> {
    *reason = std::move(why);
    *damaged = isDamaged;
    return std::nullopt;
  };
  auto failedWith = [&](int code, std::string_view what) {
    return failed(fmt::format("{}: {}", what, db ? sqlite3_errmsg(db) : sqlite3_errstr(code)),
                  isDamage(code));
  };
  if (rc != SQLITE_OK) return failedWith(rc, "cannot open");
  sqlite3_busy_timeout(db, kBusyTimeoutMs);

  // Everything is checked before anything is written, so that a file moved aside is kept exactly
  // as it was found.
  std::string text;
  if ((rc = queryText(db, "PRAGMA quick_check(1)", &text)) != SQLITE_OK) {
    return failedWith(rc, "cannot read");
  }
  if (text != "ok") return failed(fmt::format("integrity check failed: {}", text), true);
  // A database with tables but not ours, or ours with other columns, belongs to another program.
  rc = queryText(db,
                 "SELECT CASE WHEN count(*) = 0 THEN 'empty' WHEN sum(name = 'zv_defaults') = 1 "
                 "THEN 'ours' ELSE 'foreign' END FROM sqlite_schema WHERE type = 'table'",
                 &text);
  if (rc != SQLITE_OK) return failedWith(rc, "cannot read");
  std::string none;
  if (text == "foreign" ||
      (text == "ours" &&
       queryText(db, "SELECT key, value, version FROM zv_defaults LIMIT 0", &none) != SQLITE_OK)) {
    return failed("the file holds another program's tables", true);
  }

  if ((rc = queryText(db, "PRAGMA journal_mode=WAL", &text)) != SQLITE_OK) {
    return failedWith(rc, "cannot read");
  }
  if (text != "wal") {
    return failed("cannot keep a write-ahead log next to the file (is the folder writable?)",
                  false);
  }
  // In WAL mode NORMAL keeps every commit across a crash of the process; only a power failure may
  // lose the last commits. FULL would add a disk flush to every write.
  if ((rc = queryText(db, "PRAGMA synchronous=NORMAL", &text)) != SQLITE_OK) {
    return failedWith(rc, "cannot configure");
  }
  // version changes on every write of a row (a random number), so that a process can tell which
  // of its cached values another process has changed.
  rc = queryText(db,
                 "CREATE TABLE IF NOT EXISTS zv_defaults(key TEXT PRIMARY KEY NOT NULL, "
                 "value TEXT NOT NULL, version INTEGER NOT NULL)",
                 &text);
  if (rc != SQLITE_OK) return failedWith(rc, "cannot create the table");
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) return failedWith(SQLITE_CANTOPEN, "cannot find the file");
  return Opened{owner.release(), st.st_dev, st.st_ino};
}

bool SqliteFile::moveAside(const std::filesystem::path& path, const std::string& why,
                           std::string* reason) {
  std::filesystem::path target = path;
  target += fmt::format(".damaged-{}-{}", static_cast<long long>(std::time(nullptr)), ::getpid());
  std::error_code ec;
  std::filesystem::rename(path, target, ec);
  if (ec) {
    *reason = fmt::format("{}; moving it aside failed: {}", why, ec.message());
    return false;
  }
  // The write-ahead log belongs to the damaged file: it goes with it, or the new file might replay
  // it. The shared-memory index is only a cache of the log.
  std::filesystem::path wal = path.string() + "-wal";
  if (std::filesystem::exists(wal, ec)) std::filesystem::rename(wal, target.string() + "-wal", ec);
  std::filesystem::remove(path.string() + "-shm", ec);
  log::system(fmt::format(
      "Zentrova store {}: the file is not a usable database ({}); it was moved aside to {} and "
      "the store starts empty",
      path.string(), why, target.string()));
  return true;
}

}  // namespace zv
