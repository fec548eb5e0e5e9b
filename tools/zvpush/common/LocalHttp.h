// What zvpush serve and zvpush studio share as local HTTP servers (on 127.0.0.1 unless told
// otherwise): files under a root (never outside it) with their content types, a port in use
// refused rather than shared, and serving until SIGINT or SIGTERM.
#pragma once

#include <httplib.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace zvpush {

class ArgParser;

// The --port option: a whole number from 0 (any free port) to 65535; throws UsageError otherwise.
int portOption(const ArgParser& parser, int fallback);

// The content type of a file from its extension.
std::string contentTypeFor(const std::filesystem::path& file);

// The regular file that a (decoded) request path names under root, or nullopt when there is none
// or when the path, after resolving ".." and symbolic links, leads outside root.
std::optional<std::filesystem::path> resolveUnderRoot(const std::filesystem::path& root,
                                                      const std::string& requestPath);

// Only SO_REUSEADDR (a restart binds at once): cpp-httplib's default adds SO_REUSEPORT, with which
// a second server binds the same port and the two share its requests unnoticed.
void refuseSharedPorts(httplib::Server& http);

// Binds 127.0.0.1:port (0: any free port), calls onBound with the port bound, prints "listening
// on SCHEME://127.0.0.1:PORT" and serves until SIGINT or SIGTERM, then calls onStop and stops the
// server. Returns the exit code: 0 after a signal, 1 (with one line on stderr) when the port
// cannot be bound.
int listenUntilSignalled(httplib::Server& http, int port, const std::string& scheme,
                         const std::function<void()>& onStop,
                         const std::function<void(int)>& onBound = {});

// Where a server listens and how its URL is printed.
struct ListenAddress {
  std::string host = "127.0.0.1";  // the address bound ("0.0.0.0", "::" or "::1" too)
  int port = 0;                    // 0: any free port
  std::string scheme = "http";
  std::string path;  // appended to the printed URL ("/?token=...")
};

// As above, on any address: prints "listening on SCHEME://HOST:PORT" + path (a wildcard address
// prints as 127.0.0.1, an IPv6 one in brackets).
int listenUntilSignalled(httplib::Server& http, const ListenAddress& address,
                         const std::function<void()>& onStop,
                         const std::function<void(int)>& onBound = {});

// How an address is written before ":PORT" in a URL or a Host header ("[::1]", "127.0.0.1").
std::string hostInUrl(const std::string& address);
// Whether the address listens on every interface ("0.0.0.0", "::").
bool isWildcardAddress(const std::string& address);

}  // namespace zvpush
