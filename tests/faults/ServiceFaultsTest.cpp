// zvpush service, run as a process against media servers and report endpoints that misbehave:
// whatever they do, the content is delivered once (by the flow, or by the 30-second budget, here
// made short), rewritten, with only the attachments that could be made, and no recorded event is
// lost while it has not been reported.
#include <gtest/gtest.h>
#include <signal.h>

#include <atomic>
#include <boost/json.hpp>
#include <filesystem>
#include <fstream>
#include <future>
#include <random>
#include <thread>

#include "support/LocalServer.h"
#include "support/Payloads.h"
#include "support/RawReplyServer.h"
#include "support/TestSupport.h"
#include "zentrova/Value.h"

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
  zv::Value service(const std::string& mediaPath, std::string tmp = "", int budget = 1) {
    auto run = runZvpush(serviceCommand(mediaPath, tmp, budget));
    EXPECT_EQ(run.exit, 0) << mediaPath;
    return zv::Value::parse(run.out);
  }

  // The zvpush arguments of that run.
  std::string serviceCommand(const std::string& mediaPath, std::string tmp, int budget) {
    if (tmp.empty()) tmp = dir.path().string();
    json::object payload = stylizedPush(media.url(mediaPath));
    auto file = dir.path() / ("p" + std::to_string(payloads++) + ".json");
    std::ofstream(file) << json::serialize(payload);
    return "service " + file.string() + " " + store + " --tmp " + tmp + " --budget " +
           std::to_string(budget);
  }

  void setReportsPort(int port) {
    ASSERT_EQ(runZvpush("store " + store + " set zov_reports_port " + std::to_string(port)).exit,
              0);
  }

  // The app group's SQLite file.
  std::filesystem::path groupStoreFile() const { return dir.path() / "store/group.faults.sqlite"; }

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
      {"/huge/300", false},     // announces 100 GB and trickles: refused for its length
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
  RawReplyServer closer("");
  RawReplyServer garbage(std::string("\x16\x03\x01 not HTTP \xff\xfe\r\n\r\n", 20));
  struct Case {
    const char* what;
    std::function<void()> fault;
    bool expired;
  } cases[] = {
      {"answers 500", [&] { server.setPostStatus(500); }, false},
      {"redirects the POST to a GET", [&] { server.setPostRedirect(302, "/status/200"); }, false},
      {"never answers", [&] { server.holdAnswers(); }, true},
      {"closes without answering", [&] { setReportsPort(closer.port()); }, false},
      {"answers garbage", [&] { setReportsPort(garbage.port()); }, false},
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
  // A full disk: no file may grow past 16 KB (writes past it fail, as on a full disk), and the
  // image is 26 KB; without the limit the same image is attached.
  media.addFile("/card.png", readFile(ZV_SOURCE_DIR "/examples/media/card1.png"), "image/png");
  for (const char* limit : {"unlimited", "16"}) {
    auto run = runShell(std::string("trap '' XFSZ; ulimit -f ") + limit +
                        "; exec " ZVPUSH_PATH " " + serviceCommand("/card.png", "", 1));
    ASSERT_EQ(run.exit, 0) << limit;
    zv::Value out = zv::Value::parse(run.out);
    EXPECT_EQ(out.get("title").string(), "Rich") << limit;
    EXPECT_EQ(out.get("attachments").array().size(), std::string(limit) == "16" ? 0u : 1u);
    EXPECT_TRUE(out.get("expired").isNil()) << limit;
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

// Another process holds the store's write lock for 3 s (shorter than the store's 5-second wait) and
// for 10 s (longer), and the store cannot be written at all: the content is delivered with its
// attachment, and no event recorded before is lost.
TEST_F(ServiceFaultsTest, StoresLockedOrNotWritable) {
  server.setPostStatus(500);
  service("/a.png");
  size_t perRun = storedEvents();
  ASSERT_GT(perRun, 0u);
  for (int seconds : {3, 10}) {
    SCOPED_TRACE(std::to_string(seconds) + " s lock");
    size_t before = storedEvents();
    std::string locker =
        "python3 -c \"import sqlite3, sys, time\n"
        "c = sqlite3.connect(sys.argv[1], isolation_level=None)\n"
        "c.execute('BEGIN EXCLUSIVE')\n"
        "print('locked', flush=True)\n"
        "time.sleep(float(sys.argv[2]))\n"
        "c.execute('COMMIT')\" " +
        groupStoreFile().string() + " " + std::to_string(seconds);
    std::FILE* lock = popen(locker.c_str(), "r");
    char line[16] = {};
    ASSERT_TRUE(std::fgets(line, sizeof line, lock));
    ASSERT_STREQ(line, "locked\n");
    zv::Value out = service("/a.png", "", 30);
    EXPECT_EQ(out.get("attachments").array().size(), 1u);
    EXPECT_EQ(pclose(lock), 0);
    // Within the wait the run's own events are written too; beyond it they may be lost, never
    // the earlier ones.
    size_t after = storedEvents();
    if (seconds == 3) {
      EXPECT_EQ(after, before + perRun);
    }
    EXPECT_GE(after, before);
  }
  auto run = runZvpush(serviceCommand("/a.png", "", 1) + " --store /proc/zvpush-store");
  ASSERT_EQ(run.exit, 0);
  EXPECT_EQ(zv::Value::parse(run.out).get("attachments").array().size(), 1u);
}

// zvpush service killed (SIGKILL) at random moments of its run, a dozen times: the store still
// opens as it is (nothing moved aside) and holds every event recorded before.
TEST_F(ServiceFaultsTest, KilledAtRandomMomentsLosesNoEarlierEvent) {
  server.setPostStatus(500);
  media.addFile("/late.png", readFile(ZV_SOURCE_DIR "/tests/data/media/sample.png"), "image/png",
                std::chrono::milliseconds(150));
  service("/a.png");
  size_t perRun = storedEvents();
  std::mt19937 random(std::random_device{}());
  for (int i = 0; i < 12; ++i) {
    std::string command =
        "echo $$; exec " ZVPUSH_PATH " " + serviceCommand("/late.png", "", 5) + " > /dev/null 2>&1";
    std::FILE* child = popen(command.c_str(), "r");
    char pid[32] = {};
    ASSERT_TRUE(std::fgets(pid, sizeof pid, child));
    // The fault itself: a kill at a random moment of the run (which takes about 200 ms).
    std::this_thread::sleep_for(std::chrono::milliseconds(random() % 250));
    ::kill(std::stoi(pid), SIGKILL);
    pclose(child);
  }
  size_t afterKills = storedEvents();
  EXPECT_GE(afterKills, perRun);
  service("/a.png");
  EXPECT_EQ(storedEvents(), afterKills + perRun);
  for (const auto& f : std::filesystem::directory_iterator(dir.path() / "store")) {
    EXPECT_EQ(f.path().string().find(".damaged-"), std::string::npos) << f.path();
  }
}

}  // namespace
}  // namespace zvtest
