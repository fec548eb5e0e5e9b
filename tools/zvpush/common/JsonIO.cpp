#include "common/JsonIO.h"

#include <fmt/format.h>

#include <boost/json/serialize.hpp>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

#include "common/ArgParser.h"
#include "zentrova/Exception.h"

namespace zvpush {

std::string readInput(const std::string& path) {
  if (path == "-") {
    return std::string(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
  }
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) throw InputError(path + " is a directory");
  errno = 0;
  std::ifstream in(path, std::ios::binary);
  if (!in) throw InputError("cannot read " + path + ": " + std::strerror(errno ? errno : ENOENT));
  std::ostringstream s;
  s << in.rdbuf();
  if (in.bad()) throw InputError("cannot read " + path + ": " + std::strerror(errno ? errno : EIO));
  return s.str();
}

zv::Value readJsonObject(const std::string& path) {
  std::string text = readInput(path);
  zv::Value v;
  try {
    v = zv::Value::parse(text);
  } catch (const zv::Exception& e) {
    throw InputError(path + ": " + e.reason());
  }
  if (!v.isObject()) throw InputError(path + " is not a JSON object");
  return v;
}

namespace {

// The length of the well-formed UTF-8 sequence at the start of s, or 0 when it is not one.
size_t utf8SequenceLength(std::string_view s) {
  auto byte = [&](size_t i) { return static_cast<unsigned char>(s[i]); };
  auto continuation = [&](size_t i) { return i < s.size() && (byte(i) & 0xC0) == 0x80; };
  unsigned char b = byte(0);
  if (b < 0x80) return 1;
  size_t n = b >= 0xC2 && b <= 0xDF   ? 2
             : b >= 0xE0 && b <= 0xEF ? 3
             : b >= 0xF0 && b <= 0xF4 ? 4
                                      : 0;
  if (n == 0) return 0;
  for (size_t i = 1; i < n; ++i) {
    if (!continuation(i)) return 0;
  }
  // No overlong forms, no surrogates, nothing past U+10FFFF.
  if (n == 3 && ((b == 0xE0 && byte(1) < 0xA0) || (b == 0xED && byte(1) > 0x9F))) return 0;
  if (n == 4 && ((b == 0xF0 && byte(1) < 0x90) || (b == 0xF4 && byte(1) > 0x8F))) return 0;
  return n;
}

// A string as a JSON string literal. Bytes that are not UTF-8 print as U+FFFD, so that what zvpush
// prints is always valid JSON, whatever the payload or the store holds.
std::string quoted(std::string_view s) {
  std::string clean;
  clean.reserve(s.size());
  while (!s.empty()) {
    size_t n = utf8SequenceLength(s);
    if (n == 0) {
      clean += "\xEF\xBF\xBD";
      n = 1;
    } else {
      clean.append(s.substr(0, n));
    }
    s.remove_prefix(n);
  }
  return boost::json::serialize(boost::json::string(clean));
}

// Numbers with a fraction print in their shortest exact form ("0.5", "1"), not as Boost.JSON's
// exponent notation ("5E-1"); values JSON cannot hold print as null.
void writeScalar(std::ostream& out, const boost::json::value& v) {
  if (v.is_string()) {
    out << quoted(v.get_string());
  } else if (!v.is_double()) {
    out << boost::json::serialize(v);
  } else if (!std::isfinite(v.get_double())) {
    out << "null";
  } else {
    out << fmt::format("{}", v.get_double());
  }
}

// One line, no spaces.
void writeCompact(std::ostream& out, const boost::json::value& v) {
  if (v.is_object()) {
    out << "{";
    bool first = true;
    for (const auto& kv : v.get_object()) {
      if (!first) out << ",";
      first = false;
      out << quoted(kv.key()) << ":";
      writeCompact(out, kv.value());
    }
    out << "}";
  } else if (v.is_array()) {
    out << "[";
    bool first = true;
    for (const auto& e : v.get_array()) {
      if (!first) out << ",";
      first = false;
      writeCompact(out, e);
    }
    out << "]";
  } else {
    writeScalar(out, v);
  }
}

void write(std::ostream& out, const boost::json::value& v, int indent) {
  std::string pad(indent + 2, ' ');
  if (v.is_object()) {
    const auto& o = v.get_object();
    if (o.empty()) {
      out << "{}";
      return;
    }
    out << "{\n";
    bool first = true;
    for (const auto& kv : o) {
      if (!first) out << ",\n";
      first = false;
      out << pad << quoted(kv.key()) << ": ";
      write(out, kv.value(), indent + 2);
    }
    out << "\n" << std::string(indent, ' ') << "}";
  } else if (v.is_array()) {
    const auto& a = v.get_array();
    if (a.empty()) {
      out << "[]";
      return;
    }
    bool scalars = true;
    for (const auto& e : a) scalars = scalars && !e.is_object() && !e.is_array();
    if (scalars && a.size() <= 8) {
      out << "[";
      for (size_t i = 0; i < a.size(); ++i) {
        if (i > 0) out << ", ";
        writeScalar(out, a[i]);
      }
      out << "]";
      return;
    }
    out << "[\n";
    bool first = true;
    for (const auto& e : a) {
      if (!first) out << ",\n";
      first = false;
      out << pad;
      write(out, e, indent + 2);
    }
    out << "\n" << std::string(indent, ' ') << "]";
  } else {
    writeScalar(out, v);
  }
}

}  // namespace

namespace {
bool compactOutput = false;
}  // namespace

void setCompact(bool compact) { compactOutput = compact; }
bool isCompact() { return compactOutput; }

std::string pretty(const boost::json::value& v) {
  std::ostringstream out;
  if (compactOutput) {
    writeCompact(out, v);
  } else {
    write(out, v, 0);
  }
  return out.str();
}

}  // namespace zvpush
