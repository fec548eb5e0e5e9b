#include <gtest/gtest.h>

#include <algorithm>
#include <boost/json.hpp>
#include <filesystem>
#include <fstream>
#include <future>
#include <set>

#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/Md5.h"
#include "platform/net/UrlSession.h"
#include "platform/notifications/NotificationCenter.h"
#include "reporting/ZVExtensionNetworkManager.h"
#include "service/ServiceFlowFixture.h"
#include "zentrova/Exception.h"
#include "zentrova/Platform.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/UNNotificationContent.h"
#include "zentrova/UNNotificationSound.h"
#include "zentrova/UserDefaults.h"
#include "zentrova/ZVRichNotification.h"

namespace zvtest {
namespace {

namespace json = boost::json;
using zv::Value;

class ServiceFlowTest : public ServiceFlowFixture {};

std::string idOf(const std::string& url) { return zv::md5Hex(url); }

TEST_F(ServiceFlowTest, ForeignNotificationPassesThroughUntouched) {
  center->setShownCount(3);
  json::object p{{"aps", json::object{{"alert", "Hello"}, {"badge", 1}}}, {"other", 2}};
  auto content = run(p);
  ASSERT_TRUE(content);
  EXPECT_EQ(content->body(), "Hello");
  EXPECT_EQ(content->badge().integerValue(), 1);
  EXPECT_EQ(content->userInfo(), Value(p));
  EXPECT_TRUE(suite->objectForKey(kAppId).isNil());
  EXPECT_TRUE(server.requests().empty());
  EXPECT_EQ(handlerCalls, 1);
}

TEST_F(ServiceFlowTest, RichTextsSoundAndCategoryReplaceTheAlert) {
  struct Case {
    json::object ios;
    std::string sound;  // "" for the default sound
    std::string category;
    json::value apsSound;
  };
  const Case cases[] = {
      {{}, "", "", "sent.caf"},
      {{{"sound", "chime.caf"}, {"category", "CAT"}}, "chime.caf", "CAT", "chime.caf"},
      {{{"sound", ""}, {"category", ""}}, "", "", "sent.caf"},
  };
  for (const auto& c : cases) {
    json::object rich = richPush({});
    if (!c.ios.empty()) rich["ios"] = c.ios;
    auto content = run(payload(rich));
    ASSERT_TRUE(content);
    EXPECT_EQ(content->title(), "Rich title");
    EXPECT_EQ(content->subtitle(), "");  // no rich subtitle clears the visible one
    EXPECT_EQ(content->body(), "Rich & body");
    ASSERT_TRUE(content->sound());
    EXPECT_EQ(content->sound()->isDefault(), c.sound.empty());
    EXPECT_EQ(content->sound()->name(), c.sound);
    EXPECT_EQ(content->categoryIdentifier(), c.category);
    Value aps = content->userInfo().get("aps");
    EXPECT_EQ(aps.get("alert").get("title").string(), "Rich title");
    EXPECT_EQ(aps.get("alert").get("subtitle").string(), "Sent subtitle");
    EXPECT_EQ(aps.get("alert").get("body").string(), "Rich & body");
    EXPECT_EQ(aps.get("sound").json(), c.apsSound);
    EXPECT_EQ(aps.get("category").string(), c.category);
  }
}

TEST_F(ServiceFlowTest, DefaultActionsMoveIntoZentrovaAndAppExtra) {
  auto navigate = [](const char* type, const char* value) {
    return json::object{{"name", "navigate"}, {"type", type}, {"value", value}};
  };
  struct Case {
    json::array actions;
    bool withAppExtra;
    json::value zentrovaCoupon, zentrovaWebUrl, deepLink, screenName, screenData;
  };
  json::object withPairs = navigate("screenName", "S1");
  withPairs["kvPairs"] = json::object{{"a", 1}};
  const Case cases[] = {
      {{navigate("deepLink", "app://v1"), {{"name", "coupon"}, {"value", "SAVE10"}}},
       true,
       "SAVE10",
       nullptr,
       "app://v1",
       nullptr,
       nullptr},
      {{navigate("richLanding", "https://a"), navigate("richLanding", "https://b")},
       true,
       nullptr,
       "https://b",
       nullptr,
       nullptr,
       nullptr},
      {{withPairs}, true, nullptr, nullptr, nullptr, "S1", json::object{{"a", 1}}},
      {{}, true, nullptr, nullptr, nullptr, nullptr, nullptr},
      {{navigate("deepLink", "app://lost")}, false, nullptr, nullptr, nullptr, nullptr, nullptr},
  };
  auto valueOr = [](const Value& dict, const char* key) {
    Value v = dict.isObject() ? dict.get(key) : Value();
    return v.isNil() ? json::value(nullptr) : v.json();
  };
  for (const auto& c : cases) {
    json::object rich = richPush({});
    rich["defaultActions"] = c.actions;
    json::object p = payload(rich);
    if (!c.withAppExtra) p.erase("app_extra");
    auto content = run(p);
    ASSERT_TRUE(content);
    Value info = content->userInfo();
    Value z = info.get("zentrova"), x = info.get("app_extra");
    EXPECT_EQ(valueOr(z, "couponCode"), c.zentrovaCoupon);
    EXPECT_EQ(valueOr(z, "webUrl"), c.zentrovaWebUrl);
    EXPECT_EQ(valueOr(x, "zov_deeplink"), c.deepLink);
    EXPECT_EQ(valueOr(x, "screenName"), c.screenName);
    EXPECT_EQ(valueOr(x, "screenData"), c.screenData);
    EXPECT_EQ(x.isNil(), !c.withAppExtra);
    // The stored notification is the rewritten one, actions in their final places.
    Value pending = pendingNotifications();
    ASSERT_TRUE(pending.isArray());
    Value last = pending.elements().back();
    EXPECT_EQ(valueOr(last.get("app_extra"), "zov_deeplink"), c.deepLink);
    EXPECT_EQ(valueOr(last.get("zentrova"), "couponCode"), c.zentrovaCoupon);
  }
}

TEST_F(ServiceFlowTest, BadgeOfOneCountsTheDeliveredNotifications) {
  center->setShownCount(3);
  const std::pair<json::value, json::value> cases[] = {{1, 4}, {0, 0}, {2, 2}, {nullptr, nullptr}};
  for (const auto& [sent, shown] : cases) {
    json::object p = payload();
    if (!sent.is_null()) p["aps"].as_object()["badge"] = sent;
    // The report waits at the server until the center has answered the badge query (it answers in
    // order, so once it answers a later query the flow's answer has landed).
    server.holdAnswers();
    auto content = run(p, false, [&] {
      std::promise<void> answered;
      center->getDeliveredNotifications([&](const auto&) { answered.set_value(); });
      answered.get_future().wait();
      server.releaseAnswers();
    });
    ASSERT_TRUE(content);
    Value badge = content->badge();
    EXPECT_EQ(badge.isNil() ? json::value(nullptr) : badge.json(), shown) << sent;
  }
}

TEST_F(ServiceFlowTest, EventsAreRecordedAndReportedOnce) {
  servePng("/a.png");
  auto content = run(payload(richPush({server.url("/a.png")})));
  ASSERT_TRUE(content);
  auto posts = requests("POST");
  ASSERT_EQ(posts.size(), 1u);
  EXPECT_EQ(posts[0].path, std::string("/v2/report/add/") + kAppId);
  EXPECT_EQ(posts[0].header("X-ZENTROVA-APP-KEY"), kAppId);
  json::value body = json::parse(posts[0].body);
  EXPECT_EQ(body.at("viewsCount"), 2);
  const auto& views = body.at("viewsInfo").as_array();
  EXPECT_EQ(views[0].at("EVENT_ACTION"), "NOTIFICATION_RECEIVED_IOS_ZOV");
  EXPECT_EQ(views[1].at("EVENT_ACTION"), "ZOV_NOTIFICATION_SHOWN");
  EXPECT_EQ(
      views[1].at("EVENT_ATTRS"),
      (json::object{
          {"cid", "cmp-1"}, {"app_id", kAppId}, {"campaign", "spring"}, {"template_name", "T1"}}));
  EXPECT_TRUE(storedEvents().isNil() || storedEvents().array().empty());  // 200 clears them
  EXPECT_EQ(handlerCalls, 1);
}

TEST_F(ServiceFlowTest, MediaDownloadsBecomeAttachmentsNamedByTheirUrl) {
  servePng("/a.png");
  servePng("/b");
  server.addFile("/c.gif", sampleMedia("sample.gif"), "image/gif");
  std::vector<std::string> urls = {server.url("/a.png"), server.url("/b"), server.url("/a.png"),
                                   server.url("/c.gif")};
  auto content = run(payload(richPush(urls)));
  ASSERT_TRUE(content);
  auto attachments = content->attachments();
  ASSERT_EQ(attachments.size(), 3u);  // the repeated URL is downloaded once
  std::set<std::string> ids, names;
  for (const auto& a : attachments) {
    ids.insert(a->identifier());
    names.insert(a->URL().lastPathComponent());
    EXPECT_TRUE(std::filesystem::exists(a->URL().filePath()));
    EXPECT_EQ(a->URL().filePath().parent_path(), dir.path() / "tmp" / "Attachments");
  }
  EXPECT_EQ(ids, (std::set<std::string>{idOf(urls[0]), idOf(urls[1]), idOf(urls[3])}));
  EXPECT_EQ(names, (std::set<std::string>{idOf(urls[0]) + ".png", idOf(urls[1]) + ".png",
                                          idOf(urls[3]) + ".gif"}));
  EXPECT_EQ(requests("GET").size(), 3u);
}

TEST_F(ServiceFlowTest, TopLevelMediaOnlyWithoutRichPush) {
  server.addFile("/clip", sampleMedia("sample.mp4"), "video/mp4");
  json::object p = payload();
  p["zentrova"].as_object()["media-attachment"] = server.url("/clip");
  p["zentrova"].as_object()["media-type"] = "video";
  auto content = run(p);
  ASSERT_TRUE(content);
  ASSERT_EQ(content->attachments().size(), 1u);
  EXPECT_EQ(content->attachments()[0]->URL().lastPathComponent(),
            idOf(server.url("/clip")) + ".mp4");
  // A rich push without image widgets takes the card path: no media at all.
  p["zovFeatures"] = json::object{{"richPush", richPush({})}};
  content = run(p);
  ASSERT_TRUE(content);
  EXPECT_TRUE(content->attachments().empty());
}

TEST_F(ServiceFlowTest, FailedDownloadsLeaveNoAttachmentAndStillDeliver) {
  servePng("/good.png");
  servePng("/good2.png");
  server.addFile("/text.png", "this is not an image", "image/png");
  const char* failing[] = {"/status/404", "/status/500", "/cut/40000", "/text.png", "/status/204"};
  for (const char* path : failing) {
    LogCapture capture;
    // One failed download of three: the handler still runs once, with the other two.
    auto content = run(
        payload(richPush({server.url("/good.png"), server.url(path), server.url("/good2.png")})));
    ASSERT_TRUE(content) << path;
    EXPECT_EQ(content->attachments().size(), 2u) << path;
    EXPECT_EQ(capture.system(), std::vector<std::string>{"Attachment Download failure"}) << path;
    EXPECT_EQ(handlerCalls, 1);
  }
}

// A file larger than any attachment is stopped as it comes in, announced or not, and is refused as
// an attachment: the server did answer.
TEST_F(ServiceFlowTest, AFileTooLargeForAnAttachmentIsAnsweredButNotAttached) {
  servePng("/good.png");
  std::string size = std::to_string(zv::UNNotificationAttachment::kMaxAttachmentBytes + 1);
  for (const std::string& path : {"/bytes/" + size, "/chunked/" + size}) {
    LogCapture capture;
    auto content = run(payload(richPush({server.url(path), server.url("/good.png")})));
    ASSERT_TRUE(content) << path;
    EXPECT_EQ(content->attachments().size(), 1u) << path;
    EXPECT_TRUE(capture.sinkContains("Unable to create attachment")) << path;
  }
}

TEST_F(ServiceFlowTest, AttachmentsComeInTheOrderTheDownloadsFinished) {
  server.addFile("/slow.png", sampleMedia("sample.png"), "image/png",
                 std::chrono::milliseconds(400));
  servePng("/fast.png");
  std::string slow = server.url("/slow.png"), fast = server.url("/fast.png");
  auto content = run(payload(richPush({slow, fast})));
  ASSERT_TRUE(content);
  auto attachments = content->attachments();
  ASSERT_EQ(attachments.size(), 2u);
  EXPECT_EQ(attachments[0]->identifier(), idOf(fast));
  EXPECT_EQ(attachments[1]->identifier(), idOf(slow));
}

TEST_F(ServiceFlowTest, AServerSlowerThanTheTimeOutCountsAsFailed) {
  zv::UrlSessionConfiguration config;
  config.timeoutIntervalForRequest = 0.3;
  auto& manager = zv::ZVExtensionNetworkManager::sharedManager();
  manager.setNetworkSession(zv::UrlSession::sessionWithConfiguration(config));
  server.addFile("/late.png", sampleMedia("sample.png"), "image/png",
                 std::chrono::milliseconds(3000));
  servePng("/good.png");
  auto content = run(payload(richPush({server.url("/late.png"), server.url("/good.png")})));
  manager.setNetworkSession(nullptr);
  ASSERT_TRUE(content);
  ASSERT_EQ(content->attachments().size(), 1u);
  EXPECT_EQ(content->attachments()[0]->identifier(), idOf(server.url("/good.png")));
  EXPECT_EQ(requests("POST").size(), 1u);  // the report still went out
}

TEST_F(ServiceFlowTest, AnUnwritableTemporaryFolderGivesNoAttachments) {
  servePng("/a.png");
  std::filesystem::path file = dir.path() / "plain-file";
  std::ofstream(file) << "x";
  zv::Platform::shared().setTemporaryDirectory(file / "tmp");  // its parent is a file
  auto content = run(payload(richPush({server.url("/a.png")})));
  ASSERT_TRUE(content);
  EXPECT_TRUE(content->attachments().empty());
  EXPECT_EQ(requests("POST").size(), 1u);
}

TEST_F(ServiceFlowTest, PlainStringAlertWithRichTitleDeliversPartialContent) {
  json::object p = payload(richPush({}));
  p["aps"].as_object()["alert"] = "Plain alert";
  auto content = run(p);
  ASSERT_TRUE(content);
  EXPECT_EQ(content->title(), "Rich title");  // set before the write into the alert failed
  EXPECT_EQ(content->body(), "Plain alert");
  auto sink = logs.sink();
  ASSERT_FALSE(sink.empty());
  EXPECT_EQ(sink.back().rfind("Exception in creating attachment Rich notification: ", 0), 0u);
  EXPECT_TRUE(suite->objectForKey(kAppId).isNil());
  EXPECT_TRUE(server.requests().empty());
  EXPECT_EQ(handlerCalls, 1);
}

TEST_F(ServiceFlowTest, ContentOnlyFlowRewritesAndAttachesButStoresNothing) {
  servePng("/a.png");
  auto content = run(payload(richPush({server.url("/a.png")})), /*contentOnly=*/true);
  ASSERT_TRUE(content);
  EXPECT_EQ(content->title(), "Rich title");
  EXPECT_EQ(content->attachments().size(), 1u);
  EXPECT_TRUE(suite->objectForKey(kAppId).isNil());
  EXPECT_TRUE(requests("POST").empty());
}

// The content handler is called at every end the flow reaches, in order: a guard that catches an
// exception raised by the handler calls it again, and when the time is nearly up the request is
// delivered at once with what is ready (the rewritten texts and the attachments finished so far,
// what still runs being stopped) and its flow, once it ends, calls the handler again.
TEST_F(ServiceFlowTest, TheContentHandlerIsCalledAtEveryEndTheFlowReaches) {
  LocalServer media;
  media.addFile("/a.png", sampleMedia("sample.png"), "image/png");
  // One call: the attachments it carries, and whether recorded events were still waiting for the
  // report when it came.
  struct Call {
    size_t attachments;
    bool eventsWaiting;
  };
  enum class Path {
    kHandlerRaises,  // the handler raises on the report's success call
    kReportFails,
    kBudgetDuringDownload,
    kBudgetDuringReport,
    kBudgetAfterDelivery,
  };
  struct Case {
    Path path;
    bool contentOnly;
    std::vector<Call> calls;
    const char* logged;  // the start of a message the sink received, or ""
  } cases[] = {
      {Path::kHandlerRaises,
       false,
       {{1, false}, {1, false}},
       "Exception while syncing tracked events for notification : boom"},
      {Path::kReportFails, false, {{1, true}}, "Api failed with response "},
      {Path::kBudgetDuringDownload, false, {{0, true}, {0, false}}, ""},
      {Path::kBudgetDuringDownload, true, {{0, false}, {0, false}}, ""},
      {Path::kBudgetDuringReport, false, {{1, true}, {1, false}}, ""},
      {Path::kBudgetAfterDelivery, false, {{1, false}}, ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(&c - cases);  // the case's index
    LogCapture capture;
    server.setPostStatus(c.path == Path::kReportFails ? 500 : 200);
    std::vector<Call> seen;
    std::vector<const zv::UNNotificationContent*> objects;
    std::promise<void> delivered;
    onCall = [&](int call, const std::shared_ptr<zv::UNNotificationContent>& content) {
      Value events = storedEvents();
      seen.push_back({content->attachments().size(), events.isArray() && !events.array().empty()});
      objects.push_back(content.get());
      EXPECT_EQ(content->title(), "Rich title");
      if (call == 0) delivered.set_value();
      if (call == 0 && c.path == Path::kHandlerRaises) throw zv::Exception("TestException", "boom");
    };
    LocalServer* held = c.path == Path::kBudgetDuringDownload ? &media
                        : c.path == Path::kBudgetDuringReport ? &server
                                                              : nullptr;
    if (held) held->holdAnswers();
    auto content = run(
        payload(richPush({media.url("/a.png")})), c.contentOnly,
        [&] {
          if (c.path == Path::kHandlerRaises || c.path == Path::kReportFails) return;
          if (held) {
            held->awaitHeldRequest();
          } else {
            delivered.get_future().wait();
          }
          zv::ZVRichNotification::serviceExtensionTimeWillExpire();
          // The report goes on to its answer; the download was stopped.
          if (held == &server) server.releaseAnswers();
        },
        static_cast<int>(c.calls.size()));
    if (held) held->releaseAnswers();
    ASSERT_TRUE(content);
    EXPECT_EQ(handlerCalls, static_cast<int>(c.calls.size()));
    ASSERT_EQ(seen.size(), c.calls.size());
    for (size_t i = 0; i < seen.size(); ++i) {
      EXPECT_EQ(seen[i].attachments, c.calls[i].attachments) << "call " << i;
      EXPECT_EQ(seen[i].eventsWaiting, c.calls[i].eventsWaiting) << "call " << i;
    }
    // A guard hands the same working content again; the budget hands a copy of it.
    if (seen.size() == 2) {
      EXPECT_EQ(objects[0] == objects[1], c.path == Path::kHandlerRaises);
    }
    if (*c.logged) {
      auto sink = capture.sink();
      EXPECT_TRUE(std::any_of(sink.begin(), sink.end(),
                              [&](const auto& m) { return m.starts_with(c.logged); }));
    }
    onCall = nullptr;
  }
}

}  // namespace
}  // namespace zvtest
