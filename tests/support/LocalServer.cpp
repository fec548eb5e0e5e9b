#include "support/LocalServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <stdexcept>

#include "support/TestCertificates.h"

namespace zvtest {

namespace {
constexpr std::size_t kChunk = 64 * 1024;
constexpr std::size_t kWorkers = 32;

// Answers 1xx, 204 and 304 have no body; sending one would corrupt the next answer on the
// connection.
bool bodyAllowed(int status) { return status >= 200 && status != 204 && status != 304; }
}  // namespace

std::string LocalServer::Request::header(const std::string& name) const {
  auto it = headers.find(name);
  return it == headers.end() ? std::string() : it->second;
}

LocalServer::LocalServer(Scheme scheme) : scheme_(scheme) {
  if (scheme == Scheme::kHttps) {
    const TlsFiles& tls = testTlsFiles();
    server_ = std::make_unique<httplib::SSLServer>(tls.serverCert.c_str(), tls.serverKey.c_str());
  } else {
    server_ = std::make_unique<httplib::Server>();
  }
  if (!server_->is_valid()) throw std::runtime_error("test server: invalid TLS setup");
  // Each open connection holds a worker thread while it is kept alive, and stopping the server
  // waits for idle connections to time out: enough workers for many parallel clients, and a short
  // keep-alive so that a test ends quickly even when its client still holds a connection.
  server_->new_task_queue = [] { return new httplib::ThreadPool(kWorkers); };
  server_->set_tcp_nodelay(true);  // no delayed-acknowledgement stall on reused connections
  server_->set_keep_alive_timeout(1);
  server_->set_keep_alive_max_count(1000);
  installRoutes();
  port_ = server_->bind_to_any_port("127.0.0.1");
  if (port_ <= 0) throw std::runtime_error("test server: cannot bind");
  thread_ = std::thread([this] { server_->listen_after_bind(); });
  while (!server_->is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

LocalServer::~LocalServer() {
  {
    std::lock_guard lock(mutex_);
    stopping_ = true;
  }
  stopped_.notify_all();
  gate_.notify_all();
  server_->stop();
  thread_.join();
}

std::string LocalServer::url(std::string_view path) const {
  return (scheme_ == Scheme::kHttps ? "https://127.0.0.1:" : "http://127.0.0.1:") +
         std::to_string(port_) + std::string(path);
}

void LocalServer::addFile(const std::string& path, std::string body, std::string contentType,
                          std::chrono::milliseconds delay) {
  std::lock_guard lock(mutex_);
  files_[path] = {std::move(body), std::move(contentType), delay};
}

void LocalServer::setPostStatus(int status) {
  std::lock_guard lock(mutex_);
  postStatus_ = status;
}

void LocalServer::setPostRedirect(int status, std::string target) {
  std::lock_guard lock(mutex_);
  postRedirectStatus_ = status;
  postRedirectTarget_ = std::move(target);
}

void LocalServer::holdAnswers() {
  std::lock_guard lock(mutex_);
  held_ = true;
}

void LocalServer::releaseAnswers() {
  {
    std::lock_guard lock(mutex_);
    held_ = false;
  }
  gate_.notify_all();
}

void LocalServer::awaitHeldRequest() {
  std::unique_lock lock(mutex_);
  gate_.wait(lock, [this] { return waiting_ > 0 || stopping_; });
}

std::vector<LocalServer::Request> LocalServer::requests() const {
  std::lock_guard lock(mutex_);
  return requests_;
}

std::string LocalServer::patternBytes(std::size_t n) {
  std::string s(n, '\0');
  for (std::size_t i = 0; i < n; ++i) s[i] = static_cast<char>('a' + i % 26);
  return s;
}

int LocalServer::closedPort() {
  int fd = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in addr{};
  addr.sin_family = AF_INET;
  addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t len = sizeof addr;
  ::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
  ::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len);
  ::close(fd);
  return ntohs(addr.sin_port);
}

void LocalServer::record(const httplib::Request& req) {
  std::lock_guard lock(mutex_);
  requests_.push_back({req.method, req.path, req.body, req.headers, req.remote_port});
}

bool LocalServer::pause(std::chrono::milliseconds duration) {
  std::unique_lock lock(mutex_);
  return !stopped_.wait_for(lock, duration, [this] { return stopping_; });
}

void LocalServer::installRoutes() {
  using httplib::DataSink;
  using httplib::Request;
  using httplib::Response;
  server_->set_pre_routing_handler([this](const Request&, Response&) {
    std::unique_lock lock(mutex_);
    if (held_) {
      ++waiting_;
      gate_.notify_all();
      gate_.wait(lock, [this] { return !held_ || stopping_; });
      --waiting_;
    }
    return httplib::Server::HandlerResponse::Unhandled;
  });
  server_->Get(R"(/status/(\d+))", [this](const Request& req, Response& res) {
    record(req);
    res.status = std::stoi(req.matches[1]);
    if (bodyAllowed(res.status))
      res.set_content("status " + std::string(req.matches[1]), "text/plain");
  });
  server_->Get(R"(/slow/(\d+))", [this](const Request& req, Response& res) {
    record(req);
    pause(std::chrono::milliseconds(std::stol(req.matches[1])));
    res.set_content("slow", "text/plain");
  });
  auto bytes = [this](bool chunked, bool cut) {
    return [this, chunked, cut](const Request& req, Response& res) {
      record(req);
      std::size_t n = std::stoul(req.matches[1]);
      std::size_t sent = cut ? n / 2 : n;
      auto provider = [sent](std::size_t offset, DataSink& sink) {
        if (offset >= sent) return false;  // ends the connection before the promised length
        std::size_t len = std::min(kChunk, sent - offset);
        std::string piece(len, '\0');
        for (std::size_t i = 0; i < len; ++i) piece[i] = static_cast<char>('a' + (offset + i) % 26);
        return sink.write(piece.data(), piece.size());
      };
      if (chunked) {
        res.set_chunked_content_provider("application/octet-stream",
                                         [provider, n](std::size_t offset, DataSink& sink) {
                                           if (offset >= n) {
                                             sink.done();
                                             return true;
                                           }
                                           return provider(offset, sink);
                                         });
      } else {
        res.set_content_provider(n, "application/octet-stream",
                                 [provider](std::size_t offset, std::size_t, DataSink& sink) {
                                   return provider(offset, sink);
                                 });
      }
    };
  };
  server_->Get(R"(/bytes/(\d+))", bytes(false, false));
  server_->Get(R"(/chunked/(\d+))", bytes(true, false));
  server_->Get(R"(/cut/(\d+))", bytes(false, true));
  // A body without a length, one byte every <ms> milliseconds, until the server stops.
  server_->Get(R"(/trickle/(\d+))", [this](const Request& req, Response& res) {
    record(req);
    auto every = std::chrono::milliseconds(std::stol(req.matches[1]));
    res.set_chunked_content_provider(
        "application/octet-stream",
        [this, every](std::size_t, DataSink& sink) { return pause(every) && sink.write("x", 1); });
  });
  // Announces 100 GB, then sends one byte every <ms> milliseconds.
  server_->Get(R"(/huge/(\d+))", [this](const Request& req, Response& res) {
    record(req);
    auto every = std::chrono::milliseconds(std::stol(req.matches[1]));
    res.set_content_provider(100'000'000'000ull, "application/octet-stream",
                             [this, every](std::size_t, std::size_t, DataSink& sink) {
                               return pause(every) && sink.write("x", 1);
                             });
  });
  server_->Get("/to-file", [this](const Request& req, Response& res) {
    record(req);
    res.set_redirect("file:///etc/hostname");
  });
  server_->Get(R"(/redirect/(\d+))", [this](const Request& req, Response& res) {
    record(req);
    int k = std::stoi(req.matches[1]);
    if (k == 0) {
      res.set_content("redirected", "text/plain");
    } else {
      res.set_redirect("/redirect/" + std::to_string(k - 1));
    }
  });
  server_->Get(R"(/.*)", [this](const Request& req, Response& res) {
    record(req);
    File file;
    {
      std::lock_guard lock(mutex_);
      auto it = files_.find(req.path);
      if (it == files_.end()) {
        res.status = 404;
        return;
      }
      file = it->second;
    }
    if (file.delay.count() > 0 && !pause(file.delay)) return;
    res.set_content(file.body, file.contentType.c_str());
  });
  server_->Post(R"(/.*)", [this](const Request& req, Response& res) {
    record(req);
    std::lock_guard lock(mutex_);
    if (postRedirectStatus_ && req.path != postRedirectTarget_) {
      res.status = postRedirectStatus_;
      res.set_header("Location", postRedirectTarget_);
      return;
    }
    res.status = postStatus_;
    if (bodyAllowed(res.status)) res.set_content("ok", "text/plain");
  });
}

}  // namespace zvtest
