// zvpush studio's door: what a request must carry before the studio answers it. Any web page open
// in the same browser can send requests to 127.0.0.1 (a form, or a "simple" text/plain fetch, goes
// out cross-site without asking first), and through DNS rebinding can even read the answers; so:
//  - every request names the studio in its Host: 127.0.0.1:PORT, localhost:PORT, [::1]:PORT, or
//    the address given with --host (any address literal when that is a wildcard; rebinding needs
//    a name): else 403;
//  - API requests (/api/..., which run a flow or read the examples, and /files/...) carry the run's
//    token in X-Studio-Token (a /files/ URL may carry it as ?token= instead, for the downloads of
//    the studio's own flow): else 403;
//  - /api/ requests come with Content-Type: application/json, else 415, and an Origin, when they
//    carry one, that is the page's own ("http://" and the Host): else 403.
// The page itself and its script and style need nothing but the Host.
#pragma once

#include <httplib.h>

#include <optional>
#include <string>

namespace zvpush {

class StudioGuard {
 public:
  struct Refusal {
    int status;
    std::string reason;
  };

  // listenHost: the address bound; token: the secret the API needs (empty: none needed).
  StudioGuard(std::string listenHost, std::string token);

  // The port bound, once known: the Host a request must name.
  void setPort(int port) { port_ = port; }
  const std::string& token() const { return token_; }

  // Why the request is refused, or nullopt when it may go on.
  std::optional<Refusal> check(const httplib::Request& request) const;

  // 128 bits from the system's cryptographic random source, as 32 hexadecimal digits.
  static std::string newToken();

 private:
  bool knownHost(const std::string& host) const;
  bool rightToken(const httplib::Request& request, bool files) const;

  std::string listenHost_;
  std::string token_;
  int port_ = 0;
};

}  // namespace zvpush
