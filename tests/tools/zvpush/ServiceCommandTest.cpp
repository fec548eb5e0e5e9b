// zvpush service, run as a separate process against a local server: the delivered content as one
// JSON object, and one-line usage errors.
#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <fstream>
#include <future>

#include "platform/foundation/Md5.h"
#include "support/LocalServer.h"
#include "support/TestSupport.h"
#include "zentrova/Value.h"

namespace zvtest {
namespace {

namespace json = boost::json;

TEST(ServiceCommandTest, PrintsTheDeliveredContent) {
  TempDir dir;
  LocalServer server;
  server.addFile("/a.png", readFile(ZV_SOURCE_DIR "/tests/data/media/sample.png"), "image/png");
  std::string image = server.url("/a.png");
  json::object payload{
      {"aps", json::object{{"alert", json::object{{"title", "t"}, {"body", "b"}}}, {"badge", 1}}},
      {"zentrova", json::object{{"cid", "c1"}, {"app_id", "app"}}},
      {"zovFeatures",
       json::object{{"richPush",
                     json::object{{"title", "<i>Rich</i>"},
                                  {"body", "Body"},
                                  {"displayName", "T"},
                                  {"ios", json::object{{"sound", "chime.caf"}}},
                                  {"expanded",
                                   json::object{{"type", "stylizedBasic"},
                                                {"cards", json::array{json::object{
                                                              {"id", 1},
                                                              {"widgets",
                                                               json::array{json::object{
                                                                   {"id", 1},
                                                                   {"type", "image"},
                                                                   {"content", image}}}}}}}}}}}}}};
  std::ofstream(dir.path() / "p.json") << json::serialize(payload);
  std::string common = "--store " + (dir.path() / "store").string() + " --app-group group.cli ";
  std::string port = std::to_string(server.port());
  for (const std::string& set : std::vector<std::string>{
           "zov_params '{\"sdk\": \"cli\"}'", "zov_reports_host '\"127.0.0.1\"'",
           "zov_reports_scheme '\"http\"'", "zov_reports_port " + port}) {
    ASSERT_EQ(runZvpush("store " + common + "set " + set).exit, 0) << set;
  }

  // The badge query is asked before the first download starts, and answered at once by the
  // in-process center; the downloads and the report wait at the server until the first of them
  // has arrived.
  server.holdAnswers();
  auto service = std::async(std::launch::async, [&] {
    return runZvpush("service " + (dir.path() / "p.json").string() + " " + common + "--tmp " +
                     dir.path().string() + " --delivered 3 --id req-7");
  });
  server.awaitHeldRequest();
  server.releaseAnswers();
  auto run = service.get();
  ASSERT_EQ(run.exit, 0);
  zv::Value out = zv::Value::parse(run.out);
  EXPECT_EQ(out.get("identifier").string(), "req-7");
  EXPECT_EQ(out.get("title").string(), "Rich");
  EXPECT_EQ(out.get("subtitle").string(), "");
  EXPECT_EQ(out.get("badge").integerValue(), 4);
  EXPECT_EQ(out.get("sound").json(), (json::object{{"named", "chime.caf"}}));
  EXPECT_EQ(out.get("categoryIdentifier").string(), "");
  EXPECT_EQ(out.get("userInfo").get("aps").get("alert").get("title").string(), "Rich");
  auto attachments = out.get("attachments").elements();
  ASSERT_EQ(attachments.size(), 1u);
  EXPECT_EQ(attachments[0].get("identifier").string(), zv::md5Hex(image));
  EXPECT_EQ(attachments[0].get("url").string(),
            "file://" + (dir.path() / "Attachments" / (zv::md5Hex(image) + ".png")).string());
  int posts = 0;
  for (const auto& r : server.requests()) posts += r.method == "POST";
  EXPECT_EQ(posts, 1);
}

// --explain says on stderr what became of each media item, beside the library's own messages, and
// what the reports endpoint answered.
TEST(ServiceCommandTest, ExplainSaysWhatBecameOfEachMediaItem) {
  TempDir dir;
  LocalServer server;
  server.addFile("/a.png", readFile(ZV_SOURCE_DIR "/tests/data/media/sample.png"), "image/png");
  server.addFile("/t.txt", "plain words", "text/plain");
  std::string common = "--store " + (dir.path() / "store").string() + " --app-group group.cli ";
  for (const std::string& set : std::vector<std::string>{
           "zov_params '{}'", "zov_reports_host '\"127.0.0.1\"'", "zov_reports_scheme '\"http\"'",
           "zov_reports_port " + std::to_string(server.port())}) {
    ASSERT_EQ(runZvpush("store " + common + "set " + set).exit, 0) << set;
  }
  struct Case {
    std::string url;
    std::vector<std::string> says;
  } cases[] = {
      {server.url("/a.png"), {"HTTP 200, ", "attached as image (image/png)"}},
      {server.url("/none.png"), {"HTTP 404", "not attached: the server answered 404"}},
      {server.url("/t.txt"), {"HTTP 200", "not attached: ", "unsupported type (text/plain)"}},
      {"http://127.0.0.1:1/x.png", {"no answer", "not attached: the transfer failed"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.url);
    json::object payload{
        {"aps", json::object{{"alert", "hello"}}},
        {"zentrova", json::object{{"cid", "c"}, {"app_id", "app"}, {"media-attachment", c.url}}}};
    std::ofstream(dir.path() / "p.json") << json::serialize(payload);
    auto err = dir.path() / "err.txt";
    auto run = runZvpush("service " + (dir.path() / "p.json").string() + " " + common + "--tmp " +
                         dir.path().string() + " --explain 2> " + err.string());
    ASSERT_EQ(run.exit, 0);
    std::string text = readFile(err);
    std::string line = "zvpush: media " + c.url + ": ";
    ASSERT_NE(text.find(line), std::string::npos) << text;
    std::string media = text.substr(text.find(line));
    media = media.substr(0, media.find('\n'));
    for (const auto& part : c.says) EXPECT_NE(media.find(part), std::string::npos) << media;
    bool attached = c.says.back().starts_with("attached");
    // The library's own message for a failed download stays as it is.
    EXPECT_EQ(text.find("Attachment Download failure") != std::string::npos, !attached) << text;
    EXPECT_NE(text.find("zvpush: reports POST " + server.url("/")), std::string::npos) << text;
  }
}

TEST(ServiceCommandTest, BadInputIsOneLineAndExitTwo) {
  TempDir dir;
  std::ofstream(dir.path() / "array.json") << "[1, 2]";
  std::ofstream(dir.path() / "broken.json") << "{\"aps\":";
  const std::string cases[] = {
      "service " + (dir.path() / "array.json").string(),
      "service " + (dir.path() / "broken.json").string(),
      "service " + (dir.path() / "missing.json").string(),
      "service",
      "service " + (dir.path() / "array.json").string() + " --delivered many",
  };
  for (const auto& args : cases) {
    auto run = runZvpush(args + " 2>&1 >/dev/null");
    EXPECT_EQ(run.exit, 2) << args;
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1) << args << ": " << run.out;
  }
}

}  // namespace
}  // namespace zvtest
