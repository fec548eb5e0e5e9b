#include "platform/defaults/SqliteStore.h"

#include <fmt/format.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <boost/json/serializer.hpp>
#include <chrono>
#include <cstring>
#include <initializer_list>

#include "platform/defaults/SqliteFile.h"
#include "platform/defaults/StoredJson.h"
#include "platform/foundation/ExactJson.h"
#include "platform/foundation/Log.h"
#include "zentrova/Exception.h"

namespace zv {

namespace {

namespace json = boost::json;

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

std::string_view columnText(sqlite3_stmt* s, int column) {
  const void* data = sqlite3_column_blob(s, column);
  return {static_cast<const char*>(data), static_cast<size_t>(sqlite3_column_bytes(s, column))};
}

bool runSimple(sqlite3_stmt* statement) {
  int rc = sqlite3_step(statement);
  sqlite3_reset(statement);
  return rc == SQLITE_DONE;
}

}  // namespace

SqliteStore::SqliteStore(std::filesystem::path path, sqlite3* db, dev_t device, ino_t inode)
    : path_(std::move(path)),
      db_(db),
      device_(device),
      inode_(inode),
      lastLook_(std::chrono::steady_clock::now()) {}

SqliteStore::~SqliteStore() {
  if (db_ == nullptr) return;
  for (Statement* s : {&get_, &version_, &upsert_, &delete_, &all_, &dataVersion_, &begin_,
                       &commit_, &rollback_}) {
    s->reset();
  }
  db_.reset();
}

std::shared_ptr<SqliteStore> SqliteStore::open(const std::filesystem::path& path,
                                               std::string* reason) {
  auto opened = SqliteFile::open(path, reason);
  if (!opened) return nullptr;
  std::shared_ptr<SqliteStore> store(
      new SqliteStore(path, opened->db, opened->device, opened->inode));
  return store->prepare(reason) ? store : nullptr;
}

bool SqliteStore::prepare(std::string* reason) {
  struct Entry {
    Statement* statement;
    const char* sql;
  };
  const Entry entries[] = {
      {&get_, "SELECT value, version FROM zv_defaults WHERE key = ?1"},
      {&version_, "SELECT version FROM zv_defaults WHERE key = ?1"},
      {&upsert_,
       "INSERT INTO zv_defaults(key, value, version) VALUES(?1, ?2, ?3) "
       "ON CONFLICT(key) DO UPDATE SET value = excluded.value, version = excluded.version"},
      {&delete_, "DELETE FROM zv_defaults WHERE key = ?1"},
      {&all_, "SELECT key, value FROM zv_defaults ORDER BY rowid"},
      {&dataVersion_, "PRAGMA data_version"},
      {&begin_, "BEGIN IMMEDIATE"},
      {&commit_, "COMMIT"},
      {&rollback_, "ROLLBACK"},
  };
  for (const Entry& e : entries) {
    sqlite3_stmt* s = nullptr;
    if (sqlite3_prepare_v3(db_.get(), e.sql, -1, SQLITE_PREPARE_PERSISTENT, &s, nullptr) !=
        SQLITE_OK) {
      *reason = fmt::format("cannot prepare: {}", sqlite3_errmsg(db_.get()));
      return false;
    }
    e.statement->reset(s);
  }
  return true;
}

bool SqliteStore::usable(bool lookNow) const {
  std::lock_guard lock(mutex_);
  if (broken_ || db_ == nullptr) return false;
  // The file is replaced only when another process moves a damaged file aside, so looking once a
  // second is enough, and keeps a new handle (one per store operation) from costing a stat each.
  auto now = std::chrono::steady_clock::now();
  if (!lookNow && now - lastLook_ < std::chrono::seconds(1)) return true;
  struct stat st {};
  if (::stat(path_.c_str(), &st) != 0 || st.st_dev != device_ || st.st_ino != inode_) return false;
  lastLook_ = now;
  return true;
}

void SqliteStore::abandon() {
  std::lock_guard lock(mutex_);
  for (Statement* s : {&get_, &version_, &upsert_, &delete_, &all_, &dataVersion_, &begin_,
                       &commit_, &rollback_}) {
    (void)s->release();
  }
  (void)db_.release();
  broken_ = true;
  cache_.clear();
}

void SqliteStore::fail(int rc, std::string_view what) {
  if (SqliteFile::isDamage(rc)) broken_ = true;
  if (depth_ > 0) transactionFailed_ = true;
  log::system(fmt::format("Zentrova store {}: could not {}: {}", path_.string(), what,
                          db_ ? sqlite3_errmsg(db_.get()) : sqlite3_errstr(rc)));
}

void SqliteStore::noticeOtherWriters() {
  sqlite3_stmt* s = dataVersion_.get();
  ResetOnExit reset{s};
  long long version = sqlite3_step(s) == SQLITE_ROW ? sqlite3_column_int64(s, 0) : -1;
  if (version == -1 || version != seenDataVersion_) cache_.unverifyAll();
  seenDataVersion_ = version;
}

ValueCache::Entry* SqliteStore::cached(std::string_view key) {
  ValueCache::Entry* entry = cache_.find(key);
  if (entry == nullptr || entry->verified) return entry;
  sqlite3_stmt* s = version_.get();
  ResetOnExit reset{s};
  bindText(s, 1, key);
  int rc = sqlite3_step(s);
  bool current = (rc == SQLITE_DONE && !entry->root) ||
                 (rc == SQLITE_ROW && entry->root && sqlite3_column_int64(s, 0) == entry->version);
  if (!current) {
    cache_.forget(key);
    if (rc != SQLITE_DONE && rc != SQLITE_ROW) fail(rc, "read");
    return nullptr;
  }
  entry->verified = true;
  return entry;
}

SqliteStore::Loaded SqliteStore::load(std::string_view key) {
  Loaded loaded;
  sqlite3_stmt* s = get_.get();
  ResetOnExit reset{s};
  bindText(s, 1, key);
  int rc = sqlite3_step(s);
  if (rc == SQLITE_DONE) {
    loaded.ok = true;
    return loaded;
  }
  if (rc != SQLITE_ROW) {
    fail(rc, "read");
    return loaded;
  }
  std::string_view text = columnText(s, 0);
  std::optional<json::value> value = readStored(key, text);
  loaded.ok = true;
  if (!value) return loaded;  // counts as no value; the next write replaces it
  loaded.entry.root = std::make_shared<json::value>(std::move(*value));
  loaded.entry.version = sqlite3_column_int64(s, 1);
  loaded.entry.owned = true;
  loaded.entry.bytes = text.size();
  return loaded;
}

std::optional<json::value> SqliteStore::readStored(std::string_view key, std::string_view text) {
  try {
    return ExactJson::parse(text);
  } catch (const Exception& e) {
    int dropped = 0;
    std::optional<json::value> rest = StoredJson::salvage(text, &dropped);
    log::system(fmt::format(
        "Zentrova store {}: the value under \"{}\" is not JSON ({}); {}", path_.string(), key,
        e.reason(),
        rest ? fmt::format("read without its {} unreadable part(s)", dropped) : "read as nil"));
    return rest;
  }
}

Value SqliteStore::get(std::string_view key) {
  std::lock_guard lock(mutex_);
  if (broken_) return {};
  if (depth_ == 0) noticeOtherWriters();  // a transaction looks once, when it starts
  if (ValueCache::Entry* entry = cached(key)) {
    return Value(std::shared_ptr<const json::value>(entry->root));
  }
  Loaded loaded = load(key);
  if (!loaded.ok) return {};
  std::shared_ptr<const json::value> root = loaded.entry.root;
  cache_.remember(key, std::move(loaded.entry));
  return Value(std::move(root));
}

std::string_view SqliteStore::serialize(const json::value& value) {
  // One buffer serves every write: long values are written often (the event list on every
  // append), and a fresh buffer of that size would cost page faults each time.
  json::serializer serializer;
  serializer.reset(&value);
  size_t used = 0;
  while (!serializer.done()) {
    if (used == textCapacity_) {
      size_t capacity = std::max<size_t>(textCapacity_ * 2, 64 * 1024);
      auto bigger = std::make_unique<char[]>(capacity);
      if (used > 0) std::memcpy(bigger.get(), text_.get(), used);
      text_ = std::move(bigger);
      textCapacity_ = capacity;
    }
    used += serializer.read(text_.get() + used, textCapacity_ - used).size();
  }
  return {text_.get(), used};
}

bool SqliteStore::write(std::string_view key, std::shared_ptr<json::value> root, bool owned) {
  // Never write what cannot be read back: the earlier value stays.
  if (std::string why = StoredJson::writeRefusal(*root); !why.empty()) {
    log::system(fmt::format(
        "Zentrova store {}: the value for \"{}\" was not written because it {}; the earlier "
        "value stays",
        path_.string(), key, why));
    return false;
  }
  std::string_view text = serialize(*root);
  sqlite3_stmt* s = upsert_.get();
  ResetOnExit reset{s};
  // A random version rather than a RETURNING clause, which would make SQLite keep a statement
  // journal of the old value inside a transaction (a second copy of every page written).
  sqlite3_int64 version = 0;
  sqlite3_randomness(sizeof version, &version);
  bindText(s, 1, key);
  bindText(s, 2, text);
  sqlite3_bind_int64(s, 3, version);
  int rc = sqlite3_step(s);
  size_t bytes = text.size();
  if (textCapacity_ > ValueCache::kLimitBytes) {  // let go after an exceptionally long value
    text_.reset();
    textCapacity_ = 0;
  }
  if (rc != SQLITE_DONE) {
    cache_.forget(key);
    fail(rc, "write");
    return false;
  }
  cache_.remember(key, {std::move(root), version, owned, true, bytes});
  return true;
}

bool SqliteStore::set(std::string_view key, const Value& value) {
  if (value.isNil()) return remove(key);
  std::lock_guard lock(mutex_);
  if (broken_) return false;
  // The caller's tree is shared and never edited here (owned stays false).
  return write(key, std::const_pointer_cast<json::value>(value.shared()), false);
}

bool SqliteStore::remove(std::string_view key) {
  std::lock_guard lock(mutex_);
  if (broken_) return false;
  sqlite3_stmt* s = delete_.get();
  ResetOnExit reset{s};
  bindText(s, 1, key);
  int rc = sqlite3_step(s);
  if (rc != SQLITE_DONE) {
    cache_.forget(key);
    fail(rc, "remove a value");
    return false;
  }
  cache_.remember(key, {});
  return true;
}

bool SqliteStore::modify(std::string_view key, const std::function<void(json::value&)>& fn) {
  std::lock_guard lock(mutex_);
  bool written = false;
  bool committed = transaction([&] {
    std::shared_ptr<json::value> root;
    if (cached(key)) root = cache_.takeSoleOwned(key);
    if (!root) {
      if (ValueCache::Entry* entry = cached(key)) {
        // Someone still holds the cached tree: edit a copy.
        root = std::make_shared<json::value>(entry->root ? *entry->root : json::value());
      } else {
        Loaded loaded = load(key);
        if (!loaded.ok) return;
        root = loaded.entry.root ? loaded.entry.root : std::make_shared<json::value>();
      }
    }
    // Out of the cache until written: an edit that fails half way cannot be served later.
    cache_.forget(key);
    fn(*root);
    written = write(key, std::move(root), true);
  });
  return committed && written;
}

boost::json::object SqliteStore::all() {
  std::lock_guard lock(mutex_);
  json::object out;
  if (broken_) return out;
  sqlite3_stmt* s = all_.get();
  ResetOnExit reset{s};
  int rc;
  while ((rc = sqlite3_step(s)) == SQLITE_ROW) {
    std::string_view key = columnText(s, 0);
    if (auto value = readStored(key, columnText(s, 1))) out[key] = std::move(*value);
  }
  if (rc != SQLITE_DONE) fail(rc, "read");
  return out;
}

void SqliteStore::rollback() {
  runSimple(rollback_.get());
  cache_.clear();
  seenDataVersion_ = -1;
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
  depth_ = 1;
  transactionFailed_ = false;
  noticeOtherWriters();
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
