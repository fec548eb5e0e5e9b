#include "platform/defaults/SqliteStorePool.h"

#include <fmt/format.h>
#include <unistd.h>

#include <map>
#include <mutex>
#include <set>
#include <string>

#include "platform/defaults/SqliteStore.h"
#include "platform/foundation/Log.h"

namespace zv {

namespace {

struct Pool {
  std::mutex mutex;
  pid_t owner = ::getpid();
  std::map<std::string, std::shared_ptr<SqliteStore>> open;
  std::set<std::string> reported;
};

Pool& pool() {
  static Pool* p = new Pool;  // never destroyed: stores may be in use while the process exits
  return *p;
}

}  // namespace

std::shared_ptr<SqliteStore> SqliteStorePool::acquire(const std::filesystem::path& path) {
  Pool& p = pool();
  std::lock_guard lock(p.mutex);
  if (::getpid() != p.owner) {
    for (auto& [name, store] : p.open) store->abandon();
    p.open.clear();
    p.reported.clear();
    p.owner = ::getpid();
  }
  std::string key = path.string();
  if (auto it = p.open.find(key); it != p.open.end()) {
    if (it->second->usable()) return it->second;
    p.open.erase(it);
  }
  // Before another connection is opened, let go of those whose file is gone (a removed folder,
  // a file moved aside), so that their descriptors do not pile up in a long-lived process.
  std::erase_if(p.open, [](const auto& entry) { return !entry.second->usable(true); });
  std::string reason;
  auto store = SqliteStore::open(path, &reason);
  if (!store) {
    if (p.reported.insert(key).second) {
      log::system(fmt::format(
          "Zentrova store {}: unavailable ({}); reads give nothing and writes are dropped", key,
          reason));
    }
    return nullptr;
  }
  p.reported.erase(key);
  p.open[key] = store;
  return store;
}

}  // namespace zv
