// A local HTTP or HTTPS server for tests, on 127.0.0.1 and a free port, running on its own
// threads from construction to destruction (HTTPS uses the run-time certificates of
// TestCertificates.h; trust testTlsFiles().caCert to reach it). Every request is recorded.
//
// Canned answers:
//   GET  /status/<code>     that status, body "status <code>" (none for 204 and 304)
//   GET  /slow/<ms>         200 "slow" after <ms> milliseconds
//   GET  /bytes/<n>         n bytes of a repeating pattern (patternBytes), with a length
//   GET  /chunked/<n>       the same bytes, chunked (no length announced)
//   GET  /cut/<n>           announces n bytes, sends half of them, then drops the connection
//   GET  /trickle/<ms>      a body without a length, one byte every ms milliseconds, for ever
//   GET  /huge/<ms>         announces 100 GB, then one byte every ms milliseconds
//   GET  /to-file           302 to file:///etc/hostname
//   GET  /redirect/<k>      302 to /redirect/<k-1>; /redirect/0 answers 200 "redirected"
//   GET  <a path from addFile>  that file's body and content type, after the file's own delay
//   POST <any path>         the status set by setPostStatus (200 unless set), body "ok"
//                           (none for 204 and 304); once setPostRedirect is called, every POST
//                           but one to its target answers its status with the target as Location
// Anything else: 404.
//
// The listening socket's backlog is small (5, fixed in the library): a burst of many more new
// connections at once may see some of them retried a second later by the kernel.
#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace zvtest {

class LocalServer {
 public:
  enum class Scheme { kHttp, kHttps };

  struct Request {
    std::string method;
    std::string path;
    std::string body;
    httplib::Headers headers;  // names without regard to case
    int remotePort = 0;        // the client's port: equal for requests on one connection
    std::string header(const std::string& name) const;
  };

  explicit LocalServer(Scheme scheme = Scheme::kHttp);
  ~LocalServer();
  LocalServer(const LocalServer&) = delete;
  LocalServer& operator=(const LocalServer&) = delete;

  int port() const { return port_; }
  // "http://127.0.0.1:<port><path>" (https for an HTTPS server).
  std::string url(std::string_view path = "/") const;

  void addFile(const std::string& path, std::string body,
               std::string contentType = "application/octet-stream",
               std::chrono::milliseconds delay = std::chrono::milliseconds(0));
  void setPostStatus(int status);
  // While held, every request waits unanswered at a gate; releasing lets them through.
  void holdAnswers();
  void releaseAnswers();
  // Blocks until a request waits at the gate.
  void awaitHeldRequest();
  void setPostRedirect(int status, std::string target);
  std::vector<Request> requests() const;

  // The bytes /bytes/<n> and /chunked/<n> send.
  static std::string patternBytes(std::size_t n);
  // A port on 127.0.0.1 where nothing listens (connections are refused).
  static int closedPort();

 private:
  void installRoutes();
  void record(const httplib::Request& req);
  // Waits, returning early (false) when the server stops.
  bool pause(std::chrono::milliseconds duration);

  Scheme scheme_;
  std::unique_ptr<httplib::Server> server_;
  std::thread thread_;
  int port_ = 0;

  mutable std::mutex mutex_;
  std::condition_variable stopped_;
  bool stopping_ = false;
  int postStatus_ = 200;
  bool held_ = false;
  int waiting_ = 0;
  std::condition_variable gate_;
  int postRedirectStatus_ = 0;
  std::string postRedirectTarget_;
  struct File {
    std::string body;
    std::string contentType;
    std::chrono::milliseconds delay;
  };
  std::map<std::string, File> files_;
  std::vector<Request> requests_;
};

}  // namespace zvtest
