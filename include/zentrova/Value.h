/// @file
/// zv::Value is one payload value: JSON-like data that keeps nil (absent) apart from null (the JSON
/// null, the platform's null singleton). A Value shares an immutable Boost.JSON tree: a child value
/// (a dictionary entry, an array element) points into the same tree and keeps it alive, so looking
/// into a payload never copies it. Mutation happens on copies (mutableObjectCopy) that become new
/// Values. Wrong-kind access (a dictionary lookup on a string, the integer value of an array)
/// raises zv::Exception, which the system's guards catch.
#pragma once

#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "zentrova/Export.h"

ZENTROVA_API_BEGIN

namespace zv {

namespace json = boost::json;

/// One payload value: nil, or a shared, immutable JSON node.
///
/// @par Ownership
/// Copying a Value shares its tree (a shared_ptr to a const node); the tree lives as long as any
/// Value, child included, points into it. References returned by json(), object(), array() and
/// string() are valid as long as this Value (or another sharing the tree) is alive.
///
/// @par Threads
/// Trees never change, so Values sharing one may be read from any number of threads; a single
/// Value object is not to be assigned while another thread reads it.
///
/// @par Errors
/// Kind checks (isString() ...) never raise; typed access to a value of another kind raises
/// zv::Exception with the name Exception::kInvalidArgument, and parse() raises for bad JSON.
class Value {
 public:
  /// The nil value.
  Value() = default;
  /// A value owning a new tree of the JSON value, dictionary, or string.
  ///@{
  Value(json::value v);       // NOLINT(google-explicit-constructor): values convert freely
  Value(json::object o);      // NOLINT(google-explicit-constructor)
  Value(std::string_view s);  // NOLINT(google-explicit-constructor)
  Value(const char* s);       // NOLINT(google-explicit-constructor)
  ///@}
  /// A value sharing an existing tree.
  explicit Value(std::shared_ptr<const json::value> node) : node_(std::move(node)) {}

  /// Parses JSON text. Raises zv::Exception (name "JSONParseException") on invalid JSON or invalid
  /// UTF-8; nesting deeper than 512 levels is refused the same way.
  static Value parse(std::string_view text);
  /// The null singleton (what a JSON null becomes): not nil.
  static Value null();

  /// Whether the value is nil (absent); operator bool is its opposite.
  ///@{
  bool isNil() const noexcept { return node_ == nullptr; }
  explicit operator bool() const noexcept { return node_ != nullptr; }
  ///@}
  /// Whether the value is the null singleton (a JSON null), not nil.
  bool isNull() const noexcept { return node_ && node_->is_null(); }
  /// Whether the value is a string.
  bool isString() const noexcept { return node_ && node_->is_string(); }
  /// Whether the value is a JSON boolean (which isNumber() also accepts).
  bool isBool() const noexcept { return node_ && node_->is_bool(); }
  /// Numbers include booleans, as on the platform (a JSON true is the number 1).
  bool isNumber() const noexcept { return node_ && (node_->is_number() || node_->is_bool()); }
  /// Whether the value is a dictionary (a JSON object).
  bool isObject() const noexcept { return node_ && node_->is_object(); }
  /// Whether the value is an array.
  bool isArray() const noexcept { return node_ && node_->is_array(); }

  /// The underlying JSON. Raises when nil.
  const json::value& json() const;
  /// Typed access to a dictionary, an array or a string; each raises zv::Exception when the
  /// value is of another kind (or nil).
  ///@{
  const json::object& object() const;
  const json::array& array() const;
  std::string_view string() const;
  ///@}

  /// The entry under key in a dictionary, sharing this tree; nil when absent. Raises when this
  /// value is not a dictionary (nil included: callers test for nil first when nil is allowed).
  Value get(std::string_view key) const;
  /// The elements of an array, each sharing this tree. Raises when this value is not an array.
  std::vector<Value> elements() const;
  /// A copy of a dictionary for editing. Raises when this value is not a dictionary.
  json::object mutableObjectCopy() const;

  /// The platform's conversions. Numbers: integers as they are, floating-point truncated toward
  /// zero, booleans 1 and 0, values out of the 64-bit range saturated. Strings: leading white
  /// space, an optional sign and the leading decimal digits ("12abc" 12, " -7" -7, "0x1A" 0, "abc"
  /// 0), saturated on overflow. Anything else raises.
  long long integerValue() const;
  /// Numbers: non-zero. Strings: after white space, an optional sign and leading zeros, true when
  /// the next character is one of 1-9, "Y", "y", "T", "t" ("01" and "Yes" true, "0" and "no"
  /// false). Anything else raises.
  bool boolValue() const;
  /// Numbers as double; strings by their leading decimal number (0 when there is none). Anything
  /// else raises.
  double doubleValue() const;

  /// What a "%@" placeholder prints: "(null)" for nil, "<null>" for null, a string as it is,
  /// numbers in decimal (booleans "1" and "0"), arrays and dictionaries as compact JSON.
  std::string description() const;

  /// Deep equality; nil equals only nil.
  bool operator==(const Value& other) const;

  /// The shared tree (null for nil), to make another Value of it.
  const std::shared_ptr<const json::value>& shared() const noexcept { return node_; }

 private:
  std::shared_ptr<const json::value> node_;
};

/// A short name for the kind of a value, used in exception reasons ("string", "array", "nil", ...).
std::string_view kindName(const Value& v);

}  // namespace zv

ZENTROVA_API_END
