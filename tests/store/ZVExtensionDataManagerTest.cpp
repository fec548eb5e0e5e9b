#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <boost/json/parse.hpp>

#include "model/ZVPushPayload.h"
#include "model/ZVRichNotifUtils.h"
#include "model/ZVRichPush.h"
#include "platform/foundation/Clock.h"
#include "support/TestSupport.h"
#include "zentrova/UserDefaults.h"
#include "zentrova/ZVExtensionDataManager.h"

namespace zv {
namespace {

namespace json = boost::json;

constexpr char kGroup[] = "group.com.example.app";

class ZVExtensionDataManagerTest : public ::testing::Test {
 protected:
  // The host application's view of the shared suite.
  std::shared_ptr<UserDefaults> host() {
    return UserDefaults::initWithSuiteName(kGroup, dir.path());
  }
  void hostSets(const char* key, const char* json) { host()->setObject(Value::parse(json), key); }
  json::value stored(const char* key) {
    Value v = host()->objectForKey(key);
    return v.isNil() ? json::value() : v.json();
  }
  // A configured store: app group, "zov_params" at the top level, application id ABC.
  void configure(const char* appID = "ABC") {
    m.setAppGroupID(kGroup);
    hostSets("zov_params", R"({"sdk": "1"})");
    m.configureDataManagerWithAppID(Value(appID));
  }

  static std::shared_ptr<ZVPushPayload> payload(const char* json,
                                                const char* displayName = nullptr) {
    auto p = std::make_shared<ZVPushPayload>();
    p->pushPayloadDict = Value::parse(json);
    p->zentrovaDict = ZVRichNotifUtils::validObjectForKey("zentrova", p->pushPayloadDict);
    if (displayName) {
      p->richPush = std::make_shared<ZVRichPush>();
      p->richPush->templateDisplayName = Value(displayName);
    }
    return p;
  }

  zvtest::TempDir dir;
  // 2023-11-14 22:13:20.25 UTC, in a zone one hour ahead.
  ZVExtensionDataManager m{
      {dir.path(), "com.example.app.service", std::make_shared<FixedClock>(1700000000.25, 3600)}};
};

constexpr char kPayload[] =
    R"({"aps": {"alert": "hi"}, "zentrova": {"cid": "C1", "app_id": "ABC"}})";

TEST_F(ZVExtensionDataManagerTest, WithoutAnAppGroupReadsGiveNothingAndWritesAreSkipped) {
  EXPECT_FALSE(m.appGroupIDProvided());
  EXPECT_EQ(m.getAppGroupID(), std::nullopt);
  EXPECT_EQ(m.getZovUserDefaults(), nullptr);
  m.configureDataManagerWithAppID(Value("XYZ"));
  EXPECT_FALSE(m.getQueryParams() || m.getIdentifiers());
  EXPECT_EQ(m.getZoVReportsHost(), Value("reports.zentrova.com"));
  EXPECT_EQ(m.getZoVReportsPort(), Value(json::value(443)));
  EXPECT_EQ(m.getZoVReportsPath(), Value("/v2/report/add/XYZ"));
  m.saveReceivedNotificationWithPayload(Value::parse(kPayload));
  m.saveEvent("E", payload(kPayload));
  m.saveClickedCardInfo(Value::parse(R"({"card_id": 1})"));
  m.updatePendingNotifications(Value::parse("[1]"));
  m.updateReceivedEvents(Value::parse("[1]"));
  m.resetEventsData();
  EXPECT_TRUE(m.getPendingNotifications().isNil());
  EXPECT_TRUE(m.getReceivedEvents().isNil());
  EXPECT_FALSE(std::filesystem::exists(dir.path() / "group.com.example.app.sqlite"));

  // The id lives in the extension's own store; an empty or missing id keeps the earlier one.
  m.setAppGroupID("group.first");
  m.setAppGroupID("");
  m.setAppGroupID(std::nullopt);
  EXPECT_EQ(UserDefaults::initWithSuiteName("com.example.app.service", dir.path())
                ->objectForKey("zov_app_group_ID"),
            Value("group.first"));
  EXPECT_TRUE(m.appGroupIDProvided());
  EXPECT_EQ(m.getZovUserDefaults()->suiteName(), "group.first");
}

TEST_F(ZVExtensionDataManagerTest, ConfiguringCreatesTheAppDictionaryOnceAndRefusesOtherIds) {
  m.setAppGroupID(kGroup);
  m.configureDataManagerWithAppID(Value("ABC"));
  EXPECT_EQ(stored("ABC"), json::object());
  hostSets("ABC", R"({"zov_reports_host": "h"})");
  m.configureDataManagerWithAppID(Value("ABC"));
  EXPECT_EQ(stored("ABC"), json::parse(R"({"zov_reports_host": "h"})"));

  json::object before = host()->dictionaryRepresentation();
  for (const Value& id : {Value(), Value::null(), Value(json::value(42)), Value::parse("{}")}) {
    EXPECT_NO_THROW(m.configureDataManagerWithAppID(id));
    EXPECT_EQ(m.currentAppID(), id);
    m.saveEvent("E", payload(kPayload));
    m.updateReceivedEvents(Value::parse("[1]"));
    m.resetEventsData();
    EXPECT_TRUE(m.getReceivedEvents().isNil());
    EXPECT_EQ(host()->dictionaryRepresentation(), before) << id.description();
  }
}

TEST_F(ZVExtensionDataManagerTest, QueryParamsComeOnlyFromTheTopLevel) {
  struct Case {
    const char* top;
    const char* app;
    const char* expected;
  } cases[] = {
      {R"({"a": 1})", nullptr, R"({"a": 1})"},
      {R"({"a": 1})", R"({"b": 2})", R"({"a": 1})"},
      {nullptr, R"({"b": 2})", nullptr},
      {R"("not a dictionary")", nullptr, nullptr},
  };
  m.setAppGroupID(kGroup);
  m.configureDataManagerWithAppID(Value("ABC"));
  for (const auto& c : cases) {
    host()->removeObject("zov_params");
    if (c.top) hostSets("zov_params", c.top);
    hostSets("ABC", c.app ? (std::string(R"({"zov_params": )") + c.app + "}").c_str() : "{}");
    auto params = m.getQueryParams();
    EXPECT_EQ(params.has_value(), c.expected != nullptr);
    if (c.expected) {
      EXPECT_EQ(json::value(*params), json::parse(c.expected));
    } else {  // an unconfigured store records nothing
      json::object before = host()->dictionaryRepresentation();
      m.saveReceivedNotificationWithPayload(Value::parse(kPayload));
      m.saveEvent("E", payload(kPayload));
      EXPECT_EQ(host()->dictionaryRepresentation(), before);
    }
  }
}

TEST_F(ZVExtensionDataManagerTest, IdentifiersAndEndpointFallBackFromAppToTopLevelToDefault) {
  struct Case {
    const char* app;  // the per-application dictionary
    const char* top;  // top-level keys
    const char* identifiers;
    const char* host;
    const char* scheme;
    const char* port;
    const char* path;
  } cases[] = {
      {R"({})", R"({})", nullptr, R"("reports.zentrova.com")", R"("https")", "443",
       R"("/v2/report/add/XYZ")"},
      {R"({})",
       R"({"zov_identifiers": {"t": 1}, "zov_reports_host": "top", "zov_reports_scheme": "http",
           "zov_reports_port": 8080, "zov_reports_path": "/top"})",
       R"({"t": 1})", R"("top")", R"("http")", "8080", R"("/top")"},
      {R"({"zov_identifiers": {"a": 2}, "zov_reports_host": "app", "zov_reports_scheme": "ftp",
           "zov_reports_port": "9", "zov_reports_path": 5})",
       R"({"zov_identifiers": {"t": 1}, "zov_reports_host": "top", "zov_reports_port": 8080})",
       R"({"a": 2})", R"("app")", R"("ftp")", R"("9")", "5"},
      // Null counts as absent; identifiers that are not a dictionary count as absent.
      {R"({"zov_identifiers": "x", "zov_reports_host": null, "zov_reports_port": 0.5})",
       R"({"zov_identifiers": [1], "zov_reports_host": null})", nullptr,
       R"("reports.zentrova.com")", R"("https")", "0.5", R"("/v2/report/add/XYZ")"},
  };
  m.setAppGroupID(kGroup);
  m.configureDataManagerWithAppID(Value("XYZ"));
  for (const auto& c : cases) {
    for (const auto& [key, value] : host()->dictionaryRepresentation()) host()->removeObject(key);
    hostSets("XYZ", c.app);
    json::value top = json::parse(c.top);
    for (const auto& [key, value] : top.as_object()) {
      host()->setObject(Value(value), key);
    }
    auto ids = m.getIdentifiers();
    EXPECT_EQ(ids ? json::value(*ids) : json::value(),
              c.identifiers ? json::parse(c.identifiers) : json::value())
        << c.top;
    EXPECT_EQ(m.getZoVReportsHost().json(), json::parse(c.host));
    EXPECT_EQ(m.getZoVReportsScheme().json(), json::parse(c.scheme));
    EXPECT_EQ(m.getZoVReportsPort().json(), json::parse(c.port));
    EXPECT_EQ(m.getZoVReportsPort().json().kind(), json::parse(c.port).kind());
    EXPECT_EQ(m.getZoVReportsPath().json(), json::parse(c.path));
  }
}

TEST_F(ZVExtensionDataManagerTest, ReceivedNotificationsAreStampedAndCappedAt31) {
  configure();
  m.saveReceivedNotificationWithPayload(Value::parse(kPayload));
  json::value expected = json::parse(kPayload);
  expected.as_object()["zentrova"].as_object()["received_epoch_val"] = 1700000000.25;
  ASSERT_EQ(m.getPendingNotifications().json(), json::array{expected});

  // 31 stored: the oldest goes. 40 stored by someone else: one goes, 40 stay.
  for (size_t count : {31u, 40u}) {
    json::array list;
    for (size_t i = 0; i < count; ++i) list.push_back(json::object{{"n", i}});
    m.updatePendingNotifications(Value(json::value(list)));
    m.saveReceivedNotificationWithPayload(Value::parse(kPayload));
    const json::array& after = m.getPendingNotifications().array();
    ASSERT_EQ(after.size(), count);
    EXPECT_EQ(after.front(), (json::object{{"n", 1}}));
    EXPECT_EQ(after.back(), expected);
  }

  // Without a per-application dictionary the list lives at the top level.
  m.configureDataManagerWithAppID(Value());
  m.saveReceivedNotificationWithPayload(Value::parse(kPayload));
  EXPECT_EQ(stored("zov_pending_notifications"), json::array{expected});
  EXPECT_EQ(m.getPendingNotifications().json(), json::array{expected});
}

// A push the store cannot keep is left out, and costs nothing that was stored before it: nested
// 511 levels it reads as a payload but not inside the per-application dictionary; 1e309 is no
// number JSON can write.
TEST_F(ZVExtensionDataManagerTest, APoisonedPayloadFollowedByAPlainOneKeepsEveryEarlierEvent) {
  configure();
  std::string deep = R"({"zentrova": {"cid": "C1", "app_id": "ABC"}, "x": )" +
                     std::string(510, '[') + std::string(510, ']') + "}";
  for (const std::string& poison :
       {deep, std::string(R"({"zentrova": {"cid": "C1", "app_id": "ABC", "price": 1e309}})")}) {
    zvtest::LogCapture log;
    m.resetEventsData();
    m.updatePendingNotifications(Value(json::value(json::array())));
    m.saveEvent("E", payload(kPayload));
    m.saveReceivedNotificationWithPayload(Value::parse(kPayload));
    m.saveReceivedNotificationWithPayload(Value::parse(poison));
    m.saveReceivedNotificationWithPayload(Value::parse(kPayload));
    m.saveEvent("E", payload(kPayload));
    EXPECT_EQ(m.getReceivedEvents().array().size(), 2u) << poison.substr(0, 80);
    EXPECT_EQ(m.getPendingNotifications().array().size(), 2u);
    EXPECT_EQ(stored("ABC").at("zov_events").as_array().size(), 2u);
    EXPECT_FALSE(log.system().empty());
  }
}

TEST_F(ZVExtensionDataManagerTest, EventsAreRecordedExactlyAndReset) {
  configure();
  auto p = payload(R"({"zentrova": {"cid": "C1", "app_id": "ABC", "media-attachment": "u",
                      "media-type": "image", "inbox_expiry": 9, "screenData": {}, "webUrl": "w",
                      "couponCode": "c", "zov_inapp": 1, "zov_inapp_cid": 2, "tag": "kept"}})",
                   "T1");
  json::value record = json::parse(R"({"EVENT_ACTION": "NOTIFICATION_RECEIVED_IOS_ZOV",
      "EVENT_ATTRS": {"cid": "C1", "app_id": "ABC", "tag": "kept", "template_name": "T1"},
      "EVENT_G_TIME": "1700000000", "EVENT_L_TIME": "14:11:2023:23:13:20", "N_I_E": 1})");
  EXPECT_EQ(m.getEventDictWithName("NOTIFICATION_RECEIVED_IOS_ZOV", p).json(), record);
  EXPECT_EQ(json::value(m.statsEventAttributesFromPayload(payload(kPayload))),
            json::parse(R"({"cid": "C1", "app_id": "ABC"})"));
  EXPECT_TRUE(m.getEventDictWithName("E", nullptr).isNil());
  EXPECT_TRUE(m.getEventDictWithName("E", payload(R"({"aps": {}})")).isNil());

  // Skipped without a name, a payload, or a payload that gives no record.
  m.saveEvent(std::nullopt, p);
  m.saveEvent("E", nullptr);
  m.saveEvent("E", payload(R"({"aps": {}})"));
  EXPECT_TRUE(m.getReceivedEvents().isNil());

  hostSets("ABC", R"({"zov_reports_host": "h"})");
  m.saveEvent("NOTIFICATION_RECEIVED_IOS_ZOV", p);
  m.saveEvent("NOTIFICATION_RECEIVED_IOS_ZOV", p);
  EXPECT_EQ(m.getReceivedEvents().json(), (json::array{record, record}));
  EXPECT_EQ(stored("ABC").at("zov_reports_host"), "h");

  m.resetEventsData();
  EXPECT_TRUE(m.getReceivedEvents().isNil());
  EXPECT_EQ(stored("ABC"), json::parse(R"({"zov_reports_host": "h"})"));

  // Top-level parameters and no per-application dictionary yet: the event makes one.
  host()->removeObject("ABC");
  m.saveEvent("E", p);
  EXPECT_EQ(stored("ABC").at("zov_events").as_array().size(), 1u);

  m.saveClickedCardInfo(Value::parse(R"({"card_id": "1", "campaign_id": "C1"})"));
  m.saveClickedCardInfo(Value::parse(R"({"card_id": "2", "campaign_id": "C1"})"));
  EXPECT_EQ(stored("zov_push_template_click_info"),
            json::parse(R"({"card_id": "2", "campaign_id": "C1"})"));
}

// Several real processes (the service extension, the content extension, the host application)
// append to one suite at the same moment: every record arrives.
TEST_F(ZVExtensionDataManagerTest, ConcurrentProcessesLoseNoRecord) {
  constexpr int kProcesses = 4;
  constexpr int kEvents = 40;
  constexpr int kNotifications = 7;  // 28 in all: below the cap of 31
  configure();
  auto p = payload(kPayload);
  std::vector<pid_t> children;
  for (int i = 0; i < kProcesses; ++i) {
    pid_t child = fork();
    if (child == 0) {
      for (int n = 0; n < kEvents; ++n) {
        m.saveEvent("E" + std::to_string(i), p);
        if (n < kNotifications) m.saveReceivedNotificationWithPayload(p->pushPayloadDict);
      }
      _exit(0);
    }
    children.push_back(child);
  }
  for (pid_t child : children) {
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  EXPECT_EQ(m.getReceivedEvents().array().size(), size_t{kProcesses * kEvents});
  EXPECT_EQ(m.getPendingNotifications().array().size(), size_t{kProcesses * kNotifications});
}

}  // namespace
}  // namespace zv
