#include "JsonIO.h"

#include <fmt/format.h>

#include <boost/json/serialize.hpp>
#include <cmath>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

#include "ArgParser.h"
#include "platform/foundation/Exception.h"

namespace zvpush {

std::string readInput(const std::string& path) {
  if (path == "-") {
    return std::string(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) throw UsageError("cannot read " + path);
  std::ostringstream s;
  s << in.rdbuf();
  if (in.bad()) throw UsageError("cannot read " + path);
  return s.str();
}

zv::Value readJsonObject(const std::string& path) {
  std::string text = readInput(path);
  zv::Value v;
  try {
    v = zv::Value::parse(text);
  } catch (const zv::Exception& e) {
    throw UsageError(path + " is not JSON: " + e.reason());
  }
  if (!v.isObject()) throw UsageError(path + " is not a JSON object");
  return v;
}

namespace {

// Numbers with a fraction print in their shortest exact form ("0.5", "1"), not as Boost.JSON's
// exponent notation ("5E-1"); values JSON cannot hold print as null.
void writeScalar(std::ostream& out, const boost::json::value& v) {
  if (!v.is_double()) {
    out << boost::json::serialize(v);
  } else if (!std::isfinite(v.get_double())) {
    out << "null";
  } else {
    out << fmt::format("{}", v.get_double());
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
      out << pad << boost::json::serialize(boost::json::string(kv.key())) << ": ";
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

std::string pretty(const boost::json::value& v) {
  std::ostringstream out;
  write(out, v, 0);
  return out.str();
}

}  // namespace zvpush
