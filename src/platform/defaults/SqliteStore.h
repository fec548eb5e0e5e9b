// SqliteStore is one open SQLite database file holding one key-value suite: a table of top-level
// keys, each with its value as JSON text. Several processes may have the same file open at once;
// the database runs in WAL mode with a busy timeout, and every write is committed before it
// returns. A write transaction (BEGIN IMMEDIATE) makes a read-modify-write atomic across processes.
//
// Reads are served from a small cache of parsed values that is dropped whenever another connection
// has committed (PRAGMA data_version), so a value read or written in this process is not parsed
// again until someone else changes the file.
//
// Failures never raise: they go to the system log, reads then give nil and writes report false.
// A file that turns out to be damaged while in use marks the store broken; the next open moves it
// aside. All members are thread-safe (one recursive lock per store).
#pragma once

#include <sys/types.h>

#include <boost/json/object.hpp>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/foundation/Value.h"

struct sqlite3;
struct sqlite3_stmt;

namespace zv {

class SqliteStore {
 public:
  // Opens the database at path, creating the file and its folder when needed. A file that is not a
  // database, is corrupt or holds another program's tables is moved aside (renamed, kept) with a
  // message to the system log, and an empty store takes its place. nullptr when the folder cannot
  // be written or the file cannot be opened; *reason then says why.
  static std::shared_ptr<SqliteStore> open(const std::filesystem::path& path, std::string* reason);

  ~SqliteStore();
  SqliteStore(const SqliteStore&) = delete;
  SqliteStore& operator=(const SqliteStore&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // False once the file at path is no longer the one this store has open (removed, replaced or
  // moved aside by another process), or after the database reported damage.
  bool usable() const;
  // Forgets the database without closing it: used in a child process after fork, where the
  // connection inherited from the parent must not be touched at all.
  void abandon();

  Value get(std::string_view key);
  bool set(std::string_view key, const Value& value);
  bool remove(std::string_view key);
  // Every key with its value, in the order in which the keys were first written.
  boost::json::object all();

  // Runs body inside one write transaction (nested calls from body join it). Committed when body
  // returns; rolled back when body raises (the exception goes on) or a write inside failed. False
  // when nothing was committed.
  bool transaction(const std::function<void()>& body);

 private:
  struct StatementDeleter {
    void operator()(sqlite3_stmt* s) const;
  };
  using Statement = std::unique_ptr<sqlite3_stmt, StatementDeleter>;

  SqliteStore(std::filesystem::path path, sqlite3* db, dev_t device, ino_t inode);
  // Opens and checks the file once. *damaged tells a damaged file from one that cannot be opened.
  static std::shared_ptr<SqliteStore> tryOpen(const std::filesystem::path& path,
                                              std::string* reason, bool* damaged);
  bool prepare(std::string* reason);
  // A failed step: logs, marks the store broken on damage, fails the open transaction.
  void fail(int rc, std::string_view what);
  void refreshCache();
  void remember(std::string_view key, const Value& value, size_t bytes);
  bool runSimple(sqlite3_stmt* statement);

  std::filesystem::path path_;
  sqlite3* db_;
  dev_t device_;
  ino_t inode_;
  bool broken_ = false;

  mutable std::recursive_mutex mutex_;
  Statement get_, upsert_, delete_, all_, dataVersion_, begin_, commit_, rollback_;
  int depth_ = 0;
  bool transactionFailed_ = false;

  struct Cached {
    Value value;
    size_t bytes;
  };
  std::map<std::string, Cached, std::less<>> cache_;
  size_t cacheBytes_ = 0;
  long long cacheVersion_ = -1;
};

}  // namespace zv
