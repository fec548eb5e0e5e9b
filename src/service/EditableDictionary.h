// EditableDictionary is an editable copy of a payload value, made the way the phone's mutable
// copies behave, so the user-info rewrites fail exactly where they would there:
// - nil stays nil: reads give nil and writes do nothing;
// - a dictionary becomes an editable dictionary; writing nil under a key removes the key;
// - a string or an array is copied, but reading or writing a key of it raises;
// - a number, a boolean or null cannot be copied for editing: making the copy raises.
#pragma once

#include <boost/json/object.hpp>
#include <string_view>

#include "zentrova/Value.h"

namespace zv {

class EditableDictionary {
 public:
  // Raises zv::Exception for values that cannot be copied for editing.
  static EditableDictionary copyOf(const Value& v);

  bool isNil() const { return kind_ == Kind::Nil; }
  // The entry under key (null is returned as null); nil when this is nil.
  Value get(std::string_view key) const;
  // Sets (or, for nil, removes) the entry under key.
  void set(std::string_view key, const Value& v);
  // Removes the entry under key, a null entry included.
  void remove(std::string_view key);
  // The edited value: nil, the edited dictionary, or the copied string or array.
  Value value() const;

 private:
  enum class Kind { Nil, Dictionary, Other };
  void requireDictionary(std::string_view key) const;

  Kind kind_ = Kind::Nil;
  boost::json::object dict_;
  Value other_;
};

}  // namespace zv
