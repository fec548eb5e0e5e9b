// ValueCache holds the parsed values of one SqliteStore, so that a value is parsed once and then
// served until someone changes it. Each entry remembers the version of the row it was read from or
// written to. When another connection has committed, the store marks every entry unverified, and
// an entry is checked against its row's version before its next use: a write of one key by
// another process does not throw away the values of the others.
//
// Bounded by the bytes of JSON text that its values stand for. Not thread-safe: the store's lock
// guards it.
#pragma once

#include <boost/json/value.hpp>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace zv {

class ValueCache {
 public:
  struct Entry {
    std::shared_ptr<boost::json::value> root;  // nullptr: the key is absent
    long long version = 0;                     // the row's version (0 when absent)
    bool owned = false;  // made by the store (parsed or edited), so it may be edited in place
    bool verified = true;
    size_t bytes = 0;
  };

  // A store holds configuration and a few lists; this keeps all of it in practice while bounding
  // what an exceptionally large value can cost.
  static constexpr size_t kLimitBytes = 4 * 1024 * 1024;

  Entry* find(std::string_view key);
  void remember(std::string_view key, Entry entry);
  void forget(std::string_view key);
  void unverifyAll();
  void clear();
  // The tree under key, taken out of the cache, when it is owned, verified and held by nobody
  // else; nullptr otherwise.
  std::shared_ptr<boost::json::value> takeSoleOwned(std::string_view key);

 private:
  std::map<std::string, Entry, std::less<>> entries_;
  size_t bytes_ = 0;
};

}  // namespace zv
