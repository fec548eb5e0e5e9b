#include "platform/foundation/ExactJson.h"

#include <fmt/format.h>

#include <algorithm>
#include <boost/json/basic_parser_impl.hpp>
#include <boost/json/value_stack.hpp>
#include <charconv>
#include <string>

#include "zentrova/Exception.h"

namespace zv {

namespace {

namespace json = boost::json;

// The handler of json::parser, except that floating-point numbers are converted from their text.
struct ExactHandler {
  static constexpr std::size_t max_object_size = json::object::max_size();
  static constexpr std::size_t max_array_size = json::array::max_size();
  static constexpr std::size_t max_key_size = json::string::max_size();
  static constexpr std::size_t max_string_size = json::string::max_size();

  json::value_stack st;
  std::string number;  // the text of a number split over several calls

  bool on_document_begin(json::error_code&) { return true; }
  bool on_document_end(json::error_code&) { return true; }
  bool on_object_begin(json::error_code&) { return true; }
  bool on_object_end(std::size_t n, json::error_code&) {
    st.push_object(n);
    return true;
  }
  bool on_array_begin(json::error_code&) { return true; }
  bool on_array_end(std::size_t n, json::error_code&) {
    st.push_array(n);
    return true;
  }
  bool on_key_part(json::string_view s, std::size_t, json::error_code&) {
    st.push_chars(s);
    return true;
  }
  bool on_key(json::string_view s, std::size_t, json::error_code&) {
    st.push_key(s);
    return true;
  }
  bool on_string_part(json::string_view s, std::size_t, json::error_code&) {
    st.push_chars(s);
    return true;
  }
  bool on_string(json::string_view s, std::size_t, json::error_code&) {
    st.push_string(s);
    return true;
  }
  bool on_number_part(json::string_view s, json::error_code&) {
    number.append(s.data(), s.size());
    return true;
  }
  bool on_int64(std::int64_t i, json::string_view, json::error_code&) {
    number.clear();
    st.push_int64(i);
    return true;
  }
  bool on_uint64(std::uint64_t u, json::string_view, json::error_code&) {
    number.clear();
    st.push_uint64(u);
    return true;
  }
  bool on_double(double d, json::string_view s, json::error_code&) {
    std::string_view text(s.data(), s.size());
    if (!number.empty()) {
      number.append(text);
      text = number;
    }
    double exact = 0;
    auto r = std::from_chars(text.data(), text.data() + text.size(), exact);
    st.push_double(r.ec == std::errc() ? exact : d);
    number.clear();
    return true;
  }
  bool on_bool(bool b, json::error_code&) {
    st.push_bool(b);
    return true;
  }
  bool on_null(json::error_code&) {
    st.push_null();
    return true;
  }
  bool on_comment_part(json::string_view, json::error_code&) { return true; }
  bool on_comment(json::string_view, json::error_code&) { return true; }
};

}  // namespace

json::value ExactJson::parse(std::string_view text) {
  json::parse_options options;
  options.max_depth = 512;
  json::basic_parser<ExactHandler> parser(options);
  parser.handler().st.reset();
  json::error_code ec;
  std::size_t used = parser.write_some(false, text.data(), text.size(), ec);
  if (!ec && used < text.size()) ec = json::error::extra_data;
  if (!ec && !parser.done()) ec = json::error::incomplete;
  if (ec) {
    // Where the reader stopped, as an editor counts: lines from 1, columns in bytes from 1.
    std::string_view read = text.substr(0, std::min(used, text.size()));
    std::size_t line = 1 + std::count(read.begin(), read.end(), '\n');
    std::size_t column = read.size() - (read.rfind('\n') + 1) + 1;
    throw Exception("JSONParseException", fmt::format("invalid JSON at line {}, column {}: {}",
                                                      line, column, ec.message()));
  }
  return parser.handler().st.release();
}

}  // namespace zv
