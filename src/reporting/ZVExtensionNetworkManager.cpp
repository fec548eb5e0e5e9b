#include "reporting/ZVExtensionNetworkManager.h"

#include <fmt/format.h>

#include "model/ZVRichNotifUtils.h"
#include "platform/net/UrlSession.h"
#include "reporting/ReportsBody.h"
#include "zentrova/Exception.h"
#include "zentrova/Platform.h"
#include "zentrova/ZVExtensionDataManager.h"

namespace zv {

namespace {

constexpr char kAppKeyHeader[] = "X-ZENTROVA-APP-KEY";
constexpr char kContentTypeHeader[] = "content-type";
constexpr char kJsonContentType[] = "application/json";
constexpr double kReportsTimeout = 60.0;

void logMessage(const std::string& message) { ZVRichNotifUtils::logWithMessage(message); }

void logSyncException(const Exception& e) {
  logMessage(
      fmt::format("Exception while syncing tracked events for notification : {}", e.description()));
}

}  // namespace

namespace {
std::mutex sharedMutex;
bool sharedConfigured = false;
}  // namespace

ZVExtensionNetworkManager& ZVExtensionNetworkManager::sharedManager() {
  static ZVExtensionNetworkManager manager;
  std::lock_guard lock(sharedMutex);
  if (!sharedConfigured) {
    manager.setNetworkSession(Platform::shared().urlSession());
    sharedConfigured = true;
  }
  return manager;
}

void ZVExtensionNetworkManager::resetSharedManager() {
  std::lock_guard lock(sharedMutex);
  sharedConfigured = false;
}

std::shared_ptr<UrlSession> ZVExtensionNetworkManager::networkSession() const {
  std::lock_guard lock(mutex_);
  return networkSession_;
}

void ZVExtensionNetworkManager::setNetworkSession(std::shared_ptr<UrlSession> session) {
  std::shared_ptr<UrlSession> previous;
  std::lock_guard lock(mutex_);
  previous.swap(networkSession_);  // released after the lock: its destructor joins its thread
  networkSession_ = std::move(session);
}

// The session is the one given to the manager: for the process's manager, the platform's (made
// once with caching off: reload ignoring local data, no URL cache).
std::shared_ptr<UrlSession> ZVExtensionNetworkManager::getZoVURLSession() {
  std::lock_guard lock(mutex_);
  return networkSession_;
}

void ZVExtensionNetworkManager::flushEventsWithCompletionBlock(
    std::function<void(bool)> completion) {
  // The completion is required; an empty one is treated as one that does nothing.
  if (!completion) completion = [](bool) {};
  try {
    Value events = ZVExtensionDataManager::sharedManager().getReceivedEvents();
    if (events.isNil() || events.array().empty()) {
      logMessage("No Events to flush!");
      completion(true);
      return;
    }
    auto session = getZoVURLSession();
    std::optional<UrlRequest> request = getReportsRequestWithEvents(events);
    if (!request) {
      logMessage("Error in reports request creation!");
      completion(true);
      return;
    }
    auto task = session->dataTaskWithRequest(
        std::move(*request),
        [completion](std::optional<std::string>, std::shared_ptr<HttpUrlResponse> response,
                     std::optional<Error> error) {
          try {
            long status = response ? response->statusCode() : 0;
            if (!error && status == 200) {
              ZVExtensionDataManager::sharedManager().resetEventsData();
              logMessage("Events Synced successfully ");
              completion(true);
            } else {
              logMessage(fmt::format("Api failed with response {} and error {}",
                                     response ? response->description() : "(null)",
                                     error ? error->description() : "(null)"));
              completion(false);
            }
          } catch (const Exception& e) {
            logSyncException(e);
            completion(false);
          }
        });
    task->resume();
  } catch (const Exception& e) {
    logSyncException(e);
    completion(false);
  }
}

std::optional<UrlRequest> ZVExtensionNetworkManager::getReportsRequestWithEvents(
    const Value& events) {
  Value appID = ZVExtensionDataManager::sharedManager().currentAppID();
  UrlRequest request(reportAddRequestURL(), UrlRequest::kReloadIgnoringLocalCacheData,
                     kReportsTimeout);
  if (appID.isNil()) return std::nullopt;
  // A header value must be text: an id of another kind raises here, which the flush reports as
  // an exception (NO).
  request.setValue(std::string(appID.string()), kAppKeyHeader);
  request.setHTTPMethod("POST");
  request.setValue(kJsonContentType, kContentTypeHeader);
  std::optional<std::string> body = getRequestBodyWithEvents(events);
  if (!body) return std::nullopt;
  request.setHTTPBody(std::move(body));
  return request;
}

std::optional<std::string> ZVExtensionNetworkManager::getRequestBodyWithEvents(
    const Value& events) {
  auto& store = ZVExtensionDataManager::sharedManager();
  std::optional<boost::json::object> queryParams = store.getQueryParams();
  if (!queryParams) return std::nullopt;
  return ReportsBody::serialize(events, *queryParams, store.getIdentifiers());
}

std::optional<Url> ZVExtensionNetworkManager::reportAddRequestURL() {
  try {
    Value host = ZVExtensionDataManager::sharedManager().getZoVReportsHost();
    Value scheme = ZVExtensionDataManager::sharedManager().getZoVReportsScheme();
    Value port = ZVExtensionDataManager::sharedManager().getZoVReportsPort();
    Value path = ZVExtensionDataManager::sharedManager().getZoVReportsPath();
    // The stored values are used as found: a scheme, host or path that is not text, or a port
    // that has no integer value, raises and is reported below.
    std::string_view schemeText = scheme.string();
    std::string_view hostText = host.string();
    std::string_view pathText = path.string();
    long long portNumber = port.integerValue();
    std::optional<long> explicitPort;
    if (portNumber > 0) explicitPort = static_cast<long>(portNumber);
    return Url::fromComponents(schemeText, hostText, explicitPort, pathText);
  } catch (const Exception& e) {
    logMessage(fmt::format("Exception in creating URL {}", e.description()));
    return std::nullopt;
  }
}

}  // namespace zv
