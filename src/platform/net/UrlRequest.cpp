#include "platform/net/UrlRequest.h"

#include <algorithm>
#include <cctype>

namespace zv {

bool headerNameEquals(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           return std::tolower(static_cast<unsigned char>(x)) ==
                  std::tolower(static_cast<unsigned char>(y));
         });
}

UrlRequest::UrlRequest(std::optional<Url> url, int cachePolicy, double timeoutInterval)
    : url_(std::move(url)), cachePolicy_(cachePolicy), timeoutInterval_(timeoutInterval) {}

void UrlRequest::setValue(std::string value, std::string_view field) {
  for (auto& [name, v] : headers_) {
    if (headerNameEquals(name, field)) {
      name = std::string(field);
      v = std::move(value);
      return;
    }
  }
  headers_.emplace_back(std::string(field), std::move(value));
}

std::optional<std::string> UrlRequest::valueForHTTPHeaderField(std::string_view field) const {
  for (const auto& [name, v] : headers_) {
    if (headerNameEquals(name, field)) return v;
  }
  return std::nullopt;
}

}  // namespace zv
