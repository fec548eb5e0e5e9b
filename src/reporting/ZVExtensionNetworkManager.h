// ZVExtensionNetworkManager is the service extension's one network object: it sends the events
// recorded in the app-group store to the reports endpoint in one POST per flush (and empties the
// store when the endpoint answers 200), and downloads the media of a notification. Both share one
// URL session, created on first use and kept for the life of the process.
//
// Completions of network outcomes run on the session's delegate thread; early outcomes (nothing
// to send, no request, an exception before the request starts) run on the caller's thread.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "platform/net/UrlRequest.h"
#include "zentrova/Url.h"
#include "zentrova/Value.h"

namespace zv {

class UrlSession;
class UrlSessionTask;
class ZVMedia;
class UNNotificationAttachment;

class ZVExtensionNetworkManager {
 public:
  // The one manager of the process. Its first use takes the URL session from the platform object,
  // and so does the first use after resetSharedManager() (tests).
  static ZVExtensionNetworkManager& sharedManager();
  static void resetSharedManager();

  // The session of the reports and the downloads. Setting it replaces the session that later
  // flushes and downloads use.
  std::shared_ptr<UrlSession> networkSession() const;
  void setNetworkSession(std::shared_ptr<UrlSession> session);
  std::shared_ptr<UrlSession> getZoVURLSession();

  // Sends every stored event; completion gets YES when there was nothing to send, when no request
  // could be built (the events stay for a later flush), or when the endpoint answered exactly 200
  // without error (the events are then cleared); NO otherwise. Called once on every path, except
  // that a completion raising zv::Exception when called with YES is called again with NO.
  void flushEventsWithCompletionBlock(std::function<void(bool)> completion);
  // The POST request carrying events; nullopt without an app id or without a body.
  std::optional<UrlRequest> getReportsRequestWithEvents(const Value& events);
  // The JSON body for events; nullopt when the store has no query parameters.
  std::optional<std::string> getRequestBodyWithEvents(const Value& events);
  // The reports URL from the store's scheme, host, port and path; nullopt when the stored values
  // cannot form one.
  std::optional<Url> reportAddRequestURL();

  // Downloads one media item and makes it an attachment; returns the running download task.
  std::shared_ptr<UrlSessionTask> downloadMedia(
      const std::shared_ptr<ZVMedia>& media,
      std::function<void(bool, std::shared_ptr<UNNotificationAttachment>)> completion);

 private:
  ZVExtensionNetworkManager() = default;

  mutable std::mutex mutex_;
  std::shared_ptr<UrlSession> networkSession_;
};

}  // namespace zv
