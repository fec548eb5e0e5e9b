#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>
#include <tuple>

#include "platform/net/UrlSession.h"
#include "support/LocalServer.h"
#include "support/ProcessStateReset.h"
#include "support/TestCertificates.h"
#include "support/TestSupport.h"
#include "zentrova/Platform.h"

namespace {

using zv::Platform;
using zv::Url;
using zv::UrlRequest;
using zv::UrlSession;
using zvtest::LocalServer;

namespace fs = std::filesystem;

struct Outcome {
  std::optional<std::string> body;  // a data task's body, or the downloaded file's content
  std::optional<Url> location;
  std::shared_ptr<zv::HttpUrlResponse> response;
  std::optional<zv::Error> error;
  long code() const { return error ? error->code : 0; }
};

Outcome await(std::future<Outcome> f) {
  if (f.wait_for(std::chrono::seconds(20)) != std::future_status::ready) {
    ADD_FAILURE() << "completion never ran";
    return {};
  }
  return f.get();
}

Outcome fetch(UrlSession& session, UrlRequest request) {
  auto done = std::make_shared<std::promise<Outcome>>();
  session
      .dataTaskWithRequest(
          std::move(request),
          [done](auto body, auto response, auto error) {
            done->set_value({std::move(body), std::nullopt, std::move(response), std::move(error)});
          })
      ->resume();
  return await(done->get_future());
}

Outcome download(UrlSession& session, const std::string& url,
                 std::optional<std::uint64_t> max = std::nullopt) {
  auto done = std::make_shared<std::promise<Outcome>>();
  session
      .downloadTaskWithURL(
          *Url::parse(url),
          [done](auto location, auto response, auto error) {
            Outcome o{std::nullopt, location, std::move(response), std::move(error)};
            if (location && fs::exists(location->filePath()))
              o.body = zvtest::readFile(location->filePath());
            done->set_value(std::move(o));
          },
          max)
      ->resume();
  Outcome o = await(done->get_future());
  // The file is removed once the completion has returned: a later completion of the same session
  // runs only after that.
  fetch(session, UrlRequest());
  return o;
}

class UrlSessionTest : public ::testing::TestWithParam<LocalServer::Scheme> {
 protected:
  zvtest::TempDir tmp;
  LocalServer server{GetParam()};
  std::shared_ptr<UrlSession> session = UrlSession::sessionWithConfiguration(
      {.extraCaFile = zvtest::testTlsFiles().caCert.string(), .temporaryDirectory = tmp.path()});
};

TEST_P(UrlSessionTest, DataTaskOutcomes) {
  struct Case {
    std::string path;
    long status;
    std::optional<std::string> body;
    long error;
  } cases[] = {
      {"/status/200", 200, "status 200", 0},
      {"/status/404", 404, "status 404", 0},
      {"/redirect/3", 200, "redirected", 0},
      {"/bytes/1000000", 200, LocalServer::patternBytes(1000000), 0},
      {"/cut/100000", 200, std::nullopt, 18},  // the connection dropped in the middle of the body
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path);
    Outcome o = fetch(*session, UrlRequest(Url::parse(server.url(c.path))));
    EXPECT_EQ(o.code(), c.error);
    EXPECT_EQ(o.body, c.body);
    ASSERT_TRUE(o.response);
    EXPECT_EQ(o.response->statusCode(), c.status);
  }
  Outcome redirected = fetch(*session, UrlRequest(Url::parse(server.url("/redirect/2"))));
  EXPECT_EQ(redirected.response->url()->absoluteString(), server.url("/redirect/0"));
  // One connection carried everything up to the dropped one, a second one the rest.
  std::set<int> connections;
  for (const auto& r : server.requests()) connections.insert(r.remotePort);
  EXPECT_EQ(connections.size(), 2u);
}

TEST_P(UrlSessionTest, DownloadFileExistsOnlyDuringTheCompletionAndWithinTheLimit) {
  struct Case {
    std::string path;
    std::optional<std::uint64_t> max;
    long error;
  } cases[] = {{"/bytes/300000", std::nullopt, 0},
               {"/bytes/5000", 5000, 0},
               {"/bytes/5000", 1000, 63},
               {"/chunked/5000", 4999, 63}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path + " " + std::to_string(c.max.value_or(0)));
    Outcome o = download(*session, server.url(c.path), c.max);
    EXPECT_EQ(o.code(), c.error);
    EXPECT_EQ(o.location.has_value(), c.error == 0);
    if (o.location) {
      EXPECT_EQ(o.location->filePath().parent_path(), tmp.path());
      EXPECT_EQ(o.body, LocalServer::patternBytes(std::stoul(c.path.substr(7))));
    }
    EXPECT_TRUE(fs::is_empty(tmp.path()));  // removed once the completion returned
  }
}

INSTANTIATE_TEST_SUITE_P(HttpAndHttps, UrlSessionTest,
                         ::testing::Values(LocalServer::Scheme::kHttp,
                                           LocalServer::Scheme::kHttps));

class UrlSessionFailureTest : public ::testing::Test {
 protected:
  zvtest::ProcessStateReset state;
  LocalServer server;
  std::shared_ptr<UrlSession> session = UrlSession::sessionWithConfiguration({});
};

TEST_F(UrlSessionFailureTest, TransportErrorsCarryCurlCodes) {
  LocalServer https(LocalServer::Scheme::kHttps);
  std::string refused = "http://127.0.0.1:" + std::to_string(LocalServer::closedPort()) + "/";
  struct Case {
    std::optional<std::string> url;
    std::string extraCa;
    long error;
    double timeout = 60;
  } cases[] = {
      {refused, "", 7},                                   // connection refused
      {"ftp://127.0.0.1/file", "", 1},                    // not a web URL
      {"file:///etc/hostname", "", 1},                    // nor is a local file
      {std::nullopt, "", 3},                              // no URL at all
      {https.url("/status/200"), "", 60},                 // certificate not trusted
      {https.url("/status/200"), "/no/such/ca.pem", 77},  // extra CA file missing
      {server.url("/slow/5000"), "", 28, 0.2},            // no data within the session's time-out
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.url.value_or("(no URL)"));
    // A fresh session each time: no TLS session or connection left from before.
    auto fresh = UrlSession::sessionWithConfiguration(
        {.timeoutIntervalForRequest = c.timeout, .extraCaFile = c.extraCa});
    Outcome o = fetch(*fresh, UrlRequest(c.url ? Url::parse(*c.url) : std::nullopt));
    EXPECT_EQ(o.code(), c.error);
    EXPECT_EQ(o.error->domain, zv::Error::kUrlDomain);
    EXPECT_FALSE(o.error->localizedDescription.empty());
    EXPECT_FALSE(o.body);
  }
}

TEST_F(UrlSessionFailureTest, CompletionsRunOneAtATimeOnOneThread) {
  constexpr int kTasks = 8;
  std::atomic<bool> inside{false};
  std::atomic<bool> overlapped{false};
  std::vector<std::thread::id> threads;  // touched only by completions: no lock, by design
  auto done = std::make_shared<std::promise<void>>();
  for (int i = 0; i < kTasks; ++i) {
    std::string path = i % 2 ? "/slow/" + std::to_string(i * 5) : "/bytes/" + std::to_string(i);
    session
        ->dataTaskWithRequest(UrlRequest(Url::parse(server.url(path))),
                              [&, done](auto...) {
                                if (inside.exchange(true)) overlapped = true;
                                for (int spin = 0; spin < 100; ++spin) std::this_thread::yield();
                                EXPECT_TRUE(session->isDelegateThread());
                                threads.push_back(std::this_thread::get_id());
                                inside = false;
                                if (threads.size() == kTasks) done->set_value();
                              })
        ->resume();
  }
  ASSERT_EQ(done->get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
  EXPECT_FALSE(overlapped);
  EXPECT_NE(threads[0], std::this_thread::get_id());
  EXPECT_EQ(std::count(threads.begin(), threads.end(), threads[0]), kTasks);
}

TEST_F(UrlSessionFailureTest, ThrowingCompletionIsContainedAndLaterTasksRun) {
  zvtest::LogCapture log;
  std::promise<void> throwing;
  session
      ->dataTaskWithRequest(UrlRequest(Url::parse(server.url("/status/200"))),
                            [&](auto...) {
                              throwing.set_value();
                              throw std::runtime_error("boom");
                            })
      ->resume();
  throwing.get_future().wait();
  Outcome o = fetch(*session, UrlRequest(Url::parse(server.url("/status/201"))));
  EXPECT_EQ(o.response->statusCode(), 201);
  EXPECT_EQ(log.system(),
            std::vector<std::string>{"Uncaught exception in a URL session completion: boom"});
}

TEST_F(UrlSessionFailureTest, DestroyedSessionDropsRunningTasks) {
  std::atomic<bool> called{false};
  server.holdAnswers();
  session
      ->dataTaskWithRequest(UrlRequest(Url::parse(server.url("/bytes/10"))),
                            [&](auto...) { called = true; })
      ->resume();
  server.awaitHeldRequest();  // the transfer is under way
  session.reset();
  server.releaseAnswers();
  EXPECT_FALSE(called);
}

// A cancelled task completes once, with the cancelled error: while it waits for its answer, or
// when resumed after the cancel.
// An observer in the configuration sees each task's body arrive and its end, just before the
// completion: the status, the bytes and the error a tool would explain.
TEST(UrlSessionObserverTest, SeesProgressAndTheEndOfEveryTask) {
  struct Recorder : zv::UrlSessionObserver {
    std::mutex mutex;
    std::condition_variable changed;
    std::int64_t progressed = 0;  // of the never-ending body
    std::vector<std::tuple<std::string, long, std::int64_t, long>>
        ends;  // path, status, bytes, error
    void taskProgressed(const zv::UrlSessionTask& task, std::int64_t received,
                        std::int64_t) override {
      std::lock_guard lock(mutex);
      if (task.originalRequest().url()->path() == "/trickle/1") progressed = received;
      changed.notify_all();
    }
    void taskFinished(const zv::UrlSessionTask& task, long status, std::int64_t received,
                      const std::optional<zv::Error>& error) override {
      std::lock_guard lock(mutex);
      ends.emplace_back(task.originalRequest().url()->path(), status, received,
                        error ? error->code : 0);
    }
  };
  zvtest::TempDir tmp;
  LocalServer server;
  auto recorder = std::make_shared<Recorder>();
  auto session = UrlSession::sessionWithConfiguration(
      {.temporaryDirectory = tmp.path(), .observer = recorder});
  download(*session, server.url("/bytes/300000"));
  download(*session, server.url("/status/404"));
  download(*session, server.url("/bytes/300000"), 1000);
  // A body that never ends: bytes are seen arriving, then the task is cancelled.
  auto done = std::make_shared<std::promise<Outcome>>();
  auto task = session->downloadTaskWithURL(*Url::parse(server.url("/trickle/1")),
                                           [done](auto location, auto response, auto error) {
                                             done->set_value({{}, location, response, error});
                                           });
  task->resume();
  {
    std::unique_lock lock(recorder->mutex);
    recorder->changed.wait(lock, [&] { return recorder->progressed >= 3; });
  }
  task->cancel();
  await(done->get_future());
  std::lock_guard lock(recorder->mutex);
  // download() drains with a request without URL, which never starts a transfer.
  ASSERT_EQ(recorder->ends.size(), 4u);
  using End = std::tuple<std::string, long, std::int64_t, long>;
  EXPECT_EQ(recorder->ends[0], End("/bytes/300000", 200, 300000, 0));
  EXPECT_EQ(recorder->ends[1], End("/status/404", 404, 10, 0));
  EXPECT_EQ(std::get<3>(recorder->ends[2]), UrlSession::kBodyTooLargeError);
  EXPECT_EQ(std::get<0>(recorder->ends[3]), "/trickle/1");
  EXPECT_GE(std::get<2>(recorder->ends[3]), 3);
  EXPECT_EQ(std::get<3>(recorder->ends[3]), UrlSession::kCancelledError);
}

TEST_F(UrlSessionFailureTest, CancelledTasksEndWithTheCancelledError) {
  server.holdAnswers();
  for (bool runningFirst : {true, false}) {
    SCOPED_TRACE(runningFirst ? "cancelled while running" : "cancelled before resume");
    auto done = std::make_shared<std::promise<Outcome>>();
    auto calls = std::make_shared<std::atomic<int>>(0);
    auto task =
        session->downloadTaskWithURL(*Url::parse(server.url("/bytes/10")),
                                     [done, calls](auto location, auto response, auto error) {
                                       if (calls->fetch_add(1) == 0)
                                         done->set_value({std::nullopt, location, response, error});
                                     });
    if (runningFirst) {
      task->resume();
      server.awaitHeldRequest();
      task->cancel();
    } else {
      task->cancel();
      task->resume();
    }
    Outcome o = await(done->get_future());
    EXPECT_EQ(o.code(), UrlSession::kCancelledError);
    EXPECT_FALSE(o.location);
    EXPECT_TRUE(task->isCancelled());
    fetch(*session, UrlRequest());  // drained: no second completion
    EXPECT_EQ(calls->load(), 1);
  }
  server.releaseAnswers();
}

TEST(PlatformUrlSessionDeathTest, ProcessExitsCleanlyWithATaskInFlight) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  auto exitDuringTransfer = [] {
    // A peer that accepts the connection (the kernel does) but never answers.
    int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof addr;
    ::bind(fd, reinterpret_cast<sockaddr*>(&addr), sizeof addr);
    ::listen(fd, 4);
    ::getsockname(fd, reinterpret_cast<sockaddr*>(&addr), &len);
    std::string url = "http://127.0.0.1:" + std::to_string(ntohs(addr.sin_port)) + "/";
    Platform::shared()
        .urlSession()
        ->dataTaskWithRequest(UrlRequest(Url::parse(url)), [](auto...) { std::abort(); })
        ->resume();
    ::accept(fd, nullptr, nullptr);  // the transfer is under way
    std::exit(0);
  };
  EXPECT_EXIT(exitDuringTransfer(), ::testing::ExitedWithCode(0), "");
}

}  // namespace
