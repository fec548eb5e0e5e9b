// zvpush serve: a local media server and reports endpoint for trying payloads. GET serves the
// files under --root (never anything outside it, symbolic links included); POST to any path (the
// reports path is /v2/report/add/<app key>) answers 200 and appends {"appKey", "path", "body"} as
// one JSON line to --reports FILE or to stdout. The first line printed is "listening on URL"; each
// request is logged on stderr. A port already in use is an error (exit 1), never shared. SIGINT
// and SIGTERM stop the server; the exit code is then 0.
#ifdef ZVPUSH_CONTENT
#include <httplib.h>

#include "common/LocalHttp.h"
#endif

#include <algorithm>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <cctype>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <mutex>

#include "common/ArgParser.h"
#include "common/Command.h"
#include "common/ContentProgram.h"
#include "platform/foundation/Clock.h"
#include "zentrova/Url.h"

namespace zvpush {

namespace {

#ifdef ZVPUSH_CONTENT

namespace fs = std::filesystem;
namespace json = boost::json;

// Enough workers for a notification's parallel downloads over kept-alive connections.
constexpr std::size_t kWorkers = 32;
constexpr std::size_t kChunk = 64 * 1024;

// One line of the reports log: the body as parsed JSON, or as text when it is not JSON.
std::string reportLine(const httplib::Request& req) {
  json::object line;
  line["appKey"] = req.has_header("X-ZENTROVA-APP-KEY")
                       ? json::value(req.get_header_value("X-ZENTROVA-APP-KEY"))
                       : json::value(nullptr);
  line["path"] = req.path;
  std::error_code ec;
  json::value body = json::parse(req.body, ec);
  if (ec) body = zv::isValidUtf8(req.body) ? json::value(req.body) : json::value(nullptr);
  line["body"] = std::move(body);
  return json::serialize(line) + "\n";
}

class Server {
 public:
  using Clock = std::chrono::steady_clock;

  Server(fs::path root, std::ostream& reports, std::chrono::milliseconds latency)
      : root_(std::move(root)), reports_(reports), latency_(latency) {}

  void install(httplib::Server& http) {
    http.new_task_queue = [] { return new httplib::ThreadPool(kWorkers); };
    http.set_keep_alive_timeout(2);
    // Headers and body go out in separate writes: without this, a reused connection waits for the
    // client's delayed acknowledgement (about 40 ms) before the body.
    http.set_tcp_nodelay(true);
    refuseSharedPorts(http);
    // One line on stderr per request: method, path, status, body bytes and time taken. A request
    // is handled on one worker thread from routing to logging, so its start time is kept there.
    http.set_logger([](const httplib::Request& req, const httplib::Response& res) {
      auto took = std::chrono::duration<double, std::milli>(Clock::now() - requestStart()).count();
      std::size_t bytes = res.content_length_ > 0 ? res.content_length_ : res.body.size();
      std::fprintf(stderr, "%s %s %d %zu bytes %.1f ms\n", req.method.c_str(), req.path.c_str(),
                   res.status, bytes, took);
    });
    http.set_pre_routing_handler([this](const httplib::Request&, httplib::Response&) {
      requestStart() = Clock::now();
      if (latency_.count() > 0) {
        std::unique_lock lock(mutex_);
        stopCondition_.wait_for(lock, latency_, [this] { return stopping_; });
      }
      return httplib::Server::HandlerResponse::Unhandled;
    });
    http.Get(R"(/.*)",
             [this](const httplib::Request& req, httplib::Response& res) { serveFile(req, res); });
    http.Post(R"(/.*)", [this](const httplib::Request& req, httplib::Response& res) {
      {
        std::lock_guard lock(mutex_);
        reports_ << reportLine(req) << std::flush;
      }
      res.set_content("{\"status\":\"ok\"}", "application/json");
    });
  }

  void stop() {
    std::lock_guard lock(mutex_);
    stopping_ = true;
    stopCondition_.notify_all();
  }

 private:
  static Clock::time_point& requestStart() {
    thread_local Clock::time_point start;
    return start;
  }

  void serveFile(const httplib::Request& req, httplib::Response& res) {
    std::optional<fs::path> file = resolveUnderRoot(root_, req.path);
    if (!file) {
      res.status = 404;
      res.set_content("not found\n", "text/plain");
      return;
    }
    std::error_code ec;
    std::size_t size = fs::file_size(*file, ec);
    auto in = std::make_shared<std::ifstream>(*file, std::ios::binary);
    if (ec || !*in) {
      res.status = 403;
      res.set_content("cannot read\n", "text/plain");
      return;
    }
    res.set_content_provider(size, contentTypeFor(*file),
                             [in](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                               std::string buffer(std::min(length, kChunk), '\0');
                               in->seekg(static_cast<std::streamoff>(offset));
                               in->read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
                               std::streamsize got = in->gcount();
                               return got > 0 &&
                                      sink.write(buffer.data(), static_cast<std::size_t>(got));
                             });
  }

  fs::path root_;
  std::ostream& reports_;
  std::chrono::milliseconds latency_;
  std::mutex mutex_;
  std::condition_variable stopCondition_;
  bool stopping_ = false;
};

int run(const Args& args) {
  ArgParser parser({"--root", "--port", "--tls-cert", "--tls-key", "--latency", "--reports"}, {});
  parser.parse(args);
  if (!parser.positional().empty())
    throw UsageError("unexpected argument " + parser.positional()[0]);
  auto rootArg = parser.value("--root");
  if (!rootArg) throw UsageError("--root is required");
  std::error_code ec;
  fs::path root = fs::canonical(*rootArg, ec);
  if (ec || !fs::is_directory(root)) throw UsageError(*rootArg + " is not a directory");
  int port = portOption(parser, 0);
  double latency = parser.number("--latency").value_or(0);
  if (latency < 0) throw UsageError("--latency needs a number of milliseconds, 0 or more");
  auto cert = parser.value("--tls-cert");
  auto key = parser.value("--tls-key");
  if (cert.has_value() != key.has_value()) {
    throw UsageError("--tls-cert and --tls-key go together");
  }

  std::ofstream reportsFile;
  if (auto path = parser.value("--reports")) {
    reportsFile.open(*path, std::ios::app);
    if (!reportsFile) throw UsageError("cannot write " + *path);
  }
  std::ostream& reports = reportsFile.is_open() ? reportsFile : std::cout;

  std::unique_ptr<httplib::Server> http;
  if (cert) {
    http = std::make_unique<httplib::SSLServer>(cert->c_str(), key->c_str());
    if (!http->is_valid()) throw UsageError("cannot load the TLS certificate or key");
  } else {
    http = std::make_unique<httplib::Server>();
  }
  Server server(root, reports, std::chrono::milliseconds(static_cast<long>(latency)));
  server.install(*http);

  return listenUntilSignalled(*http, port, cert ? "https" : "http", [&] { server.stop(); });
}

#else
// The server is a tool for trying payloads, not part of the extensions: it lives in zvpush-content
// so that zvpush, in which the service extension runs, does not load the HTTP server library.
int run(const Args& args) { return runContentProgram("serve", args); }
#endif

}  // namespace

ZVPUSH_COMMAND("serve", "a local media server and reports endpoint for trying payloads",
               "serve --root DIR [--port N] [--tls-cert PEM --tls-key PEM] [--latency MS] "
               "[--reports FILE]",
               run,
               "  --root DIR       the files served by GET (required)\n"
               "  --port N         the port on 127.0.0.1 (0: any free port)\n"
               "  --tls-cert PEM --tls-key PEM  serve HTTPS with this certificate and key\n"
               "  --latency MS     delay every answer (0)\n"
               "  --reports FILE   append each report POST as a JSON line (default: stdout)\n"
               "Each request is logged on stderr: method, path, status, bytes, time. A port\n"
               "already in use is refused (exit 1).\n");

}  // namespace zvpush
