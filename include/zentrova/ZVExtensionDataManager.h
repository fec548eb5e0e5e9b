/// @file
/// ZVExtensionDataManager keeps the state that the extensions share with the host application in
/// the app group's key-value store: configuration written by the host application (query
/// parameters, identifiers, reports endpoint), notifications received but not yet seen by the host
/// application (at most 31 kept), events recorded but not yet reported, and the last card click.
///
/// One process-wide instance (sharedManager). Every operation is safe to call from any thread; list
/// updates (append an event, append a pending notification, reset the events) are atomic
/// read-modify-writes, so several processes writing the same suite lose nothing.
#pragma once

#include <boost/json/object.hpp>
#include <boost/json/value.hpp>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "zentrova/Export.h"
#include "zentrova/Value.h"

ZENTROVA_API_BEGIN

namespace zv {

class Clock;
class ZVPushPayload;
class UserDefaults;

class ZVExtensionDataManager {
 public:
  /// Where the stores live and what stamps the records: given when the manager is made.
  struct Environment {
    std::filesystem::path storeDirectory;  ///< the folder of every suite
    std::string bundleIdentifier;          ///< names the extension's own standard store
    std::shared_ptr<Clock> clock;          ///< the system clock when null
  };

  /// The one manager of the process. Its first use takes the environment from the platform object,
  /// and so does the first use after resetSharedManager() (tests), which keeps the current app id.
  static ZVExtensionDataManager& sharedManager();
  static void resetSharedManager();

  explicit ZVExtensionDataManager(Environment environment);

  /// The application id of the notification being handled, stored as found in the payload (a string
  /// in practice); nil until configured.
  Value currentAppID() const;

  void configureDataManagerWithAppID(const Value& appID);
  void setAppGroupID(const std::optional<std::string>& appGroupID);
  std::optional<std::string> getAppGroupID();
  bool appGroupIDProvided();
  /// A new handle on the app group's suite; nullptr when no app group id is stored.
  std::shared_ptr<UserDefaults> getZovUserDefaults();

  std::optional<boost::json::object> getQueryParams();
  std::optional<boost::json::object> getIdentifiers();
  /// Returned without a type check, as stored (defaults: the reports host, "https", 443,
  /// "/v2/report/add/<app id>").
  Value getZoVReportsHost();
  Value getZoVReportsScheme();
  Value getZoVReportsPort();
  Value getZoVReportsPath();

  Value getPendingNotifications();
  void updatePendingNotifications(const Value& list);
  void saveClickedCardInfo(const Value& info);
  void saveReceivedNotificationWithPayload(const Value& payload);
  Value getReceivedEvents();
  void updateReceivedEvents(const Value& events);
  void saveEvent(const std::optional<std::string>& name,
                 const std::shared_ptr<const ZVPushPayload>& payload);
  Value getEventDictWithName(const std::string& name,
                             const std::shared_ptr<const ZVPushPayload>& payload);
  boost::json::object statsEventAttributesFromPayload(
      const std::shared_ptr<const ZVPushPayload>& payload);
  void resetEventsData();

 private:
  void setEnvironment(Environment environment);
  Environment environment() const;
  std::shared_ptr<UserDefaults> standardUserDefaults() const;

  /// The application id as a key of the suite: only a string id names a per-application
  /// dictionary; nullopt for nil and for ids of any other kind.
  std::optional<std::string> appKey() const;
  /// The per-application dictionary (the suite's value under the application id when it is a
  /// dictionary), or nil.
  static Value appDictionary(UserDefaults& suite, const std::optional<std::string>& key);
  Value endpointValue(std::string_view key, Value fallback);
  /// The top-level "zov_params" when it is a dictionary (the sign that the host application has
  /// configured the store), else nil.
  static Value queryParamsIn(UserDefaults& suite);
  static Value pendingIn(UserDefaults& suite, const std::optional<std::string>& key);
  /// Edits the pending list where it lives (the per-application dictionary when there is one, else
  /// the top level) in place; edit receives null when there is no list yet.
  static void editPending(UserDefaults& suite, const std::optional<std::string>& key,
                          const std::function<void(boost::json::value& list)>& edit);
  static Value eventsIn(UserDefaults& suite, const std::string& key);
  /// Edits the event list of the per-application dictionary in place, making the dictionary when
  /// there is none; edit receives null when there is no list yet.
  static void editEvents(UserDefaults& suite, const std::string& key,
                         const std::function<void(boost::json::value& events)>& edit);

  mutable std::mutex mutex_;
  Environment environment_;
  Value currentAppID_;
};

}  // namespace zv

ZENTROVA_API_END
