// zvpush service, run as a process against media servers and report endpoints that misbehave:
// whatever they do, the content is delivered once (by the flow, or by the 30-second budget, here
// made short), rewritten, with only the attachments that could be made, and no recorded event is
// lost while it has not been reported.
#include <gtest/gtest.h>

#include <atomic>
#include <boost/json.hpp>
#include <filesystem>
#include <fstream>
#include <future>

#include "platform/foundation/Value.h"
#include "support/LocalServer.h"
#include "support/TestSupport.h"

namespace zvtest {
namespace {

namespace json = boost::json;

class ServiceFaultsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    media.addFile("/a.png", readFile(ZV_SOURCE_DIR "/tests/data/media/sample.png"), "image/png");
    for (const std::string& set : {std::string("zov_params '{\"sdk\": \"faults\"}'"),
                                   std::string("zov_reports_host '\"127.0.0.1\"'"),
                                   std::string("zov_reports_scheme '\"http\"'"),
                                   "zov_reports_port " + std::to_string(server.port())}) {
      ASSERT_EQ(runZvpush("store " + store + " set " + set).exit, 0) << set;
    }
  }

  // Runs the service on a stylised push whose image is at mediaPath of the media server, with a
  // short budget.
  zv::Value service(const std::string& mediaPath, std::string tmp = "") {
    if (tmp.empty()) tmp = dir.path().string();
    json::object image{{"id", 1}, {"type", "image"}, {"content", media.url(mediaPath)}};
    json::object payload{
        {"aps", json::object{{"alert", json::object{{"title", "t"}, {"body", "b"}}},
                             {"mutable-content", 1}}},
        {"zentrova", json::object{{"cid", "c1"}, {"app_id", "app"}}},
        {"zovFeatures",
         json::object{
             {"richPush",
              json::object{
                  {"title", "Rich"},
                  {"body", "Body"},
                  {"displayName", "T"},
                  {"expanded",
                   json::object{{"type", "stylizedBasic"},
                                {"cards", json::array{json::object{
                                              {"id", 1}, {"widgets", json::array{image}}}}}}}}}}}};
    auto file = dir.path() / ("p" + std::to_string(payloads++) + ".json");
    std::ofstream(file) << json::serialize(payload);
    auto run =
        runZvpush("service " + file.string() + " " + store + " --tmp " + tmp + " --budget 1");
    EXPECT_EQ(run.exit, 0) << mediaPath;
    return zv::Value::parse(run.out);
  }

  size_t storedEvents() {
    zv::Value events = zv::Value::parse(runZvpush("store " + store + " get app").out);
    return events.isObject() && events.get("zov_events").isArray()
               ? events.get("zov_events").array().size()
               : 0;
  }

  std::atomic<int> payloads{0};
  TempDir dir;
  LocalServer media;   // the media
  LocalServer server;  // the reports endpoint
  std::string store = "--store " + (dir.path() / "store").string() + " --app-group group.faults";
};

TEST_F(ServiceFaultsTest, MediaServersThatMisbehave) {
  struct Case {
    const char* media;
    bool expired;
  } cases[] = {
      {"/trickle/300", true},   // a body without a length that never ends
      {"/slow/600000", true},   // an answer that never comes
      {"/cut/100000", false},   // fewer bytes than announced, then the connection closes
      {"/redirect/40", false},  // more redirects than are followed
      {"/to-file", false},      // a redirect to a local file
      {"/status/500", false},
  };
  for (const auto& c : cases) {
    zv::Value out = service(c.media);
    EXPECT_EQ(out.get("title").string(), "Rich") << c.media;
    EXPECT_TRUE(out.get("attachments").array().empty()) << c.media;
    EXPECT_EQ(out.get("expired").isNil(), !c.expired) << c.media;
  }
}

TEST_F(ServiceFaultsTest, ReportEndpointsThatMisbehaveKeepTheEvents) {
  struct Case {
    const char* what;
    std::function<void()> fault;
    bool expired;
  } cases[] = {
      {"answers 500", [&] { server.setPostStatus(500); }, false},
      {"redirects the POST to a GET", [&] { server.setPostRedirect(302, "/status/200"); }, false},
      {"never answers", [&] { server.holdAnswers(); }, true},
  };
  size_t events = 0;
  for (const auto& c : cases) {
    c.fault();
    zv::Value out = service("/a.png");
    server.releaseAnswers();
    EXPECT_EQ(out.get("attachments").array().size(), 1u) << c.what;
    EXPECT_EQ(out.get("expired").isNil(), !c.expired) << c.what;
    size_t now = storedEvents();
    EXPECT_GT(now, events) << c.what << ": every event stays until it is reported";
    events = now;
  }
}

// Folders that cannot be written, and a store that is not one: the content is still delivered.
TEST_F(ServiceFaultsTest, FoldersAndStoresThatMisbehave) {
  std::ofstream(dir.path() / "a-file") << "x";
  struct Case {
    const char* what;
    std::string tmp;
    std::function<void()> damage;
    size_t attachments;
  } cases[] = {
      {"the temporary folder is a file", (dir.path() / "a-file").string(), [] {}, 0},
      {"the temporary folder is on a read-only file system", "/proc/zvpush", [] {}, 0},
      {"the store's file is random bytes", "",
       [&] {
         for (const auto& f : std::filesystem::directory_iterator(dir.path() / "store")) {
           std::ofstream(f.path(), std::ios::binary | std::ios::trunc) << std::string(4096, '\x5a');
         }
       },
       1},
  };
  for (const auto& c : cases) {
    c.damage();
    zv::Value out = service("/a.png", c.tmp);
    EXPECT_EQ(out.get("title").string(), "Rich") << c.what;
    EXPECT_EQ(out.get("attachments").array().size(), c.attachments) << c.what;
  }
}

// Eight extensions at once on one store, with reports refused: every event of every run stays.
TEST_F(ServiceFaultsTest, EightProcessesShareOneStore) {
  server.setPostStatus(500);
  service("/a.png");  // the events one run records
  size_t perRun = storedEvents();
  ASSERT_GT(perRun, 0u);
  std::vector<std::future<zv::Value>> runs;
  for (int i = 0; i < 8; ++i) {
    runs.push_back(std::async(std::launch::async, [this, i] {
      auto tmp = dir.path() / ("tmp" + std::to_string(i));
      std::filesystem::create_directories(tmp);
      return service("/a.png", tmp.string());
    }));
  }
  for (auto& r : runs) EXPECT_EQ(r.get().get("title").string(), "Rich");
  EXPECT_EQ(storedEvents(), 9 * perRun);
}

}  // namespace
}  // namespace zvtest
