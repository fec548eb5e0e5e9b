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

/// The store the extensions share with the host application: configuration, pending
/// notifications, events and card clicks.
///
/// A host application calls setAppGroupID() once, writes its configuration into the app group's
/// suite (getZovUserDefaults()), and reads back what the extensions recorded: the pending
/// notifications, the events not yet reported, and the last card click (the suite's value under
/// "zov_push_template_click_info").
///
/// @par Ownership
/// Every getter returns a copy (a Value sharing an immutable tree, or a new JSON object); the
/// stores are opened per call, so nothing returned refers to the manager.
///
/// @par Threads
/// Every call is safe from any thread and from several processes at once.
///
/// @par Errors
/// A store problem never raises: with no app group id recorded, or a store that cannot be
/// opened, getters give nil, nullopt, null or the defaults, and writes do nothing. Only a payload
/// of the wrong shape raises zv::Exception (invalid argument): a payload, or its "zentrova"
/// entry, that is not a dictionary in saveReceivedNotificationWithPayload().
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
  /// Makes the next sharedManager() call take the environment from the platform object again.
  static void resetSharedManager();

  /// A manager of its own over these stores (the process normally uses sharedManager()).
  explicit ZVExtensionDataManager(Environment environment);

  /// The application id of the notification being handled, stored as found in the payload (a string
  /// in practice); nil until configured.
  Value currentAppID() const;

  /// Makes appID the current application id. A string id names the application's dictionary in
  /// the app group's suite, made empty when absent; an id of another kind is kept but stores
  /// nothing under it.
  void configureDataManagerWithAppID(const Value& appID);
  /// Records the app group id in the extension's standard store (nullopt and "" are ignored).
  void setAppGroupID(const std::optional<std::string>& appGroupID);
  /// The app group id recorded by setAppGroupID(); nullopt when none is.
  std::optional<std::string> getAppGroupID();
  /// Whether an app group id is recorded.
  bool appGroupIDProvided();
  /// A new handle on the app group's suite; nullptr when no app group id is stored.
  std::shared_ptr<UserDefaults> getZovUserDefaults();

  /// The query parameters the host application wrote at the top of the suite ("zov_params");
  /// nullopt when absent or not a dictionary (the store then counts as not configured, and no
  /// notification or event is recorded).
  std::optional<boost::json::object> getQueryParams();
  /// The identifiers ("zov_identifiers") of the current application's dictionary, else of the top
  /// level; nullopt when neither is a dictionary.
  std::optional<boost::json::object> getIdentifiers();
  /// The reports endpoint's host, scheme, port and path: the current application's value, else
  /// the top level's. Returned without a type check, as stored (defaults: the reports host,
  /// "https", 443, "/v2/report/add/<app id>").
  ///@{
  Value getZoVReportsHost();
  Value getZoVReportsScheme();
  Value getZoVReportsPort();
  Value getZoVReportsPath();
  ///@}

  /// The notifications received and not yet seen by the host application (a list of payloads,
  /// oldest first), from the current application's dictionary, else the top level; nil for none.
  Value getPendingNotifications();
  /// Replaces the pending list where it lives (where getPendingNotifications() reads it); nil is
  /// ignored.
  void updatePendingNotifications(const Value& list);
  /// Stores a card click (nil is ignored), replacing the previous one, for the host application.
  void saveClickedCardInfo(const Value& info);
  /// Appends the payload, stamped with the moment, to the pending list when the store is
  /// configured; at most 31 are kept (the oldest makes room). Nothing for a payload without a
  /// "zentrova" entry.
  void saveReceivedNotificationWithPayload(const Value& payload);
  /// The current application's events not yet reported (a list); nil for none or a non-string id.
  Value getReceivedEvents();
  /// Replaces the current application's event list; nil is ignored.
  void updateReceivedEvents(const Value& events);
  /// Appends the event `name` of a payload (see getEventDictWithName()) to the current
  /// application's list when the store is configured. Nothing for nullopt or a null payload.
  void saveEvent(const std::optional<std::string>& name,
                 const std::shared_ptr<const ZVPushPayload>& payload);
  /// The record of an event: its name, the payload's attributes, GMT and local times. Nil when
  /// the payload is null or has no "zentrova" entry. The payload is an internal type: a host has
  /// no use for this and the next two calls.
  Value getEventDictWithName(const std::string& name,
                             const std::shared_ptr<const ZVPushPayload>& payload);
  /// The payload's "zentrova" entry without its media and screen keys, plus the template's name.
  boost::json::object statsEventAttributesFromPayload(
      const std::shared_ptr<const ZVPushPayload>& payload);
  /// Removes the current application's events (once they are reported).
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
