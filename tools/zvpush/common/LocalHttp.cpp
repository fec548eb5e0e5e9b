#include "common/LocalHttp.h"

#include <pthread.h>
#include <signal.h>
#include <sys/socket.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <map>
#include <thread>

#include "common/ArgParser.h"
#include "common/Command.h"

namespace zvpush {

namespace fs = std::filesystem;

std::string contentTypeFor(const fs::path& file) {
  static const std::map<std::string, std::string> types = {
      {".png", "image/png"},  {".jpg", "image/jpeg"},      {".jpeg", "image/jpeg"},
      {".gif", "image/gif"},  {".webp", "image/webp"},     {".svg", "image/svg+xml"},
      {".mp3", "audio/mpeg"}, {".m4a", "audio/mp4"},       {".wav", "audio/wav"},
      {".mp4", "video/mp4"},  {".mov", "video/quicktime"}, {".json", "application/json"},
      {".txt", "text/plain"}, {".html", "text/html"},      {".css", "text/css"},
  };
  std::string ext = file.extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  auto it = types.find(ext);
  return it == types.end() ? "application/octet-stream" : it->second;
}

// The regular file that a (decoded) request path names under root, or nullopt when there is none
// or when the path, after resolving ".." and symbolic links, leads outside root.
std::optional<fs::path> resolveUnderRoot(const fs::path& root, const std::string& requestPath) {
  std::error_code ec;
  fs::path full = fs::weakly_canonical(root / fs::path(requestPath).relative_path(), ec);
  if (ec) return std::nullopt;
  auto [r, f] = std::mismatch(root.begin(), root.end(), full.begin(), full.end());
  if (r != root.end() || !fs::is_regular_file(full, ec)) return std::nullopt;
  return full;
}

int portOption(const ArgParser& parser, int fallback) {
  double port = parser.number("--port").value_or(fallback);
  if (port < 0 || port > 65535 || port != static_cast<int>(port)) {
    throw UsageError("--port needs a whole number from 0 to 65535");
  }
  return static_cast<int>(port);
}

void refuseSharedPorts(httplib::Server& http) {
  http.set_socket_options([](int sock) {
    int yes = 1;
    ::setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
  });
}

std::string hostInUrl(const std::string& address) {
  if (isWildcardAddress(address)) return "127.0.0.1";
  return address.find(':') != std::string::npos ? "[" + address + "]" : address;
}

bool isWildcardAddress(const std::string& address) {
  return address == "0.0.0.0" || address == "::" || address == "[::]";
}

int listenUntilSignalled(httplib::Server& http, int port, const std::string& scheme,
                         const std::function<void()>& onStop,
                         const std::function<void(int)>& onBound) {
  ListenAddress address;
  address.port = port;
  address.scheme = scheme;
  return listenUntilSignalled(http, address, onStop, onBound);
}

int listenUntilSignalled(httplib::Server& http, const ListenAddress& address,
                         const std::function<void()>& onStop,
                         const std::function<void(int)>& onBound) {
  const int port = address.port;
  // SIGINT and SIGTERM are taken by one waiting thread (every other thread blocks them), which
  // stops the server; writing to a client that went away must not end the process either.
  sigset_t stopSignals;
  sigemptyset(&stopSignals);
  sigaddset(&stopSignals, SIGINT);
  sigaddset(&stopSignals, SIGTERM);
  pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
  std::signal(SIGPIPE, SIG_IGN);

  errno = 0;
  std::string host = address.host == "[::]" ? "::" : address.host;
  int bound = port > 0 ? (http.bind_to_port(host.c_str(), port) ? port : -1)
                       : http.bind_to_any_port(host.c_str());
  if (bound <= 0) {
    int error = errno;
    std::string why = error == EADDRINUSE ? "address already in use"
                      : error != 0        ? std::strerror(error)
                                          : "the socket could not be bound";
    std::string named = host.find(':') != std::string::npos ? "[" + host + "]" : host;
    std::fprintf(stderr, "zvpush: cannot listen on %s:%d: %s\n", named.c_str(),
                 static_cast<int>(port), why.c_str());
    return kFailure;
  }
  if (onBound) onBound(bound);
  std::cout << "listening on " << address.scheme << "://" << hostInUrl(host) << ":" << bound
            << address.path << std::endl;

  std::atomic<bool> signalled{false};
  std::thread waiter([&] {
    int signal = 0;
    sigwait(&stopSignals, &signal);
    signalled = true;
    onStop();
    http.stop();
  });
  http.listen_after_bind();
  if (!signalled) pthread_kill(waiter.native_handle(), SIGTERM);
  waiter.join();
  return kOk;
}

}  // namespace zvpush
