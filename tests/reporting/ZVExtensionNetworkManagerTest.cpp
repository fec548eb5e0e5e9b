#include <gtest/gtest.h>

#include <boost/json/parse.hpp>
#include <cmath>
#include <future>
#include <limits>

#include "platform/net/UrlSession.h"
#include "reporting/ReportsBody.h"
#include "reporting/ZVExtensionNetworkManager.h"
#include "support/LocalServer.h"
#include "support/ProcessStateReset.h"
#include "support/TestCertificates.h"
#include "support/TestSupport.h"
#include "zentrova/Exception.h"
#include "zentrova/Platform.h"
#include "zentrova/UserDefaults.h"
#include "zentrova/ZVExtensionDataManager.h"

namespace zv {
namespace {

namespace json = boost::json;
using zvtest::LocalServer;

constexpr char kGroup[] = "group.com.example.reports";
constexpr char kEvents[] = R"([
  {"EVENT_ACTION": "NOTIFICATION_RECEIVED_IOS_ZOV", "EVENT_ATTRS": {"cid": "C1"},
   "EVENT_G_TIME": "1700000000", "EVENT_L_TIME": "14:11:2023:23:13:20", "N_I_E": 1},
  {"EVENT_ACTION": "ZOV_NOTIFICATION_SHOWN", "EVENT_ATTRS": {"cid": "C1", "template_name": "T"},
   "EVENT_G_TIME": "1700000001", "EVENT_L_TIME": "14:11:2023:23:13:21", "N_I_E": 1},
  {"EVENT_ACTION": "NOTIFICATION_RECEIVED_IOS_ZOV", "EVENT_ATTRS": {"cid": "C2"},
   "EVENT_G_TIME": "1700000002", "EVENT_L_TIME": "14:11:2023:23:13:22", "N_I_E": 1}])";

// A configured store (app group, query parameters, application APP1 holding three events) whose
// reports endpoint is a local server.
class ReportsTest : public ::testing::TestWithParam<LocalServer::Scheme> {
 protected:
  void SetUp() override {
    manager.setNetworkSession(UrlSession::sessionWithConfiguration(
        {.extraCaFile = zvtest::testTlsFiles().caCert.string(), .temporaryDirectory = dir.path()}));
    store.setAppGroupID(kGroup);
    hostSets("zov_params", R"({"sdk": "1", "os": "linux"})");
    hostSets("zov_reports_scheme",
             GetParam() == LocalServer::Scheme::kHttps ? "\"https\"" : "\"http\"");
    hostSets("zov_reports_host", "\"127.0.0.1\"");
    hostSets("zov_reports_port", std::to_string(server.port()));
    hostSets("APP1", std::string(R"({"zov_events": )") + kEvents + "}");
    store.configureDataManagerWithAppID(Value("APP1"));
  }
  void TearDown() override { manager.setNetworkSession(nullptr); }

  void hostSets(const char* key, const std::string& json) {
    UserDefaults::initWithSuiteName(kGroup, dir.path())->setObject(Value::parse(json), key);
  }
  json::value storedEvents() {
    Value v = store.getReceivedEvents();
    return v.isNil() ? json::value() : v.json();
  }
  // Flushes and returns every value the completion was called with (waiting for the first).
  std::vector<bool> flush(bool raiseOnYes = false) {
    auto calls = std::make_shared<std::vector<bool>>();
    auto first = std::make_shared<std::promise<void>>();
    manager.flushEventsWithCompletionBlock([=](bool ok) {
      calls->push_back(ok);
      if (calls->size() == 1) first->set_value();
      if (ok && raiseOnYes) throw Exception("TestException", "completion refused YES");
    });
    EXPECT_EQ(first->get_future().wait_for(std::chrono::seconds(20)), std::future_status::ready);
    // A second call, if any, follows on the same thread before the task's handler returns; an
    // empty task of the same session completes only after that.
    auto drained = std::make_shared<std::promise<void>>();
    manager.getZoVURLSession()
        ->dataTaskWithRequest(UrlRequest(), [=](auto...) { drained->set_value(); })
        ->resume();
    drained->get_future().wait();
    return *calls;
  }

  zvtest::ProcessStateReset state;
  zvtest::TempDir dir;
  zvtest::LogCapture log;
  LocalServer server{GetParam()};
  // The stores live in dir from the shared objects' first use on.
  bool platformSet = [this] {
    zv::Platform::shared().setStoreDirectory(dir.path());
    return true;
  }();
  ZVExtensionDataManager& store = ZVExtensionDataManager::sharedManager();
  ZVExtensionNetworkManager& manager = ZVExtensionNetworkManager::sharedManager();
};

TEST_P(ReportsTest, SendsEveryEventInOnePostAndClearsThemOn200) {
  for (bool withIdentifiers : {false, true}) {
    SCOPED_TRACE(withIdentifiers);
    if (withIdentifiers) {
      hostSets("zov_identifiers", R"({"uid": "U1"})");
      hostSets("APP1", std::string(R"({"zov_events": )") + kEvents + "}");
    }
    EXPECT_EQ(flush(), std::vector<bool>{true});
    EXPECT_TRUE(storedEvents().is_null());
    EXPECT_TRUE(log.sinkContains("Events Synced successfully "));

    auto seen = server.requests().back();
    EXPECT_EQ(seen.method, "POST");
    EXPECT_EQ(seen.path, "/v2/report/add/APP1");
    EXPECT_EQ(seen.header("X-ZENTROVA-APP-KEY"), "APP1");
    EXPECT_EQ(seen.headers.find("content-type")->first, "content-type");
    EXPECT_EQ(seen.header("content-type"), "application/json");
    EXPECT_EQ(seen.headers.count("Expect"), 0u);  // no 100-continue round trip
    json::object body = json::parse(seen.body).as_object();
    EXPECT_EQ(body.size(), withIdentifiers ? 4u : 3u);
    EXPECT_TRUE(body["viewsCount"].is_int64());
    EXPECT_EQ(body["viewsCount"], 3);
    EXPECT_EQ(body["viewsInfo"], json::parse(kEvents));
    EXPECT_EQ(body["query_params"], json::parse(R"({"sdk": "1", "os": "linux"})"));
    if (withIdentifiers) {
      EXPECT_EQ(body["identifiers"], json::parse(R"({"uid": "U1"})"));
    }
  }
}

TEST_P(ReportsTest, AnyOtherAnswerOrNoAnswerKeepsTheEventsAndReportsNo) {
  std::string response =
      "<HttpUrlResponse> { URL: " + server.url("/v2/report/add/APP1") + " } { Status Code: ";
  for (int status : {201, 204, 404, 500, 0}) {  // 0: nothing listens on the port
    SCOPED_TRACE(status);
    server.setPostStatus(status);
    if (!status) hostSets("zov_reports_port", std::to_string(LocalServer::closedPort()));
    EXPECT_EQ(flush(), std::vector<bool>{false});
    EXPECT_EQ(storedEvents(), json::parse(kEvents));
    std::string logged = log.sink().back();
    if (status) {
      EXPECT_EQ(logged.rfind("Api failed with response " + response + std::to_string(status), 0),
                0u);
      EXPECT_TRUE(logged.ends_with(" and error (null)")) << logged;
    } else {
      EXPECT_EQ(logged.rfind("Api failed with response (null) and error Error "
                             "Domain=ZVURLErrorDomain Code=7 ",
                             0),
                0u);
    }
  }
  // The same events went out again with each flush.
  auto seen = server.requests();
  ASSERT_EQ(seen.size(), 4u);
  EXPECT_EQ(seen[0].body, seen[3].body);
}

// A redirect that would drop the body is the answer; one that keeps it (307, 308) is followed.
TEST_P(ReportsTest, OnlyRedirectsThatKeepTheBodyAreFollowed) {
  server.addFile("/landed", "landed");  // a GET there would answer 200
  for (int status : {301, 302, 303, 307, 308}) {
    SCOPED_TRACE(status);
    hostSets("APP1", std::string(R"({"zov_events": )") + kEvents + "}");
    server.setPostRedirect(status, "/landed");
    size_t before = server.requests().size();
    bool followed = status >= 307;
    EXPECT_EQ(flush(), std::vector<bool>{followed});
    EXPECT_EQ(storedEvents(), followed ? json::value() : json::parse(kEvents));
    auto seen = server.requests();
    ASSERT_EQ(seen.size(), before + (followed ? 2 : 1));
    if (followed) {
      EXPECT_EQ(seen.back().method, "POST");
      EXPECT_EQ(seen.back().path, "/landed");
      EXPECT_EQ(seen.back().body, seen[before].body);
    }
  }
}

TEST_P(ReportsTest, CompletionRaisingOnYesIsCalledAgainWithNo) {
  EXPECT_EQ(flush(true), (std::vector<bool>{true, false}));  // 200
  EXPECT_EQ(flush(true), (std::vector<bool>{true, false}));  // nothing left to send
  EXPECT_EQ(log.sink(),
            (std::vector<std::string>{"Events Synced successfully ",
                                      "Exception while syncing tracked events for notification : "
                                      "completion refused YES",
                                      "No Events to flush!",
                                      "Exception while syncing tracked events for notification : "
                                      "completion refused YES"}));
}

TEST_P(ReportsTest, OutcomesDecidedBeforeAnyRequest) {
  struct Case {
    std::string key, json;
    bool result;
    std::string message;
  } cases[] = {
      {"APP1", "{}", true, "No Events to flush!"},
      {"APP1", R"({"zov_events": []})", true, "No Events to flush!"},
      {"zov_params", "null", true, "Error in reports request creation!"},
      {"APP1", R"({"zov_events": "E"})", false,
       "Exception while syncing tracked events for notification : "},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.json);
    hostSets("APP1", std::string(R"({"zov_events": )") + kEvents + "}");
    hostSets(c.key.c_str(), c.json);
    EXPECT_EQ(flush(), std::vector<bool>{c.result});
    EXPECT_EQ(log.sink().back().rfind(c.message, 0), 0u) << log.sink().back();
  }
  EXPECT_TRUE(server.requests().empty());
}

INSTANTIATE_TEST_SUITE_P(HttpAndHttps, ReportsTest,
                         ::testing::Values(LocalServer::Scheme::kHttp,
                                           LocalServer::Scheme::kHttps));

class ReportsUrlTest : public ReportsTest {};

TEST_P(ReportsUrlTest, BuiltFromTheStoredEndpointAsFound) {
  struct Case {
    std::string scheme, host, port, path;
    std::optional<std::string> url;
    bool logged;
  } cases[] = {
      {"\"https\"", "\"h.example\"", "0", "\"/r\"", "https://h.example/r", false},
      {"\"https\"", "\"h.example\"", "-5", "\"/r\"", "https://h.example/r", false},
      {"\"https\"", "\"h.example\"", "443", "\"/r\"", "https://h.example:443/r", false},
      {"\"http\"", "\"h.example\"", "\"8080\"", "\"/r\"", "http://h.example:8080/r", false},
      {"\"https\"", "\"h.example\"", "[1]", "\"/r\"", std::nullopt, true},
      {"\"https\"", "5", "443", "\"/r\"", std::nullopt, true},
      {"\"ht tp\"", "\"h.example\"", "443", "\"/r\"", std::nullopt, true},
      {"\"https\"", "\"h.example\"", "443", "\"r\"", std::nullopt, false},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.scheme + c.host + c.port + c.path);
    hostSets("zov_reports_scheme", c.scheme);
    hostSets("zov_reports_host", c.host);
    hostSets("zov_reports_port", c.port);
    hostSets("zov_reports_path", c.path);
    size_t before = log.sink().size();
    std::optional<Url> url = manager.reportAddRequestURL();
    EXPECT_EQ(url ? std::optional(url->absoluteString()) : std::nullopt, c.url);
    EXPECT_EQ(log.sink().size() - before, c.logged ? 1u : 0u);
    if (c.logged) {
      EXPECT_EQ(log.sink().back().rfind("Exception in creating URL ", 0), 0u);
    }
  }
  // Without a URL the request is still built; its task fails, and the events stay.
  EXPECT_EQ(flush(), std::vector<bool>{false});
  EXPECT_EQ(storedEvents(), json::parse(kEvents));
}

INSTANTIATE_TEST_SUITE_P(Http, ReportsUrlTest, ::testing::Values(LocalServer::Scheme::kHttp));

TEST(ReportsBodyTest, NumbersJsonCannotWriteRaise) {
  double nan = std::nan(""), inf = std::numeric_limits<double>::infinity();
  struct Case {
    json::value events;
    json::object params;
    std::string reason;
  } cases[] = {
      {json::array{json::object{{"x", nan}}}, {}, "Invalid number value (NaN) in JSON write"},
      {json::array{}, {{"x", -inf}}, "Invalid number value (infinite) in JSON write"},
      {json::object{}, {}, ""},  // events must be an array
  };
  for (const auto& c : cases) {
    try {
      ReportsBody::serialize(Value(c.events), c.params, std::nullopt);
      ADD_FAILURE() << "no exception";
    } catch (const Exception& e) {
      EXPECT_TRUE(c.reason.empty() || e.reason() == c.reason) << e.reason();
    }
  }
}

}  // namespace
}  // namespace zv
