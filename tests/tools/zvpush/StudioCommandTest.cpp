// zvpush studio as a process: the page, the examples, previews of a payload (the service flow run
// against the studio's own files, drawn light and dark, a tap), and the clear answers to what it
// refuses: paths outside its root, bodies over 1 MB, payloads that are not JSON objects.
#include <gtest/gtest.h>
#include <httplib.h>

#include <boost/json.hpp>
#include <fstream>

#include "platform/graphics/UIImage.h"
#include "support/Payloads.h"
#include "support/ServerProcess.h"
#include "support/TestSupport.h"

namespace zvtest {
namespace {

namespace json = boost::json;

class StudioCommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(dir.path() / "root/media");
    std::filesystem::copy_file(ZV_SOURCE_DIR "/examples/media/card1.png",
                               dir.path() / "root/media/card1.png");
    std::ofstream(dir.path() / "root/one.json") << R"({"aps": {"alert": "x"}, "media": )"
                                                   R"("http://127.0.0.1:8765/card1.png"})";
    std::ofstream(dir.path() / "secret.txt") << "secret";
    studio = std::make_unique<ServerProcess>("--port 0 --root " + (dir.path() / "root").string(),
                                             "studio");
  }
  json::value post(const std::string& body, int status) {
    auto r = client().Post("/api/preview", body, "application/json");
    EXPECT_TRUE(r);
    if (!r) return nullptr;
    EXPECT_EQ(r->status, status) << r->body;
    return json::parse(r->body);
  }
  httplib::Client client() {
    httplib::Client c("127.0.0.1", studio->port);
    c.set_read_timeout(60);
    return c;
  }
  // A stylised push whose image is a file of the studio's root.
  std::string payload() {
    return json::serialize(stylizedPush(studio->url + "/files/media/card1.png"));
  }

  TempDir dir;
  std::unique_ptr<ServerProcess> studio;
};

TEST_F(StudioCommandTest, PreviewsAPayloadLightAndDarkWithItsDownloadsAndATap) {
  auto page = client().Get("/");
  ASSERT_TRUE(page);
  EXPECT_NE(page->body.find("<textarea id=\"payload\""), std::string::npos);
  EXPECT_EQ(page->body.find("http"), page->body.find("http-equiv"))  // nothing from elsewhere
      << "the page loads nothing from another origin";
  auto examples = json::parse(client().Get("/api/examples")->body);
  ASSERT_EQ(examples.as_array().size(), 1u);
  EXPECT_NE(
      std::string(examples.at(0).at("payload").as_string()).find(studio->url + "/files/media/"),
      std::string::npos);

  json::object request{{"payload", payload()}, {"width", 320}};
  json::value out = post(json::serialize(request), 200);
  EXPECT_EQ(out.at("process"), true);
  EXPECT_EQ(out.at("delivered").at("title"), "Rich");
  ASSERT_EQ(out.at("delivered").at("attachments").as_array().size(), 1u);
  EXPECT_NE(std::string(out.at("downloads").at(0).as_string()).find("attached as image"),
            std::string::npos);
  EXPECT_FALSE(out.at("thumbnail").is_null());
  for (const char* style : {"light", "dark"}) {
    SCOPED_TRACE(style);
    EXPECT_EQ(out.at(style).at("template"), "media");
    std::string png(out.at(style).at("png").as_string());
    const std::string prefix = "data:image/png;base64,";
    ASSERT_TRUE(png.starts_with(prefix));
    EXPECT_EQ(out.at(style).at("size").at(0), 320.0);
  }
  EXPECT_EQ(out.at("tap"), nullptr);

  request["tap"] = json::object{{"x", 160}, {"y", 40}, {"dark", true}};
  out = post(json::serialize(request), 200);
  EXPECT_EQ(out.at("tap").at("defaultAction"), true);
}

TEST_F(StudioCommandTest, RefusesWhatItCannotUseWithAClearAnswer) {
  struct Case {
    std::string path, body;
    int status;
    std::string error;
  } cases[] = {
      {"/api/preview", R"({"payload": "{\"a\": 1,\n  \"b\": [1,,]}"})", 400,
       "payload: invalid JSON at line 2, column 11: syntax error"},
      {"/api/preview", R"({"payload": "[1, 2]"})", 400, "payload is not a JSON object"},
      {"/api/preview", R"({"text": "{}"})", 400, "the request has no \"payload\" text"},
      {"/api/preview", "not json", 400, "the request is not a JSON object"},
      {"/api/preview", std::string(1024 * 1024 + 1, ' '), 413, "the request body is over 1 MB"},
  };
  for (const auto& c : cases) {
    auto r = client().Post(c.path, c.body, "application/json");
    ASSERT_TRUE(r) << c.error;
    EXPECT_EQ(r->status, c.status) << c.error;
    EXPECT_EQ(json::parse(r->body).at("error"), c.error.c_str());
  }
  for (const char* path : {"/files/../secret.txt", "/files/%2e%2e/secret.txt", "/files/nothing",
                           "/secret.txt", "/api/nothing"}) {
    auto r = client().Get(path);
    ASSERT_TRUE(r) << path;
    EXPECT_EQ(r->status, 404) << path;
    EXPECT_EQ(r->body.find("secret"), std::string::npos) << path;
  }
}

}  // namespace
}  // namespace zvtest
