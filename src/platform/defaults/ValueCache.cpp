#include "platform/defaults/ValueCache.h"

namespace zv {

ValueCache::Entry* ValueCache::find(std::string_view key) {
  auto it = entries_.find(key);
  return it == entries_.end() ? nullptr : &it->second;
}

void ValueCache::remember(std::string_view key, Entry entry) {
  forget(key);
  if (entry.bytes > kLimitBytes) return;
  if (bytes_ + entry.bytes > kLimitBytes) clear();
  bytes_ += entry.bytes;
  entries_.emplace(std::string(key), std::move(entry));
}

void ValueCache::forget(std::string_view key) {
  if (auto it = entries_.find(key); it != entries_.end()) {
    bytes_ -= it->second.bytes;
    entries_.erase(it);
  }
}

void ValueCache::unverifyAll() {
  for (auto& [key, entry] : entries_) entry.verified = false;
}

void ValueCache::clear() {
  entries_.clear();
  bytes_ = 0;
}

std::shared_ptr<boost::json::value> ValueCache::takeSoleOwned(std::string_view key) {
  Entry* entry = find(key);
  if (!entry || !entry->owned || !entry->verified || entry->root.use_count() != 1) return nullptr;
  auto root = std::move(entry->root);
  forget(key);
  return root;
}

}  // namespace zv
