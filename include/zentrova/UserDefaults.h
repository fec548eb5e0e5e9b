/// @file
/// UserDefaults is the key-value store of a suite: the extension's own standard store, or the store
/// that the extensions share with the host application through an app group (the suite named after
/// the app group id). Each top-level key holds one value of any JSON kind, kept exactly: 443 stays
/// an integer, 1700000000.25 stays a floating-point number, arrays and dictionaries at any depth.
///
/// A suite is one SQLite file in the store folder it is opened in, which every process of the
/// app group can read and write at once. Every write is committed before it returns, so
/// synchronize() has nothing left to do. transaction() and update() make a read-modify-write atomic
/// across threads and processes.
///
/// Never raises for a store problem: when the folder cannot be written (as with a missing app
/// group), reads give nil and writes do nothing and report false; a damaged file is moved aside
/// and the suite starts empty (both reported to the system log). Handles are cheap: open
/// connections are shared per file within the process.
#pragma once

#include <boost/json/object.hpp>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "zentrova/Export.h"
#include "zentrova/Value.h"

ZENTROVA_API_BEGIN

namespace zv {

class SqliteStore;

/// A handle on one key-value store (a suite).
///
/// @par Ownership
/// Handles are shared_ptr and cheap to make; handles on the same file share one connection, which
/// closes with the last of them. Values read are copies: changing the store does not change them.
///
/// @par Threads
/// Every call is safe from any thread, and several processes may use the same suite at once.
///
/// @par Errors
/// Never raises for a store problem (see the file's description); an exception raised by a
/// callback given to transaction(), update() or modifyObject() rolls back and goes on to the
/// caller.
class UserDefaults {
 public:
  /// A handle on the suite with this name in the store folder; nullptr (nil) when the name cannot
  /// name a store file (empty, or dots only). The process's own standard store is the suite named
  /// after its bundle identifier.
  static std::shared_ptr<UserDefaults> initWithSuiteName(std::string_view suiteName,
                                                         const std::filesystem::path& folder);

  /// The file name of a suite inside the store folder. Letters, digits, ".", "_" and "-" are kept,
  /// every other byte is written as %XX (so "/" can never appear), and ".sqlite" is appended; a
  /// name too long for a file name keeps its first 200 bytes and ends with the MD5 of the whole.
  /// nullopt for the empty name and for names made of dots only.
  static std::optional<std::string> fileNameForSuite(std::string_view suiteName);

  /// The name the handle was opened with.
  const std::string& suiteName() const { return suiteName_; }
  /// False when the store cannot be opened (reads give nil, writes do nothing).
  bool available() const { return store_ != nullptr; }

  /// The value under key; nil when absent.
  Value objectForKey(std::string_view key) const;
  /// Stores value under key (nil removes the key). False when nothing was written.
  bool setObject(const Value& value, std::string_view key);
  /// Removes the key (the same as setting nil). False when nothing was written.
  bool removeObject(std::string_view key);
  /// Every key of the suite with its value, keys in the order of their first write.
  boost::json::object dictionaryRepresentation() const;

  /// Runs body in one write transaction: every read and write that body makes through any handle
  /// on this suite, on this thread, is one atomic step for all processes. Other writers wait. When
  /// body raises, nothing is written and the exception goes on. False when nothing was committed
  /// (the store is unavailable or failed; body does not run when the transaction cannot start).
  bool transaction(const std::function<void()>& body);
  /// Atomically replaces the value under key by fn(current value); fn returning nil removes it.
  bool update(std::string_view key, const std::function<Value(const Value& current)>& fn);

  /// Atomically edits the value under key in place: fn receives the current value (null when the
  /// key is absent) and changes it; the result is written back. For long values this is the cheap
  /// way to append: when nobody else holds the stored value it is edited without a copy.
  bool modifyObject(std::string_view key, const std::function<void(boost::json::value& value)>& fn);

  /// Every write is already committed when it returns: nothing to do.
  bool synchronize() { return true; }

 private:
  UserDefaults(std::string suiteName, std::shared_ptr<SqliteStore> store)
      : suiteName_(std::move(suiteName)), store_(std::move(store)) {}

  std::string suiteName_;
  std::shared_ptr<SqliteStore> store_;
};

}  // namespace zv

ZENTROVA_API_END
