// A TCP server on 127.0.0.1 and a free port that is not HTTP: to every connection it answers the
// same bytes once the request's head has arrived (or none at all), then closes. For endpoints
// that close without answering or answer garbage. Runs on its own thread from construction to
// destruction.
#pragma once

#include <atomic>
#include <string>
#include <thread>

namespace zvtest {

class RawReplyServer {
 public:
  explicit RawReplyServer(std::string reply);
  ~RawReplyServer();
  RawReplyServer(const RawReplyServer&) = delete;
  RawReplyServer& operator=(const RawReplyServer&) = delete;

  int port() const { return port_; }
  // How many connections have been answered.
  int answered() const { return answered_; }

 private:
  void serve();

  std::string reply_;
  int listener_ = -1;
  int port_ = 0;
  std::atomic<int> answered_{0};
  std::thread thread_;
};

}  // namespace zvtest
