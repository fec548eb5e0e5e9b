// zv::UrlRequest is one HTTP request for the URL session: the URL, the method, the header fields
// (sent in the order and the case in which they were set), the body, the cache policy and the
// timeout. A plain value: copy it, change it, hand it to UrlSession::dataTaskWithRequest.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "zentrova/Url.h"

namespace zv {

class UrlRequest {
 public:
  // The cache policies of a request, with the platform's values. The session keeps no URL cache,
  // so every policy loads from the network; the value is kept for callers that read it back.
  enum CachePolicy : int {
    kUseProtocolCachePolicy = 0,
    kReloadIgnoringLocalCacheData = 1,
  };
  static constexpr double kDefaultTimeoutInterval = 60.0;

  UrlRequest() = default;
  explicit UrlRequest(std::optional<Url> url, int cachePolicy = kUseProtocolCachePolicy,
                      double timeoutInterval = kDefaultTimeoutInterval);

  // A request without a URL fails when its task runs ("unsupported URL").
  const std::optional<Url>& url() const { return url_; }
  void setURL(std::optional<Url> url) { url_ = std::move(url); }

  // "GET" unless set.
  const std::string& httpMethod() const { return httpMethod_; }
  void setHTTPMethod(std::string method) { httpMethod_ = std::move(method); }

  // Sets a header field, replacing a field of the same name in any case; the name keeps the case
  // it is given in ("content-type" goes out in lower case).
  void setValue(std::string value, std::string_view field);
  // The value of a header field, looked up without regard to case.
  std::optional<std::string> valueForHTTPHeaderField(std::string_view field) const;
  const std::vector<std::pair<std::string, std::string>>& allHTTPHeaderFields() const {
    return headers_;
  }

  const std::optional<std::string>& httpBody() const { return body_; }
  void setHTTPBody(std::optional<std::string> body) { body_ = std::move(body); }

  int cachePolicy() const { return cachePolicy_; }
  void setCachePolicy(int policy) { cachePolicy_ = policy; }

  // Seconds the request may stay without any data moving before it fails with a time-out.
  double timeoutInterval() const { return timeoutInterval_; }
  void setTimeoutInterval(double seconds) { timeoutInterval_ = seconds; }

 private:
  std::optional<Url> url_;
  std::string httpMethod_ = "GET";
  std::vector<std::pair<std::string, std::string>> headers_;
  std::optional<std::string> body_;
  int cachePolicy_ = kUseProtocolCachePolicy;
  double timeoutInterval_ = kDefaultTimeoutInterval;
};

// Whether two header field names are equal without regard to ASCII case.
bool headerNameEquals(std::string_view a, std::string_view b);

}  // namespace zv
