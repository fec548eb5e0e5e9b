#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <regex>
#include <sstream>

#include "support/LocalServer.h"
#include "support/TestSupport.h"
#include "zentrova/Value.h"

namespace {

// Runs "zvpush inspect" on a file with the given contents; the exit status and the output
// (stdout and stderr together).
std::pair<int, std::string> inspect(const std::string& contents) {
  zvtest::TempDir dir;
  std::ofstream(dir.path() / "p.json") << contents;
  auto run = zvtest::runZvpush("inspect " + (dir.path() / "p.json").string() + " 2>&1");
  return {run.exit, run.out};
}

TEST(PlanCommandTest, ExplainsWhyThereIsNoRichContentOrMedia) {
  auto [status, out] = inspect(zvtest::readFile(ZV_SOURCE_DIR "/examples/missing-title.json"));
  zv::Value v = zv::Value::parse(out);
  EXPECT_TRUE(v.get("richPush").isNull());
  // Both envelopes (the payload's, then the rewritten one's) fail to build the rich push.
  EXPECT_EQ(v.get("log"), zv::Value::parse(R"(["Mandatory params missing exception : %@",)"
                                           R"( "Mandatory params missing exception : %@"])"));
  EXPECT_EQ(v.get("media").array().size(), 1u);  // without rich push the top-level media counts

  v = zv::Value::parse(inspect(R"({"zentrova":{"cid":"c","media-attachment":5}})").second);
  EXPECT_TRUE(v.get("media").array().empty());
  EXPECT_EQ(v.get("log"),
            zv::Value::parse(R"(["Exception in creating attachment Rich )"
                             R"(notification: expected a string but found number"])"));
}

TEST(PlanCommandTest, InputThatIsNotAJsonObjectIsAUsageError) {
  struct Case {
    std::string text, says;
  } cases[] = {{"{\"a\":", "line 1, column 6"},
               {"{\"a\": 1,\n  \"b\": [1, 2,,]}", "line 2, column 14"},
               {"[1,2]", "not a JSON object"},
               {"\"\xFF\"", "invalid JSON"},
               {"", "invalid JSON"}};
  for (const auto& c : cases) {
    auto [status, out] = inspect(c.text);
    EXPECT_EQ(status, 2) << c.text;
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1) << out;
    EXPECT_NE(out.find(c.says), std::string::npos) << out;
  }
}

// inspect and service run the same plan: on every example and on payloads whose rewrite or media
// listing raises, they agree on the texts shown, the media attached and the messages logged.
TEST(PlanCommandTest, AgreesWithTheServiceOnEveryExample) {
  zvtest::TempDir dir;
  zvtest::LocalServer server;
  const std::filesystem::path examples = ZV_SOURCE_DIR "/examples";
  for (const auto& file : std::filesystem::directory_iterator(examples / "media")) {
    server.addFile("/" + file.path().filename().string(), zvtest::readFile(file.path()));
  }
  std::vector<std::pair<std::string, std::string>> payloads;
  for (const auto& file : std::filesystem::directory_iterator(examples)) {
    if (file.path().extension() != ".json") continue;
    // The examples' media server is this test's server.
    std::string text = std::regex_replace(zvtest::readFile(file.path()),
                                          std::regex("http://127\\.0\\.0\\.1:8765/"), server.url());
    payloads.emplace_back(file.path().filename().string(), text);
  }
  const std::string rich =
      R"("zovFeatures":{"richPush":{"title":"Rich","body":"B","displayName":"D","expanded":)"
      R"({"type":"stylizedBasic","cards":[{"id":1,"widgets":[{"id":1,"type":"image","content":")" +
      server.url("/card1.png") + R"("}]}]}}})";
  payloads.emplace_back("plain alert",
                        R"({"aps":{"alert":"Plain text"},"zentrova":{"cid":"c"},)" + rich + "}");
  payloads.emplace_back("zentrova not a dictionary",
                        R"({"aps":{"alert":{"title":"T"}},"zentrova":"c",)" + rich + "}");
  payloads.emplace_back(
      "media of the wrong kind",
      R"({"aps":{"alert":{"title":"T"}},"zentrova":{"cid":"c","media-attachment":5}})");
  ASSERT_GE(payloads.size(), 10u);

  size_t attachments = 0;
  for (const auto& [name, text] : payloads) {
    SCOPED_TRACE(name);
    std::ofstream(dir.path() / "p.json") << text;
    zv::Value inspected =
        zv::Value::parse(zvtest::runZvpush("inspect " + (dir.path() / "p.json").string()).out);
    auto service =
        zvtest::runZvpush("service " + (dir.path() / "p.json").string() + " --store " +
                          (dir.path() / "store").string() + " --tmp " + dir.path().string() +
                          " --log 2>" + (dir.path() / "log").string());
    ASSERT_EQ(service.exit, 0);
    zv::Value delivered = zv::Value::parse(service.out);
    for (const char* field : {"title", "subtitle", "body"}) {
      EXPECT_EQ(inspected.get("content").get(field), delivered.get(field)) << field;
    }
    std::vector<std::string> planned, attached;
    for (const auto& m : inspected.get("media").json().as_array()) {
      planned.push_back(std::string(m.at("attachmentID").as_string()));
    }
    for (const auto& a : delivered.get("attachments").json().as_array()) {
      attached.push_back(std::string(a.at("identifier").as_string()));
    }
    std::sort(planned.begin(), planned.end());
    std::sort(attached.begin(), attached.end());
    EXPECT_EQ(planned, attached);
    attachments += attached.size();
    if (name == "plain alert") {  // the rewrite raises: logged, nothing attached, texts as sent
      EXPECT_TRUE(planned.empty());
      EXPECT_EQ(inspected.get("log").json().as_array().back(),
                "Exception in creating attachment Rich notification: cannot use the key "
                "\"title\" of a string");
      EXPECT_EQ(delivered.get("body").string(), "Plain text");
    }
    if (name == "zentrova not a dictionary") {  // the lookup of "cid" raises inside the guard
      EXPECT_TRUE(planned.empty());
      EXPECT_EQ(inspected.get("log").json().as_array().back(),
                "Exception in creating attachment Rich notification: expected a dictionary but "
                "found string");
      EXPECT_EQ(delivered.get("title").string(), "T");
    }
    // Everything inspect logs, the service logs too, in the same order (the service logs more
    // after the plan: the report).
    std::istringstream serviceLog(zvtest::readFile(dir.path() / "log"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(serviceLog, line);) lines.push_back(line);
    auto next = lines.begin();
    for (const auto& m : inspected.get("log").json().as_array()) {
      next = std::find(next, lines.end(), std::string(m.as_string()));
      EXPECT_NE(next, lines.end()) << m;
    }
  }
  EXPECT_GE(attachments, 5u);  // the examples' media were served and attached
}

}  // namespace
