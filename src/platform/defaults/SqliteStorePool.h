// SqliteStorePool keeps one open SqliteStore per database file for the whole process, so that a
// new suite handle (the store manager asks for one on every operation) costs a table lookup and a
// stat of the file instead of opening, configuring and checking a database.
//
// A pooled store is reopened when its file was removed, replaced or moved aside by another process,
// or when it reported damage; stores whose file is gone are let go whenever a new one opens. After
// fork the child starts with an empty pool: the connections inherited from the parent are
// abandoned, never used or closed, as SQLite requires. (Forking while another thread of the parent
// is inside the store is not supported.) A file that cannot be opened is reported to the system log
// once, until it opens again.
#pragma once

#include <filesystem>
#include <memory>

namespace zv {

class SqliteStore;

class SqliteStorePool {
 public:
  // The open store of the file at path; nullptr when it cannot be opened.
  static std::shared_ptr<SqliteStore> acquire(const std::filesystem::path& path);
};

}  // namespace zv
