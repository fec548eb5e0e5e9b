#include "studio/StudioGuard.h"

#include <openssl/crypto.h>
#include <openssl/rand.h>

#include <algorithm>
#include <cctype>
#include <regex>
#include <stdexcept>

#include "common/LocalHttp.h"

namespace zvpush {

namespace {

std::string lower(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// "application/json; charset=utf-8" -> "application/json".
std::string mediaType(const std::string& contentType) {
  std::string type = contentType.substr(0, contentType.find(';'));
  type.erase(
      std::remove_if(type.begin(), type.end(), [](unsigned char c) { return std::isspace(c); }),
      type.end());
  return lower(type);
}

}  // namespace

StudioGuard::StudioGuard(std::string listenHost, std::string token)
    : listenHost_(std::move(listenHost)), token_(std::move(token)) {}

std::string StudioGuard::newToken() {
  unsigned char bytes[16];
  if (RAND_bytes(bytes, sizeof bytes) != 1) {
    throw std::runtime_error("the system's random source gave no token");
  }
  static const char digits[] = "0123456789abcdef";
  std::string out;
  for (unsigned char b : bytes) {
    out += digits[b >> 4];
    out += digits[b & 15];
  }
  return out;
}

bool StudioGuard::knownHost(const std::string& host) const {
  const std::string port = ":" + std::to_string(port_);
  if (!host.ends_with(port)) return false;
  const std::string name = host.substr(0, host.size() - port.size());
  if (name == "127.0.0.1" || name == "localhost" || name == "[::1]") return true;
  if (name == lower(hostInUrl(listenHost_))) return true;
  if (!isWildcardAddress(listenHost_)) return false;
  // On every interface: any address literal; a DNS name is what rebinding would send.
  static const std::regex literal(R"(\d{1,3}(\.\d{1,3}){3}|\[[0-9a-f:.]+\])");
  return std::regex_match(name, literal);
}

bool StudioGuard::rightToken(const httplib::Request& request, bool files) const {
  if (token_.empty()) return true;
  std::string given = request.get_header_value("X-Studio-Token");
  if (given.empty() && files) given = request.get_param_value("token");
  // The length is no secret; the digits are compared in constant time.
  return given.size() == token_.size() &&
         CRYPTO_memcmp(given.data(), token_.data(), token_.size()) == 0;
}

std::optional<StudioGuard::Refusal> StudioGuard::check(const httplib::Request& request) const {
  const std::string host = lower(request.get_header_value("Host"));
  if (!knownHost(host)) {
    return Refusal{
        403, "the Host \"" + request.get_header_value("Host") + "\" is not this studio's address"};
  }
  const bool api = request.path.starts_with("/api/");
  const bool files = request.path.starts_with("/files/");
  if (!api && !files) return std::nullopt;
  if (request.has_header("Origin") && request.get_header_value("Origin") != "http://" + host) {
    return Refusal{403, "requests from another page (Origin \"" +
                            request.get_header_value("Origin") + "\") are refused"};
  }
  if (!rightToken(request, files)) {
    return Refusal{403,
                   "the request needs the studio's token in X-Studio-Token (the ?token= "
                   "of the URL the studio printed)"};
  }
  if (api && mediaType(request.get_header_value("Content-Type")) != "application/json") {
    return Refusal{415, "API requests are sent as Content-Type: application/json"};
  }
  return std::nullopt;
}

}  // namespace zvpush
