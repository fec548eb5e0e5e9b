#include "reporting/ReportsBody.h"

#include <boost/json/serializer.hpp>
#include <cmath>

#include "zentrova/Exception.h"

namespace zv {

namespace json = boost::json;

namespace {

void requireFinite(const json::value& v);

void requireFinite(const json::object& o) {
  for (const auto& kv : o) requireFinite(kv.value());
}

void requireFinite(const json::value& v) {
  switch (v.kind()) {
    case json::kind::double_:
      if (std::isnan(v.get_double())) {
        throw Exception(Exception::kInvalidArgument, "Invalid number value (NaN) in JSON write");
      }
      if (std::isinf(v.get_double())) {
        throw Exception(Exception::kInvalidArgument,
                        "Invalid number value (infinite) in JSON write");
      }
      break;
    case json::kind::array:
      for (const auto& e : v.get_array()) requireFinite(e);
      break;
    case json::kind::object:
      requireFinite(v.get_object());
      break;
    default:
      break;
  }
}

template <class T>
void append(std::string& out, const T& v) {
  json::serializer writer;
  writer.reset(&v);
  while (!writer.done()) {
    std::size_t used = out.size();
    if (out.capacity() - used < 4096) out.reserve(std::max(out.capacity() * 2, used + 4096));
    out.resize(out.capacity());
    std::size_t written = writer.read(out.data() + used, out.size() - used).size();
    out.resize(used + written);
  }
}

}  // namespace

std::string ReportsBody::serialize(const Value& events, const json::object& queryParams,
                                   const std::optional<json::object>& identifiers) {
  const json::array& views = events.array();
  const json::value& viewsValue = events.json();
  requireFinite(viewsValue);
  requireFinite(queryParams);
  if (identifiers) requireFinite(*identifiers);

  std::string out;
  out += "{\"viewsCount\":";
  out += std::to_string(static_cast<long long>(views.size()));
  out += ",\"viewsInfo\":";
  append(out, viewsValue);
  out += ",\"query_params\":";
  append(out, queryParams);
  if (identifiers) {
    out += ",\"identifiers\":";
    append(out, *identifiers);
  }
  out += '}';
  return out;
}

}  // namespace zv
