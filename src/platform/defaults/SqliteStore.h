// SqliteStore is one open SQLite database file holding one key-value suite: a table of top-level
// keys, each with its value as JSON text and a version that changes on every write. Several
// processes may have the same file open at once; the database runs in WAL mode with a busy
// timeout, and every write is committed before it returns. A write transaction (BEGIN IMMEDIATE)
// makes a read-modify-write atomic across processes.
//
// Reads are served from a ValueCache of parsed values, checked against the file whenever another
// connection has committed (PRAGMA data_version, then the version of the row), so a value is not
// parsed again until someone else changes it. modify() edits a cached value in place when nobody
// outside the cache holds it: appending to a long list then costs one serialisation and one write.
//
// Failures never raise: they go to the system log, reads then give nil and writes report false.
// A file that turns out to be damaged while in use marks the store broken; the next open moves it
// aside. All members are thread-safe (one recursive lock per store).
#pragma once

#include <sqlite3.h>
#include <sys/types.h>

#include <boost/json/object.hpp>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/defaults/ValueCache.h"
#include "platform/foundation/UniqueHandle.h"
#include "zentrova/Value.h"

namespace zv {

class SqliteStore {
 public:
  // Opens the database at path (see SqliteFile). nullptr when the folder cannot be written or the
  // file cannot be opened; *reason then says why.
  static std::shared_ptr<SqliteStore> open(const std::filesystem::path& path, std::string* reason);

  ~SqliteStore();
  SqliteStore(const SqliteStore&) = delete;
  SqliteStore& operator=(const SqliteStore&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // False once the file at path is no longer the one this store has open (removed, replaced or
  // moved aside by another process; looked at no more than once a second unless lookNow), or
  // after the database reported damage.
  bool usable(bool lookNow = false) const;
  // Forgets the database without closing it: used in a child process after fork, where the
  // connection inherited from the parent must not be touched at all.
  void abandon();

  Value get(std::string_view key);
  bool set(std::string_view key, const Value& value);
  bool remove(std::string_view key);
  // Every key with its value, in the order in which the keys were first written.
  boost::json::object all();

  // Atomically edits the value under key: fn receives the current value (null when the key is
  // absent) and changes it; the result is written back. When fn raises, nothing is written.
  bool modify(std::string_view key, const std::function<void(boost::json::value&)>& fn);

  // Runs body inside one write transaction (nested calls from body join it). Committed when body
  // returns; rolled back when body raises (the exception goes on) or a write inside failed. False
  // when nothing was committed; body does not run when the transaction cannot start.
  bool transaction(const std::function<void()>& body);

 private:
  using Statement = UniqueHandle<sqlite3_stmt, sqlite3_finalize>;
  // A value read from the file.
  struct Loaded {
    bool ok = false;  // false: the read failed (reported)
    ValueCache::Entry entry;
  };

  SqliteStore(std::filesystem::path path, sqlite3* db, dev_t device, ino_t inode);
  bool prepare(std::string* reason);
  // A failed step: logs, marks the store broken on damage, fails the open transaction.
  void fail(int rc, std::string_view what);
  // Marks the cache unverified when another connection has committed since the last look.
  void noticeOtherWriters();
  // The cached entry of key once checked against the file; nullptr when there is none (or it was
  // out of date and has been dropped).
  ValueCache::Entry* cached(std::string_view key);
  Loaded load(std::string_view key);
  // The stored text of key as a value; what can be read of it when it is damaged (reported).
  std::optional<boost::json::value> readStored(std::string_view key, std::string_view text);
  // Writes value under key and caches it. False when the write failed (reported).
  bool write(std::string_view key, std::shared_ptr<boost::json::value> root, bool owned);
  // The compact JSON text of value, in a buffer that stays valid until the next call.
  std::string_view serialize(const boost::json::value& value);
  void rollback();

  std::filesystem::path path_;
  UniqueHandle<sqlite3, sqlite3_close_v2> db_;
  dev_t device_;
  ino_t inode_;
  bool broken_ = false;
  mutable std::chrono::steady_clock::time_point lastLook_;

  mutable std::recursive_mutex mutex_;
  Statement get_, version_, upsert_, delete_, all_, dataVersion_, begin_, commit_, rollback_;
  int depth_ = 0;
  bool transactionFailed_ = false;

  ValueCache cache_;
  long long seenDataVersion_ = -1;  // as last seen; -1 unknown
  std::unique_ptr<char[]> text_;
  size_t textCapacity_ = 0;
};

}  // namespace zv
