#include "service/EditableDictionary.h"

#include <fmt/format.h>

#include "model/ZVRichNotifUtils.h"
#include "zentrova/Exception.h"

namespace zv {

EditableDictionary EditableDictionary::copyOf(const Value& v) {
  EditableDictionary d;
  if (v.isNil()) return d;
  if (v.isObject()) {
    d.kind_ = Kind::Dictionary;
    d.dict_ = v.mutableObjectCopy();
  } else if (v.isString() || v.isArray()) {
    d.kind_ = Kind::Other;
    d.other_ = v;
  } else {
    throw Exception(Exception::kInvalidArgument,
                    fmt::format("a {} cannot be copied for editing", kindName(v)));
  }
  return d;
}

void EditableDictionary::requireDictionary(std::string_view key) const {
  if (kind_ == Kind::Other) {
    throw Exception(Exception::kInvalidArgument,
                    fmt::format("cannot use the key \"{}\" of a {}", key, kindName(other_)));
  }
}

Value EditableDictionary::get(std::string_view key) const {
  requireDictionary(key);
  if (kind_ == Kind::Nil) return {};
  auto it = dict_.find(key);
  if (it == dict_.end()) return {};
  return Value(it->value());
}

void EditableDictionary::set(std::string_view key, const Value& v) {
  requireDictionary(key);
  if (kind_ == Kind::Nil) return;
  if (v.isNil()) {
    dict_.erase(key);
  } else {
    dict_[key] = v.json();
  }
}

void EditableDictionary::remove(std::string_view key) {
  requireDictionary(key);
  if (kind_ == Kind::Nil) return;
  ZVRichNotifUtils::removeValidObjectForKey(key, &dict_);
}

Value EditableDictionary::value() const {
  switch (kind_) {
    case Kind::Nil:
      return {};
    case Kind::Dictionary:
      return Value(dict_);
    case Kind::Other:
      return other_;
  }
  return {};
}

}  // namespace zv
