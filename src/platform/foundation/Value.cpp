#include "zentrova/Value.h"

#include <fmt/format.h>

#include <boost/json/serialize.hpp>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/foundation/ExactJson.h"
#include "zentrova/Exception.h"

namespace zv {

namespace {

constexpr long long kMax = std::numeric_limits<long long>::max();
constexpr long long kMin = std::numeric_limits<long long>::min();

[[noreturn]] void raiseKind(const Value& v, std::string_view wanted) {
  throw Exception(Exception::kInvalidArgument,
                  fmt::format("expected {} but found {}", wanted, kindName(v)));
}

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

std::string_view skipSpace(std::string_view s) {
  size_t i = 0;
  while (i < s.size() && isSpace(s[i])) ++i;
  return s.substr(i);
}

long long integerOfString(std::string_view s) {
  s = skipSpace(s);
  bool negative = false;
  if (!s.empty() && (s[0] == '+' || s[0] == '-')) {
    negative = s[0] == '-';
    s.remove_prefix(1);
  }
  // Accumulate as a negative number so that the minimum fits; saturate on overflow.
  long long acc = 0;
  for (char c : s) {
    if (c < '0' || c > '9') break;
    int digit = c - '0';
    if (acc < (kMin + digit) / 10) return negative ? kMin : kMax;
    acc = acc * 10 - digit;
  }
  if (negative) return acc;
  return acc == kMin ? kMax : -acc;
}

long long integerOfDouble(double d) {
  if (std::isnan(d)) return 0;
  if (d >= 9223372036854775807.0) return kMax;
  if (d <= -9223372036854775808.0) return kMin;
  return static_cast<long long>(d);
}

bool boolOfString(std::string_view s) {
  s = skipSpace(s);
  if (!s.empty() && (s[0] == '+' || s[0] == '-')) s.remove_prefix(1);
  while (!s.empty() && s[0] == '0') s.remove_prefix(1);
  if (s.empty()) return false;
  char c = s[0];
  return (c >= '1' && c <= '9') || c == 'Y' || c == 'y' || c == 'T' || c == 't';
}

double doubleOfString(std::string_view s) {
  s = skipSpace(s);
  if (!s.empty() && s[0] == '+') s.remove_prefix(1);
  double d = 0;
  auto r = std::from_chars(s.data(), s.data() + s.size(), d, std::chars_format::general);
  if (r.ec == std::errc::result_out_of_range) {
    return (!s.empty() && s[0] == '-') ? -HUGE_VAL : HUGE_VAL;
  }
  return r.ec == std::errc() ? d : 0.0;
}

}  // namespace

Value::Value(json::value v) : node_(std::make_shared<const json::value>(std::move(v))) {}
Value::Value(json::object o) : Value(json::value(std::move(o))) {}
Value::Value(std::string_view s) : Value(json::value(json::string(s))) {}
Value::Value(const char* s) : Value(std::string_view(s)) {}

Value Value::parse(std::string_view text) {
  // Floating-point numbers are read exactly (see ExactJson): a payload value reads back as sent.
  return Value(ExactJson::parse(text));
}

Value Value::null() {
  static const auto node = std::make_shared<const json::value>(nullptr);
  return Value(node);
}

const json::value& Value::json() const {
  if (!node_) raiseKind(*this, "a value");
  return *node_;
}

const json::object& Value::object() const {
  if (!isObject()) raiseKind(*this, "a dictionary");
  return node_->get_object();
}

const json::array& Value::array() const {
  if (!isArray()) raiseKind(*this, "an array");
  return node_->get_array();
}

std::string_view Value::string() const {
  if (!isString()) raiseKind(*this, "a string");
  const json::string& s = node_->get_string();
  return {s.data(), s.size()};
}

Value Value::get(std::string_view key) const {
  const json::object& o = object();
  auto it = o.find(key);
  if (it == o.end()) return {};
  return Value(std::shared_ptr<const json::value>(node_, &it->value()));
}

std::vector<Value> Value::elements() const {
  const json::array& a = array();
  std::vector<Value> out;
  out.reserve(a.size());
  for (const json::value& e : a) out.emplace_back(std::shared_ptr<const json::value>(node_, &e));
  return out;
}

json::object Value::mutableObjectCopy() const { return object(); }

long long Value::integerValue() const {
  if (!node_) raiseKind(*this, "a number or a string");
  switch (node_->kind()) {
    case json::kind::int64:
      return node_->get_int64();
    case json::kind::uint64: {
      std::uint64_t u = node_->get_uint64();
      return u > static_cast<std::uint64_t>(kMax) ? kMax : static_cast<long long>(u);
    }
    case json::kind::double_:
      return integerOfDouble(node_->get_double());
    case json::kind::bool_:
      return node_->get_bool() ? 1 : 0;
    case json::kind::string:
      return integerOfString(string());
    default:
      raiseKind(*this, "a number or a string");
  }
}

bool Value::boolValue() const {
  if (!node_) raiseKind(*this, "a number or a string");
  switch (node_->kind()) {
    case json::kind::int64:
      return node_->get_int64() != 0;
    case json::kind::uint64:
      return node_->get_uint64() != 0;
    case json::kind::double_:
      return node_->get_double() != 0.0;
    case json::kind::bool_:
      return node_->get_bool();
    case json::kind::string:
      return boolOfString(string());
    default:
      raiseKind(*this, "a number or a string");
  }
}

double Value::doubleValue() const {
  if (!node_) raiseKind(*this, "a number or a string");
  switch (node_->kind()) {
    case json::kind::int64:
      return static_cast<double>(node_->get_int64());
    case json::kind::uint64:
      return static_cast<double>(node_->get_uint64());
    case json::kind::double_:
      return node_->get_double();
    case json::kind::bool_:
      return node_->get_bool() ? 1.0 : 0.0;
    case json::kind::string:
      return doubleOfString(string());
    default:
      raiseKind(*this, "a number or a string");
  }
}

std::string Value::description() const {
  if (!node_) return "(null)";
  switch (node_->kind()) {
    case json::kind::null:
      return "<null>";
    case json::kind::bool_:
      return node_->get_bool() ? "1" : "0";
    case json::kind::int64:
      return fmt::format("{}", node_->get_int64());
    case json::kind::uint64:
      return fmt::format("{}", node_->get_uint64());
    case json::kind::double_:
      return fmt::format("{}", node_->get_double());
    case json::kind::string:
      return std::string(string());
    default:
      return json::serialize(*node_);
  }
}

bool Value::operator==(const Value& other) const {
  if (!node_ || !other.node_) return !node_ && !other.node_;
  return *node_ == *other.node_;
}

std::string_view kindName(const Value& v) {
  if (v.isNil()) return "nil";
  switch (v.json().kind()) {
    case json::kind::null:
      return "null";
    case json::kind::bool_:
      return "boolean";
    case json::kind::int64:
    case json::kind::uint64:
    case json::kind::double_:
      return "number";
    case json::kind::string:
      return "string";
    case json::kind::array:
      return "array";
    case json::kind::object:
      return "dictionary";
  }
  return "value";
}

}  // namespace zv
