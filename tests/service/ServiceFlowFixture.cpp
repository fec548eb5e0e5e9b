#include "service/ServiceFlowFixture.h"

#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>

#include "platform/net/UrlSession.h"
#include "platform/notifications/NotificationCenter.h"
#include "reporting/ZVExtensionNetworkManager.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Platform.h"
#include "zentrova/UNNotificationContent.h"
#include "zentrova/UNNotificationRequest.h"
#include "zentrova/UserDefaults.h"
#include "zentrova/ZVExtensionDataManager.h"
#include "zentrova/ZVRichNotification.h"

namespace zvtest {

namespace json = boost::json;

std::string sampleMedia(const std::string& name) {
  return readFile(std::filesystem::path(ZV_SOURCE_DIR) / "tests" / "data" / "media" / name);
}

void ServiceFlowFixture::SetUp() {
  auto& platform = zv::Platform::shared();
  platform.setStoreDirectory(dir.path() / "store");
  std::filesystem::create_directories(dir.path() / "tmp");
  platform.setTemporaryDirectory(dir.path() / "tmp");
  platform.setBundleIdentifier("com.zentrova.tests.service");
  center = std::make_shared<zv::NotificationCenter>();
  platform.setNotificationCenter(center);
  zv::ZVRichNotification::setAppGroupID(kAppGroup);
  // Configured as the host application does: query parameters and the reports endpoint.
  suite = zv::UserDefaults::initWithSuiteName(kAppGroup, dir.path() / "store");
  suite->setObject(json::object{{"sdk", "cpp"}, {"device", "test"}}, "zov_params");
  suite->setObject(zv::Value("127.0.0.1"), "zov_reports_host");
  suite->setObject(zv::Value("http"), "zov_reports_scheme");
  suite->setObject(json::value(server.port()), "zov_reports_port");
}

void ServiceFlowFixture::TearDown() {
  // A new session for the next test: closing this one's kept-alive connections lets the server
  // stop at once.
  zv::ZVExtensionNetworkManager::sharedManager().setNetworkSession(nullptr);
  zv::Platform::shared().setUrlSession(nullptr);
}

std::shared_ptr<zv::UNNotificationContent> ServiceFlowFixture::run(
    const json::object& p, bool contentOnly, const std::function<void()>& meanwhile, int calls) {
  auto request = zv::UNNotificationRequest::requestWithRemoteNotification("req-1", zv::Value(p));
  struct Handed {
    std::mutex mutex;
    std::condition_variable arrived;
    int started = 0;
    std::vector<std::shared_ptr<zv::UNNotificationContent>> contents;
  };
  auto handed = std::make_shared<Handed>();
  auto handler = [handed, onCall = onCall](const std::shared_ptr<zv::UNNotificationContent>& c) {
    int call;
    {
      std::lock_guard lock(handed->mutex);
      call = handed->started++;
    }
    // A call counts once onCall is done with it, raising or not.
    auto count = [&] {
      {
        std::lock_guard lock(handed->mutex);
        handed->contents.push_back(c);
      }
      handed->arrived.notify_all();
    };
    try {
      if (onCall) onCall(call, c);
    } catch (...) {
      count();
      throw;
    }
    count();
  };
  if (contentOnly) {
    zv::ZVRichNotification::getLocalNotificationContentForRequest(request, handler);
  } else {
    zv::ZVRichNotification::handleRichNotificationRequest(request, handler);
  }
  if (meanwhile) meanwhile();
  {
    std::unique_lock lock(handed->mutex);
    if (!handed->arrived.wait_for(lock, std::chrono::seconds(20),
                                  [&] { return handed->contents.size() >= size_t(calls); })) {
      ADD_FAILURE() << "the content handler was called " << handed->contents.size() << " of "
                    << calls << " times";
      return nullptr;
    }
  }
  // A later call would come from the download queue or from a task completion of the session:
  // once both are drained, every call has been made.
  zv::ZVRichNotificationHandler::sharedHandler()
      .imageDownloadOperationQueue->waitUntilAllOperationsAreFinished();
  auto drained = std::make_shared<std::promise<void>>();
  zv::ZVExtensionNetworkManager::sharedManager()
      .getZoVURLSession()
      ->dataTaskWithRequest(zv::UrlRequest(), [=](auto...) { drained->set_value(); })
      ->resume();
  drained->get_future().wait();
  std::lock_guard lock(handed->mutex);
  handlerCalls = static_cast<int>(handed->contents.size());
  return handed->contents.front();
}

json::object ServiceFlowFixture::payload(const json::value& rich) const {
  json::object p{
      {"aps", json::object{{"alert", json::object{{"title", "Sent title"},
                                                  {"subtitle", "Sent subtitle"},
                                                  {"body", "Sent body"}}},
                           {"sound", "sent.caf"},
                           {"category", "SENT"}}},
      {"zentrova", json::object{{"cid", "cmp-1"}, {"app_id", kAppId}, {"campaign", "spring"}}},
      {"app_extra", json::object{{"screenName", "old"}, {"keep", 1}}},
  };
  if (!rich.is_null()) p["zovFeatures"] = json::object{{"richPush", rich}};
  return p;
}

json::object ServiceFlowFixture::richPush(const std::vector<std::string>& imageUrls,
                                          const std::string& templateType) {
  json::array cards;
  int id = 1;
  for (const auto& url : imageUrls) {
    cards.push_back(json::object{
        {"id", id},
        {"widgets", json::array{json::object{{"id", id}, {"type", "image"}, {"content", url}}}}});
    ++id;
  }
  return json::object{{"title", "<b>Rich</b> title"},
                      {"body", "Rich &amp; body"},
                      {"displayName", "T1"},
                      {"expanded", json::object{{"type", templateType}, {"cards", cards}}}};
}

zv::Value ServiceFlowFixture::storedEvents() const {
  zv::Value perApp = suite->objectForKey(kAppId);
  return perApp.isObject() ? perApp.get("zov_events") : zv::Value();
}

zv::Value ServiceFlowFixture::pendingNotifications() const {
  zv::Value perApp = suite->objectForKey(kAppId);
  return perApp.isObject() ? perApp.get("zov_pending_notifications") : zv::Value();
}

std::vector<LocalServer::Request> ServiceFlowFixture::requests(const std::string& method) const {
  std::vector<LocalServer::Request> out;
  for (auto& r : server.requests()) {
    if (r.method == method) out.push_back(r);
  }
  return out;
}

void ServiceFlowFixture::servePng(const std::string& path) {
  server.addFile(path, sampleMedia("sample.png"), "image/png");
}

}  // namespace zvtest
