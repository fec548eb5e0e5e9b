#include "platform/net/HttpUrlResponse.h"

#include <fmt/format.h>

#include "platform/net/UrlRequest.h"

namespace zv {

HttpUrlResponse::HttpUrlResponse(std::optional<Url> url, long statusCode, Headers headers)
    : url_(std::move(url)), statusCode_(statusCode), headers_(std::move(headers)) {}

std::optional<std::string> HttpUrlResponse::valueForHTTPHeaderField(std::string_view field) const {
  for (const auto& [name, value] : headers_) {
    if (headerNameEquals(name, field)) return value;
  }
  return std::nullopt;
}

std::string HttpUrlResponse::description() const {
  std::string headers;
  for (const auto& [name, value] : headers_) {
    if (!headers.empty()) headers += ", ";
    headers += fmt::format("\"{}\": \"{}\"", name, value);
  }
  return fmt::format("<HttpUrlResponse> {{ URL: {} }} {{ Status Code: {}, Headers {{ {} }} }}",
                     url_ ? url_->absoluteString() : "(null)", statusCode_, headers);
}

}  // namespace zv
