#include "zentrova/UserDefaults.h"

#include <fmt/format.h>

#include "platform/defaults/SqliteStore.h"
#include "platform/defaults/SqliteStorePool.h"
#include "platform/foundation/Md5.h"

namespace zv {

namespace {

// Leaves room for ".sqlite", the "-wal" and "-shm" companions and a moved-aside suffix within the
// usual 255-byte limit of a file name.
constexpr size_t kMaxStemBytes = 200;

bool keepsAsIs(unsigned char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '.' ||
         c == '_' || c == '-';
}

}  // namespace

std::optional<std::string> UserDefaults::fileNameForSuite(std::string_view suiteName) {
  if (suiteName.find_first_not_of('.') == std::string_view::npos) return std::nullopt;
  std::string stem;
  for (unsigned char c : suiteName) {
    if (keepsAsIs(c)) {
      stem += static_cast<char>(c);
    } else {
      stem += fmt::format("%{:02X}", c);
    }
  }
  if (stem.size() > kMaxStemBytes) {
    stem.resize(kMaxStemBytes - 33);
    // Never cut an escape in half.
    if (size_t pct = stem.rfind('%'); pct != std::string::npos && pct + 3 > stem.size()) {
      stem.resize(pct);
    }
    stem += '-';
    stem += md5Hex(suiteName);
  }
  return stem + ".sqlite";
}

std::shared_ptr<UserDefaults> UserDefaults::initWithSuiteName(std::string_view suiteName,
                                                              const std::filesystem::path& folder) {
  auto file = fileNameForSuite(suiteName);
  if (!file) return nullptr;
  auto store = SqliteStorePool::acquire(folder / *file);
  return std::shared_ptr<UserDefaults>(new UserDefaults(std::string(suiteName), std::move(store)));
}

Value UserDefaults::objectForKey(std::string_view key) const {
  return store_ ? store_->get(key) : Value();
}

bool UserDefaults::setObject(const Value& value, std::string_view key) {
  return store_ && store_->set(key, value);
}

bool UserDefaults::removeObject(std::string_view key) { return store_ && store_->remove(key); }

boost::json::object UserDefaults::dictionaryRepresentation() const {
  return store_ ? store_->all() : boost::json::object();
}

bool UserDefaults::transaction(const std::function<void()>& body) {
  return store_ && store_->transaction(body);
}

bool UserDefaults::update(std::string_view key,
                          const std::function<Value(const Value& current)>& fn) {
  return transaction([&] {
    Value next = fn(objectForKey(key));
    setObject(next, key);
  });
}

bool UserDefaults::modifyObject(std::string_view key,
                                const std::function<void(boost::json::value& value)>& fn) {
  return store_ && store_->modify(key, fn);
}

}  // namespace zv
