#include "platform/defaults/SqliteStore.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <ctime>

#include "platform/defaults/ExactJson.h"
#include "platform/foundation/Exception.h"
#include "platform/foundation/Log.h"

namespace zv {

namespace {

// How long a write waits for another process's transaction before giving up. Transactions here
// last milliseconds; an extension that waited much longer would miss its delivery deadline.
constexpr int kBusyTimeoutMs = 5000;
// Parsed values kept per store, counted in bytes of JSON text. A suite holds configuration and a
// few short lists, so this holds all of it in practice while bounding what a huge value can cost.
constexpr size_t kCacheLimitBytes = 4 * 1024 * 1024;

bool isDamage(int rc) {
  int primary = rc & 0xff;
  return primary == SQLITE_CORRUPT || primary == SQLITE_NOTADB;
}

// Holds an exclusive lock on a folder while a damaged file in it is moved aside, so that two
// processes finding the same damaged file do not both rename (the second would move aside the
// fresh file the first one made).
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

// Runs one statement and reads the first column of its first row as text ("" when none).
int queryText(sqlite3* db, const char* sql, std::string* out) {
  sqlite3_stmt* s = nullptr;
  int rc = sqlite3_prepare_v2(db, sql, -1, &s, nullptr);
  if (rc != SQLITE_OK) return rc;
  out->clear();
  rc = sqlite3_step(s);
  if (rc == SQLITE_ROW) {
    if (const unsigned char* t = sqlite3_column_text(s, 0))
      out->assign(reinterpret_cast<const char*>(t));
    while (rc == SQLITE_ROW) rc = sqlite3_step(s);
  }
  sqlite3_finalize(s);
  return rc == SQLITE_DONE ? SQLITE_OK : rc;
}

bool moveAside(const std::filesystem::path& path, const std::string& why, std::string* reason) {
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

// Resets a statement after use, whatever path the caller leaves by.
struct ResetOnExit {
  sqlite3_stmt* statement;
  ~ResetOnExit() {
    sqlite3_reset(statement);
    sqlite3_clear_bindings(statement);
  }
};

void bindText(sqlite3_stmt* s, int index, std::string_view text) {
  sqlite3_bind_text64(s, index, text.data(), text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

}  // namespace

void SqliteStore::StatementDeleter::operator()(sqlite3_stmt* s) const { sqlite3_finalize(s); }

SqliteStore::SqliteStore(std::filesystem::path path, sqlite3* db, dev_t device, ino_t inode)
    : path_(std::move(path)), db_(db), device_(device), inode_(inode) {}

SqliteStore::~SqliteStore() {
  if (db_ == nullptr) return;
  for (Statement* s :
       {&get_, &upsert_, &delete_, &all_, &dataVersion_, &begin_, &commit_, &rollback_}) {
    s->reset();
  }
  sqlite3_close_v2(db_);
}

std::shared_ptr<SqliteStore> SqliteStore::open(const std::filesystem::path& path,
                                               std::string* reason) {
  std::error_code ec;
  std::filesystem::path dir = path.parent_path();
  std::filesystem::create_directories(dir, ec);
  std::error_code ec2;
  if (!std::filesystem::is_directory(dir, ec2)) {
    *reason =
        fmt::format("the folder {} cannot be made: {}", dir.string(), (ec ? ec : ec2).message());
    return nullptr;
  }
  bool damaged = false;
  auto store = tryOpen(path, reason, &damaged);
  if (store || !damaged) return store;
  // Look again under the folder lock: another process may have replaced the file meanwhile.
  FolderLock lock(dir);
  store = tryOpen(path, reason, &damaged);
  if (store || !damaged) return store;
  if (!moveAside(path, *reason, reason)) return nullptr;
  return tryOpen(path, reason, &damaged);
}

std::shared_ptr<SqliteStore> SqliteStore::tryOpen(const std::filesystem::path& path,
                                                  std::string* reason, bool* damaged) {
  *damaged = false;
  sqlite3* db = nullptr;
  // Symbolic links are refused: the store never follows a link out of its folder.
  int flags =
      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_NOFOLLOW;
  int rc = sqlite3_open_v2(path.c_str(), &db, flags, nullptr);
  auto failed = [&](int code, std::string_view what) -> std::shared_ptr<SqliteStore> {
    *reason = fmt::format("{}: {}", what, db ? sqlite3_errmsg(db) : sqlite3_errstr(code));
    *damaged = isDamage(code);
    sqlite3_close_v2(db);
    return nullptr;
  };
  if (rc != SQLITE_OK) return failed(rc, "cannot open");
  sqlite3_busy_timeout(db, kBusyTimeoutMs);

  // Everything is checked before anything is written, so that a file moved aside is kept exactly
  // as it was found.
  std::string text;
  if ((rc = queryText(db, "PRAGMA quick_check(1)", &text)) != SQLITE_OK) {
    return failed(rc, "cannot read");
  }
  if (text != "ok") {
    *reason = fmt::format("integrity check failed: {}", text);
    *damaged = true;
    sqlite3_close_v2(db);
    return nullptr;
  }
  // A database with tables but not ours, or ours with other columns, belongs to another program.
  rc = queryText(db,
                 "SELECT CASE WHEN count(*) = 0 THEN 'empty' WHEN sum(name = 'zv_defaults') = 1 "
                 "THEN 'ours' ELSE 'foreign' END FROM sqlite_schema WHERE type = 'table'",
                 &text);
  if (rc != SQLITE_OK) return failed(rc, "cannot read");
  std::string columns;
  if (text == "foreign" ||
      (text == "ours" &&
       queryText(db, "SELECT key, value FROM zv_defaults LIMIT 0", &columns) != SQLITE_OK)) {
    *reason = "the file holds another program's tables";
    *damaged = true;
    sqlite3_close_v2(db);
    return nullptr;
  }

  if ((rc = queryText(db, "PRAGMA journal_mode=WAL", &text)) != SQLITE_OK) {
    return failed(rc, "cannot read");
  }
  if (text != "wal") {
    *reason = "cannot keep a write-ahead log next to the file (is the folder writable?)";
    sqlite3_close_v2(db);
    return nullptr;
  }
  // In WAL mode NORMAL keeps every commit across a crash of the process; only a power failure may
  // lose the last commits. FULL would add a disk flush to every write.
  if ((rc = queryText(db, "PRAGMA synchronous=NORMAL", &text)) != SQLITE_OK) {
    return failed(rc, "cannot configure");
  }
  rc = queryText(db,
                 "CREATE TABLE IF NOT EXISTS zv_defaults("
                 "key TEXT PRIMARY KEY NOT NULL, value TEXT NOT NULL)",
                 &text);
  if (rc != SQLITE_OK) return failed(rc, "cannot create the table");
  struct stat st {};
  if (::stat(path.c_str(), &st) != 0) return failed(SQLITE_CANTOPEN, "cannot find the file");

  std::shared_ptr<SqliteStore> store(new SqliteStore(path, db, st.st_dev, st.st_ino));
  return store->prepare(reason) ? store : nullptr;
}

bool SqliteStore::prepare(std::string* reason) {
  struct Entry {
    Statement* statement;
    const char* sql;
  };
  const Entry entries[] = {
      {&get_, "SELECT value FROM zv_defaults WHERE key = ?1"},
      {&upsert_,
       "INSERT INTO zv_defaults(key, value) VALUES(?1, ?2) "
       "ON CONFLICT(key) DO UPDATE SET value = excluded.value"},
      {&delete_, "DELETE FROM zv_defaults WHERE key = ?1"},
      {&all_, "SELECT key, value FROM zv_defaults ORDER BY rowid"},
      {&dataVersion_, "PRAGMA data_version"},
      {&begin_, "BEGIN IMMEDIATE"},
      {&commit_, "COMMIT"},
      {&rollback_, "ROLLBACK"},
  };
  for (const Entry& e : entries) {
    sqlite3_stmt* s = nullptr;
    if (sqlite3_prepare_v3(db_, e.sql, -1, SQLITE_PREPARE_PERSISTENT, &s, nullptr) != SQLITE_OK) {
      *reason = fmt::format("cannot prepare: {}", sqlite3_errmsg(db_));
      return false;
    }
    e.statement->reset(s);
  }
  return true;
}

bool SqliteStore::usable() const {
  std::lock_guard lock(mutex_);
  if (broken_ || db_ == nullptr) return false;
  struct stat st {};
  return ::stat(path_.c_str(), &st) == 0 && st.st_dev == device_ && st.st_ino == inode_;
}

void SqliteStore::abandon() {
  std::lock_guard lock(mutex_);
  for (Statement* s :
       {&get_, &upsert_, &delete_, &all_, &dataVersion_, &begin_, &commit_, &rollback_}) {
    (void)s->release();
  }
  db_ = nullptr;
  broken_ = true;
  cache_.clear();
}

void SqliteStore::fail(int rc, std::string_view what) {
  if (isDamage(rc)) broken_ = true;
  if (depth_ > 0) transactionFailed_ = true;
  log::system(fmt::format("Zentrova store {}: could not {}: {}", path_.string(), what,
                          db_ ? sqlite3_errmsg(db_) : sqlite3_errstr(rc)));
}

void SqliteStore::refreshCache() {
  ResetOnExit reset{dataVersion_.get()};
  long long version = -1;
  if (sqlite3_step(dataVersion_.get()) == SQLITE_ROW) {
    version = sqlite3_column_int64(dataVersion_.get(), 0);
  }
  if (version == -1 || version != cacheVersion_) {
    cache_.clear();
    cacheBytes_ = 0;
    cacheVersion_ = version;
  }
}

void SqliteStore::remember(std::string_view key, const Value& value, size_t bytes) {
  auto it = cache_.find(key);
  if (it != cache_.end()) {
    cacheBytes_ -= it->second.bytes;
    cache_.erase(it);
  }
  if (cacheVersion_ == -1 || bytes > kCacheLimitBytes) return;
  if (cacheBytes_ + bytes > kCacheLimitBytes) {
    cache_.clear();
    cacheBytes_ = 0;
  }
  cache_.emplace(std::string(key), Cached{value, bytes});
  cacheBytes_ += bytes;
}

Value SqliteStore::get(std::string_view key) {
  std::lock_guard lock(mutex_);
  if (broken_) return {};
  refreshCache();
  if (auto it = cache_.find(key); it != cache_.end()) return it->second.value;
  sqlite3_stmt* s = get_.get();
  ResetOnExit reset{s};
  bindText(s, 1, key);
  int rc = sqlite3_step(s);
  if (rc == SQLITE_DONE) {
    remember(key, {}, 0);
    return {};
  }
  if (rc != SQLITE_ROW) {
    fail(rc, "read");
    return {};
  }
  std::string_view text(static_cast<const char*>(sqlite3_column_blob(s, 0)),
                        static_cast<size_t>(sqlite3_column_bytes(s, 0)));
  Value value;
  try {
    value = Value(ExactJson::parse(text));
  } catch (const Exception& e) {
    log::system(
        fmt::format("Zentrova store {}: the value under \"{}\" is not JSON ({}); read as nil",
                    path_.string(), key, e.reason()));
    return {};
  }
  remember(key, value, text.size());
  return value;
}

bool SqliteStore::set(std::string_view key, const Value& value) {
  if (value.isNil()) return remove(key);
  std::lock_guard lock(mutex_);
  if (broken_) return false;
  std::string text = ExactJson::serialize(value.json());
  sqlite3_stmt* s = upsert_.get();
  ResetOnExit reset{s};
  bindText(s, 1, key);
  bindText(s, 2, text);
  int rc = sqlite3_step(s);
  if (rc != SQLITE_DONE) {
    fail(rc, "write");
    return false;
  }
  remember(key, value, text.size());
  return true;
}

bool SqliteStore::remove(std::string_view key) {
  std::lock_guard lock(mutex_);
  if (broken_) return false;
  sqlite3_stmt* s = delete_.get();
  ResetOnExit reset{s};
  bindText(s, 1, key);
  int rc = sqlite3_step(s);
  if (rc != SQLITE_DONE) {
    fail(rc, "remove a value");
    return false;
  }
  remember(key, {}, 0);
  return true;
}

boost::json::object SqliteStore::all() {
  std::lock_guard lock(mutex_);
  boost::json::object out;
  if (broken_) return out;
  sqlite3_stmt* s = all_.get();
  ResetOnExit reset{s};
  int rc;
  while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
    std::string_view key(static_cast<const char*>(sqlite3_column_blob(s, 0)),
                         static_cast<size_t>(sqlite3_column_bytes(s, 0)));
    std::string_view text(static_cast<const char*>(sqlite3_column_blob(s, 1)),
                          static_cast<size_t>(sqlite3_column_bytes(s, 1)));
    try {
      out[key] = ExactJson::parse(text);
    } catch (const Exception& e) {
      log::system(fmt::format("Zentrova store {}: the value under \"{}\" is not JSON ({}); skipped",
                              path_.string(), key, e.reason()));
    }
  }
  if (rc != SQLITE_DONE) fail(rc, "read");
  return out;
}

bool SqliteStore::runSimple(sqlite3_stmt* statement) {
  int rc = sqlite3_step(statement);
  sqlite3_reset(statement);
  return rc == SQLITE_DONE;
}

bool SqliteStore::transaction(const std::function<void()>& body) {
  std::lock_guard lock(mutex_);
  if (depth_ > 0) {
    body();
    return !transactionFailed_;
  }
  if (broken_) return false;
  int rc = sqlite3_step(begin_.get());
  sqlite3_reset(begin_.get());
  if (rc != SQLITE_DONE) {
    fail(rc, "start a write");
    return false;
  }
  auto rollback = [this] {
    runSimple(rollback_.get());
    cache_.clear();
    cacheBytes_ = 0;
    cacheVersion_ = -1;
  };
  depth_ = 1;
  transactionFailed_ = false;
  try {
    body();
  } catch (...) {
    depth_ = 0;
    rollback();
    throw;
  }
  depth_ = 0;
  if (transactionFailed_) {
    rollback();
    return false;
  }
  rc = sqlite3_step(commit_.get());
  sqlite3_reset(commit_.get());
  if (rc != SQLITE_DONE) {
    fail(rc, "commit");
    rollback();
    return false;
  }
  return true;
}

}  // namespace zv
