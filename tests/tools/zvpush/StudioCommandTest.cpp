// zvpush studio as a process: the page, the examples, previews of a payload (the service flow run
// against the studio's own files, drawn light and dark, a tap), and what it refuses: what a web
// page open in the same browser could send (another Host, another Origin, no token, a form or
// text/plain body), paths outside its root, bodies over 1 MB, payloads that are not JSON objects;
// each without running anything (its scratch folder untouched).
#include <gtest/gtest.h>
#include <httplib.h>

#include <boost/json.hpp>
#include <fstream>
#include <set>

#include "platform/graphics/UIImage.h"
#include "support/Payloads.h"
#include "support/ServerProcess.h"
#include "support/TestSupport.h"

namespace zvtest {
namespace {

namespace fs = std::filesystem;
namespace json = boost::json;

class StudioCommandTest : public ::testing::Test {
 protected:
  void SetUp() override {
    fs::create_directories(dir.path() / "root/media");
    fs::create_directories(dir.path() / "tmp");
    fs::copy_file(ZV_SOURCE_DIR "/examples/media/card1.png", dir.path() / "root/media/card1.png");
    std::ofstream(dir.path() / "root/one.json") << R"({"aps": {"alert": "x"}, "media": )"
                                                   R"("http://127.0.0.1:8765/card1.png"})";
    std::ofstream(dir.path() / "secret.txt") << "secret";
    studio = std::make_unique<ServerProcess>("--port 0 --root " + (dir.path() / "root").string(),
                                             "studio", "TMPDIR=" + (dir.path() / "tmp").string());
    token = studio->firstLine.substr(studio->firstLine.find("?token=") + 7);
    token.erase(token.find_last_not_of(" \n") + 1);
  }
  httplib::Headers api() const { return {{"X-Studio-Token", token}}; }
  json::value post(const std::string& body, int status) {
    auto r = client().Post("/api/preview", api(), body, "application/json");
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
    return json::serialize(stylizedPush(studio->url + "/files/media/card1.png?token=" + token));
  }
  // Every file and folder under the studio's scratch folder.
  std::set<std::string> scratch() {
    std::set<std::string> out;
    for (const auto& e : fs::recursive_directory_iterator(dir.path() / "tmp")) {
      out.insert(e.path().string());
    }
    return out;
  }

  TempDir dir;
  std::unique_ptr<ServerProcess> studio;
  std::string token;
};

TEST_F(StudioCommandTest, PreviewsAPayloadLightAndDarkWithItsDownloadsAndATap) {
  EXPECT_EQ(token.size(), 32u) << studio->firstLine;
  auto page = client().Get("/");
  ASSERT_TRUE(page);
  EXPECT_NE(page->body.find("<textarea id=\"payload\""), std::string::npos);
  EXPECT_EQ(page->body.find("http"), page->body.find("http-equiv"))  // nothing from elsewhere
      << "the page loads nothing from another origin";
  EXPECT_EQ(page->body.find("<script>"), std::string::npos) << "no inline script";
  EXPECT_EQ(page->body.find("<style>"), std::string::npos) << "no inline style";
  for (const char* file : {"/studio.js", "/studio.css"}) EXPECT_EQ(client().Get(file)->status, 200);
  auto examples = json::parse(
      client()
          .Get("/api/examples", {{"X-Studio-Token", token}, {"Content-Type", "application/json"}})
          ->body);
  ASSERT_EQ(examples.as_array().size(), 1u);
  EXPECT_NE(std::string(examples.at(0).at("payload").as_string())
                .find(studio->url + "/files/media/card1.png?token=" + token),
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

  // The flows ran in the scratch folder, which goes when the studio stops.
  ASSERT_FALSE(scratch().empty());
  EXPECT_EQ(studio->stop(SIGTERM), 0);
  EXPECT_TRUE(fs::is_empty(dir.path() / "tmp"));
}

TEST_F(StudioCommandTest, RefusesWhatItCannotUseWithoutRunningAnything) {
  const std::string port = std::to_string(studio->port);
  const std::string own = "127.0.0.1:" + port;
  const std::string preview = json::serialize(json::object{{"payload", payload()}});
  struct Case {
    std::string what, method, path, host, origin, token, type, body;
    int status;
    std::string error;  // a part of the answer's "error"
  } cases[] = {
      // What another page, or a rebound DNS name, could send.
      {"foreign host", "POST", "/api/preview", "evil.example:" + port, "", token,
       "application/json", preview, 403, "is not this studio's address"},
      {"another port", "POST", "/api/preview", "127.0.0.1:1", "", token, "application/json",
       preview, 403, "is not this studio's address"},
      {"foreign origin", "POST", "/api/preview", own, "http://evil.example", token,
       "application/json", preview, 403, "from another page"},
      {"null origin", "POST", "/api/preview", own, "null", token, "application/json", preview, 403,
       "from another page"},
      {"no token", "POST", "/api/preview", own, "", "", "application/json", preview, 403,
       "needs the studio's token"},
      {"wrong token", "POST", "/api/preview", own, "", std::string(32, '0'), "application/json",
       preview, 403, "needs the studio's token"},
      {"text/plain", "POST", "/api/preview", own, "", token, "text/plain", preview, 415,
       "application/json"},
      {"form", "POST", "/api/preview", own, "", token, "application/x-www-form-urlencoded",
       "payload=%7B%7D", 415, "application/json"},
      {"multipart", "POST", "/api/preview", own, "", token, "multipart/form-data; boundary=x",
       preview, 415, "application/json"},
      {"examples without token", "GET", "/api/examples", own, "", "", "application/json", "", 403,
       "needs the studio's token"},
      {"file without token", "GET", "/files/media/card1.png", own, "", "", "", "", 403,
       "needs the studio's token"},
      {"file with another token", "GET", "/files/media/card1.png?token=" + std::string(32, '0'),
       own, "", "", "", "", 403, "needs the studio's token"},
      // What the page could send by mistake.
      {"oversize", "POST", "/api/preview", own, "", token, "application/json",
       std::string(1024 * 1024 + 1, ' '), 413, "the request body is over 1 MB"},
      {"bad payload", "POST", "/api/preview", own, "", token, "application/json",
       R"({"payload": "{\"a\": 1,\n  \"b\": [1,,]}"})", 400,
       "payload: invalid JSON at line 2, column 11: syntax error"},
      {"array payload", "POST", "/api/preview", own, "", token, "application/json",
       R"({"payload": "[1, 2]"})", 400, "payload is not a JSON object"},
      {"no payload", "POST", "/api/preview", own, "", token, "application/json",
       R"({"text": "{}"})", 400, "the request has no \"payload\" text"},
      {"not json", "POST", "/api/preview", own, "", token, "application/json", "not json", 400,
       "the request is not a JSON object"},
      // Paths outside the root, or nothing.
      {"dot dot", "GET", "/files/../secret.txt", own, "", token, "", "", 404, "not found"},
      {"encoded dot dot", "GET", "/files/%2e%2e/secret.txt", own, "", token, "", "", 404,
       "not found"},
      {"no such file", "GET", "/files/nothing", own, "", token, "", "", 404, "not found"},
      {"beside the root", "GET", "/secret.txt", own, "", token, "", "", 404, "not found"},
      {"no such call", "GET", "/api/nothing", own, "", token, "application/json", "", 404,
       "not found"},
      // The names of this studio, with the page's own origin.
      {"localhost", "GET", "/api/examples", "localhost:" + port, "http://localhost:" + port, token,
       "application/json", "", 200, ""},
      {"IPv6 loopback", "GET", "/api/examples", "[::1]:" + port, "http://[::1]:" + port, token,
       "application/json; charset=utf-8", "", 200, ""},
  };
  const auto before = scratch();
  for (const auto& c : cases) {
    httplib::Headers headers{{"Host", c.host}};
    if (!c.origin.empty()) headers.emplace("Origin", c.origin);
    if (!c.token.empty()) headers.emplace("X-Studio-Token", c.token);
    if (c.method == "GET" && !c.type.empty()) headers.emplace("Content-Type", c.type);
    auto r = c.method == "GET" ? client().Get(c.path.c_str(), headers)
                               : client().Post(c.path.c_str(), headers, c.body, c.type.c_str());
    ASSERT_TRUE(r) << c.what;
    EXPECT_EQ(r->status, c.status) << c.what << ": " << r->body;
    if (c.status != 200) {
      EXPECT_NE(std::string(json::parse(r->body).at("error").as_string()).find(c.error),
                std::string::npos)
          << c.what << ": " << r->body;
    }
    EXPECT_EQ(r->body.find("secret"), std::string::npos) << c.what;
    EXPECT_EQ(r->get_header_value("X-Content-Type-Options"), "nosniff") << c.what;
    EXPECT_EQ(r->get_header_value("X-Frame-Options"), "DENY") << c.what;
    EXPECT_NE(r->get_header_value("Content-Security-Policy").find("script-src 'self'"),
              std::string::npos)
        << c.what;
  }
  EXPECT_EQ(scratch(), before) << "a refused request ran something";
  post(preview, 200);
  EXPECT_NE(scratch(), before) << "an accepted preview shows in the scratch folder";
}

// With no --root, from a folder that is not the project's: the examples that come with zvpush.
TEST(StudioCommandAnywhereTest, OffersTheBundledExamplesFromAnyFolder) {
  TempDir dir;
  ServerProcess studio("--port 0", "studio", "-C " + dir.path().string());
  std::string token = studio.firstLine.substr(studio.firstLine.find("?token=") + 7, 32);
  httplib::Client client("127.0.0.1", studio.port);
  auto r = client.Get("/api/examples",
                      {{"X-Studio-Token", token}, {"Content-Type", "application/json"}});
  ASSERT_TRUE(r) << studio.firstLine;
  ASSERT_EQ(r->status, 200) << r->body;
  std::set<std::string> names;
  json::value examples = json::parse(r->body);
  for (const auto& e : examples.as_array()) {
    names.insert(std::string(e.at("name").as_string()));
  }
  EXPECT_TRUE(names.count("carousel") && names.count("plain")) << r->body;
}

}  // namespace
}  // namespace zvtest
