// zv::HttpUrlResponse is the answer to an HTTP request as a task's completion sees it: the status
// code, the header fields of the final response (after any redirects) and the URL that answered.
// description() is what a "%@" placeholder prints for it.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zentrova/Url.h"

namespace zv {

class HttpUrlResponse {
 public:
  using Headers = std::vector<std::pair<std::string, std::string>>;

  HttpUrlResponse(std::optional<Url> url, long statusCode, Headers headers);

  const std::optional<Url>& url() const { return url_; }
  long statusCode() const { return statusCode_; }
  // In the order received; a field that came several times appears once, its values joined by
  // ", ".
  const Headers& allHeaderFields() const { return headers_; }
  // The value of a header field, looked up without regard to case.
  std::optional<std::string> valueForHTTPHeaderField(std::string_view field) const;

  // "<HttpUrlResponse> { URL: <url> } { Status Code: <code>, Headers { "Name": "value", ... } }".
  std::string description() const;

 private:
  std::optional<Url> url_;
  long statusCode_;
  Headers headers_;
};

}  // namespace zv
