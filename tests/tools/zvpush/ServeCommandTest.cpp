#include <gtest/gtest.h>
#include <httplib.h>
#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <cstdio>
#include <fstream>

#include "support/ServerProcess.h"
#include "support/TestCertificates.h"
#include "support/TestSupport.h"
#include "zentrova/Value.h"

namespace {

namespace fs = std::filesystem;

using Serve = zvtest::ServerProcess;

class ServeCommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(dir.path() / "root" / "sub");
    std::ofstream(dir.path() / "root" / "a.png") << "PNGDATA";
    std::ofstream(dir.path() / "root" / "sub" / "b.txt") << "bee";
    std::ofstream(dir.path() / "secret.txt") << "secret";
    fs::create_symlink(dir.path() / "secret.txt", dir.path() / "root" / "link.txt");
  }
  std::string root() const { return (dir.path() / "root").string(); }
  zvtest::TempDir dir;
};

TEST_F(ServeCommandTest, ServesFilesUnderTheRootAndNothingElse) {
  Serve serve("--root " + root() + " --port 0");
  ASSERT_EQ(serve.firstLine, "listening on http://127.0.0.1:" + std::to_string(serve.port) + "\n");
  httplib::Client client("127.0.0.1", serve.port);
  struct Case {
    std::string path;
    int status;
    std::string body;
    std::string type;
  } cases[] = {
      {"/a.png", 200, "PNGDATA", "image/png"},
      {"/sub/b.txt", 200, "bee", "text/plain"},
      {"/missing.png", 404, "", ""},
      {"/../secret.txt", 404, "", ""},
      {"/%2e%2e/secret.txt", 404, "", ""},
      {"/sub/../../secret.txt", 404, "", ""},
      {"/link.txt", 404, "", ""},
      {"/", 404, "", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.path);
    auto res = client.Get(c.path);
    ASSERT_TRUE(res);
    EXPECT_EQ(res->status, c.status);
    if (c.status == 200) {
      EXPECT_EQ(res->body, c.body);
      EXPECT_EQ(res->get_header_value("Content-Type"), c.type);
    }
  }
  EXPECT_EQ(serve.stop(SIGINT), 0);
}

TEST_F(ServeCommandTest, RecordsEveryPostAsOneJsonLine) {
  fs::path reports = dir.path() / "reports.jsonl";
  Serve serve("--root " + root() + " --reports " + reports.string());
  httplib::Client client("127.0.0.1", serve.port);
  auto res = client.Post("/v2/report/add/K1", {{"X-ZENTROVA-APP-KEY", "K1"}},
                         R"({"viewsCount":1,"viewsInfo":[{"N_I_E":1}]})", "application/json");
  ASSERT_TRUE(res);
  EXPECT_EQ(res->status, 200);
  EXPECT_EQ(client.Post("/other", "not json", "text/plain")->status, 200);
  EXPECT_EQ(serve.stop(SIGTERM), 0);

  std::ifstream in(reports);
  std::string first, second;
  std::getline(in, first);
  std::getline(in, second);
  EXPECT_EQ(zv::Value::parse(first), zv::Value::parse(R"({"appKey":"K1","path":"/v2/report/add/K1",
                                 "body":{"viewsCount":1,"viewsInfo":[{"N_I_E":1}]}})"));
  EXPECT_EQ(zv::Value::parse(second),
            zv::Value::parse(R"({"appKey":null,"path":"/other","body":"not json"})"));
}

TEST_F(ServeCommandTest, ServesHttpsAndDelaysEveryAnswer) {
  const auto& tls = zvtest::testTlsFiles();
  Serve serve("--root " + root() + " --tls-cert " + tls.serverCert.string() + " --tls-key " +
              tls.serverKey.string() + " --latency 200");
  EXPECT_EQ(serve.firstLine.rfind("listening on https://127.0.0.1:", 0), 0u);
  httplib::SSLClient client("127.0.0.1", serve.port);
  client.set_ca_cert_path(tls.caCert.c_str());
  client.enable_server_certificate_verification(true);
  auto start = std::chrono::steady_clock::now();
  auto res = client.Get("/sub/b.txt");
  ASSERT_TRUE(res);
  EXPECT_EQ(res->body, "bee");
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200));
}

TEST_F(ServeCommandTest, UsageErrorsExitWithTwoAndOneLine) {
  const std::string cases[] = {
      "",
      "--root /no/such/dir",
      "--root " + root() + " --tls-cert x.pem",
      "--root " + root() + " --port 70000",
      "--root " + root() + " --port abc",
      "--root " + root() + " --latency -1",
      "--root " + root() + " extra",
      "--root " + root() + " --reports /no/such/dir/r.jsonl",
      "--root " + root() + " --tls-cert /no/cert.pem --tls-key /no/key.pem",
  };
  for (const auto& args : cases) {
    SCOPED_TRACE(args);
    auto run = zvtest::runZvpush("serve " + args + " 2>&1 >/dev/null");
    EXPECT_EQ(run.exit, 2);
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1) << run.out;
  }
}

// A second server on a port in use is refused (never shares it), and every request is logged on
// stderr with its method, path, status and size.
TEST_F(ServeCommandTest, RefusesAPortInUseAndLogsEachRequest) {
  auto log = dir.path() / "serve.log";
  Serve serve("--root " + root() + " --port 0 2> " + log.string());
  auto second = zvtest::runZvpush("serve --root " + root() + " --port " +
                                  std::to_string(serve.port) + " 2>&1");
  EXPECT_EQ(second.exit, 1);
  EXPECT_EQ(second.out, "zvpush: cannot listen on 127.0.0.1:" + std::to_string(serve.port) +
                            ": address already in use\n");
  httplib::Client client("127.0.0.1", serve.port);
  ASSERT_TRUE(client.Get("/a.png"));
  ASSERT_TRUE(client.Get("/missing.png"));
  ASSERT_TRUE(client.Post("/v2/report/add/app", "{}", "application/json"));
  EXPECT_EQ(serve.stop(SIGTERM), 0);
  std::string text = zvtest::readFile(log);
  for (const char* line : {"GET /a.png 200 7 bytes ", "GET /missing.png 404 10 bytes ",
                           "POST /v2/report/add/app 200 15 bytes "}) {
    EXPECT_NE(text.find(line), std::string::npos) << line << " in\n" << text;
  }
}

}  // namespace
