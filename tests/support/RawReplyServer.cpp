#include "support/RawReplyServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

namespace zvtest {

RawReplyServer::RawReplyServer(std::string reply) : reply_(std::move(reply)) {
  listener_ = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t length = sizeof address;
  if (listener_ < 0 || ::bind(listener_, reinterpret_cast<sockaddr*>(&address), length) != 0 ||
      ::listen(listener_, 16) != 0 ||
      ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
    throw std::runtime_error("RawReplyServer: cannot listen");
  }
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { serve(); });
}

RawReplyServer::~RawReplyServer() {
  ::shutdown(listener_, SHUT_RDWR);  // wakes accept()
  thread_.join();
  ::close(listener_);
}

void RawReplyServer::serve() {
  while (true) {
    int connection = ::accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (connection < 0) return;
    std::string head;
    char buffer[4096];
    while (head.find("\r\n\r\n") == std::string::npos) {
      ssize_t n = ::recv(connection, buffer, sizeof buffer, 0);
      if (n <= 0) break;
      head.append(buffer, static_cast<std::size_t>(n));
    }
    if (!reply_.empty()) (void)::send(connection, reply_.data(), reply_.size(), MSG_NOSIGNAL);
    ::close(connection);
    ++answered_;
  }
}

}  // namespace zvtest
