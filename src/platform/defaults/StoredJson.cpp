#include "platform/defaults/StoredJson.h"

#include <fmt/format.h>

#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <cmath>
#include <vector>

#include "platform/foundation/ExactJson.h"
#include "zentrova/Exception.h"
#include "zentrova/Url.h"

namespace zv {

namespace {

namespace json = boost::json;

// How many levels below the top a damaged text is looked into.
constexpr int kSalvageLevels = 2;

// The refusal for value found depth levels below the top of the stored value.
std::string refusal(const json::value& value, int depth) {
  switch (value.kind()) {
    case json::kind::double_:
      if (!std::isfinite(value.get_double())) {
        return fmt::format("holds the number {}", value.get_double());
      }
      return "";
    case json::kind::string:
      return isValidUtf8(value.get_string()) ? "" : "holds a string that is not UTF-8";
    case json::kind::array:
      if (depth + 1 > StoredJson::kMaxDepth) {
        return fmt::format("is nested deeper than {} levels", StoredJson::kMaxDepth);
      }
      for (const json::value& element : value.get_array()) {
        if (std::string why = refusal(element, depth + 1); !why.empty()) return why;
      }
      return "";
    case json::kind::object:
      if (depth + 1 > StoredJson::kMaxDepth) {
        return fmt::format("is nested deeper than {} levels", StoredJson::kMaxDepth);
      }
      for (const auto& member : value.get_object()) {
        if (!isValidUtf8(member.key())) return "holds a key that is not UTF-8";
        if (std::string why = refusal(member.value(), depth + 1); !why.empty()) return why;
      }
      return "";
    default:
      return "";
  }
}

size_t skipSpace(std::string_view text, size_t i) {
  while (i < text.size() &&
         (text[i] == ' ' || text[i] == '\t' || text[i] == '\n' || text[i] == '\r')) {
    ++i;
  }
  return i;
}

// The end of the string token that starts at i (just past its closing quote); npos when open.
size_t endOfString(std::string_view text, size_t i) {
  for (++i; i < text.size(); ++i) {
    if (text[i] == '\\') {
      ++i;
    } else if (text[i] == '"') {
      return i + 1;
    }
  }
  return std::string_view::npos;
}

// The end of the value token that starts at i: where, outside strings and brackets, a ',' or the
// closing bracket of the enclosing container comes. npos when the text ends first.
size_t endOfValue(std::string_view text, size_t i) {
  int depth = 0;
  while (i < text.size()) {
    char c = text[i];
    if (c == '"') {
      i = endOfString(text, i);
      if (i == std::string_view::npos) return i;
      continue;
    }
    if (c == '[' || c == '{') ++depth;
    if (c == ']' || c == '}') {
      if (depth == 0) return i;
      --depth;
    }
    if (c == ',' && depth == 0) return i;
    ++i;
  }
  return std::string_view::npos;
}

struct Member {
  std::string_view key;  // the key's token, quotes included; empty in an array
  std::string_view value;
};

// The members of the dictionary or array text holds; false when it is neither or they cannot be
// told apart.
bool splitMembers(std::string_view text, bool* isObject, std::vector<Member>* members) {
  size_t i = skipSpace(text, 0);
  if (i >= text.size() || (text[i] != '{' && text[i] != '[')) return false;
  *isObject = text[i] == '{';
  char close = *isObject ? '}' : ']';
  i = skipSpace(text, i + 1);
  if (i < text.size() && text[i] == close) return true;
  while (i < text.size()) {
    Member m;
    if (*isObject) {
      if (text[i] != '"') return false;
      size_t end = endOfString(text, i);
      if (end == std::string_view::npos) return false;
      m.key = text.substr(i, end - i);
      i = skipSpace(text, end);
      if (i >= text.size() || text[i] != ':') return false;
      i = skipSpace(text, i + 1);
    }
    size_t end = endOfValue(text, i);
    if (end == std::string_view::npos) return false;
    m.value = text.substr(i, end - i);
    members->push_back(m);
    if (text[end] != ',') return text[end] == close;
    i = skipSpace(text, end + 1);
  }
  return false;
}

std::optional<json::value> salvageAt(std::string_view text, int depth, int* dropped) {
  try {
    json::value value = ExactJson::parse(text);
    if (refusal(value, depth).empty()) return value;
  } catch (const Exception&) {
  }
  bool isObject = false;
  std::vector<Member> members;
  if (depth >= kSalvageLevels || !splitMembers(text, &isObject, &members)) {
    ++*dropped;
    return std::nullopt;
  }
  json::value out = isObject ? json::value(json::object()) : json::value(json::array());
  for (const Member& m : members) {
    std::optional<json::value> key;
    if (isObject) {
      try {
        key = ExactJson::parse(m.key);
      } catch (const Exception&) {
      }
      if (!key || !key->is_string() || !isValidUtf8(key->get_string())) {
        ++*dropped;
        continue;
      }
    }
    std::optional<json::value> value = salvageAt(m.value, depth + 1, dropped);
    if (!value) continue;
    if (isObject) {
      out.get_object()[key->get_string()] = std::move(*value);
    } else {
      out.get_array().push_back(std::move(*value));
    }
  }
  return out;
}

}  // namespace

std::string StoredJson::writeRefusal(const json::value& value) { return refusal(value, 0); }

std::optional<json::value> StoredJson::salvage(std::string_view text, int* dropped) {
  *dropped = 0;
  return salvageAt(text, 0, dropped);
}

}  // namespace zv
