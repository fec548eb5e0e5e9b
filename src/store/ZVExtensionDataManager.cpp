#include "zentrova/ZVExtensionDataManager.h"

#include <fmt/format.h>

#include "model/ZVPushPayload.h"
#include "model/ZVRichNotifUtils.h"
#include "model/ZVRichPush.h"
#include "platform/foundation/Clock.h"
#include "zentrova/Platform.h"
#include "zentrova/UserDefaults.h"

namespace zv {

namespace {

namespace json = boost::json;

// The reports endpoint used until the host application configures another host.
constexpr char kDefaultReportsHost[] = "reports.zentrova.com";
constexpr char kDefaultReportsScheme[] = "https";
constexpr long long kDefaultReportsPort = 443;
constexpr char kDefaultReportsPathFormat[] = "/v2/report/add/{}";

// The extension's own standard store.
constexpr char kAppGroupIDKey[] = "zov_app_group_ID";
// The shared suite.
constexpr char kParamsKey[] = "zov_params";
constexpr char kIdentifiersKey[] = "zov_identifiers";
constexpr char kReportsHostKey[] = "zov_reports_host";
constexpr char kReportsSchemeKey[] = "zov_reports_scheme";
constexpr char kReportsPortKey[] = "zov_reports_port";
constexpr char kReportsPathKey[] = "zov_reports_path";
constexpr char kPendingKey[] = "zov_pending_notifications";
constexpr char kEventsKey[] = "zov_events";
constexpr char kClickInfoKey[] = "zov_push_template_click_info";

// The payload and its records.
constexpr char kZentrovaKey[] = "zentrova";
constexpr char kReceivedEpochKey[] = "received_epoch_val";
constexpr char kTemplateNameKey[] = "template_name";
// Keys of "zentrova" that are not event attributes, removed in this order.
constexpr const char* kNonAttributeKeys[] = {
    "media-attachment", "media-type",   "screenData", "webUrl",
    "couponCode",       "inbox_expiry", "zov_inapp",  "zov_inapp_cid",
};

// When this many pending notifications are stored, the oldest one makes room for the new one.
// Exactly one is removed, whatever the count: a longer list written by another party stays as
// long.
constexpr size_t kPendingTrimCount = 31;

Value nullToNil(Value v) { return v.isNull() ? Value() : v; }

// The dictionary in v, made anew when v holds anything else.
json::object& asDictionary(json::value& v) {
  if (!v.is_object()) v = json::object();
  return v.as_object();
}

// The list in v, made anew when v holds anything else.
json::array& asList(json::value& v) {
  if (!v.is_array()) v = json::array();
  return v.as_array();
}

}  // namespace

namespace {
std::mutex sharedMutex;
bool sharedConfigured = false;

ZVExtensionDataManager::Environment platformEnvironment() {
  Platform& platform = Platform::shared();
  return {platform.storeDirectory(), platform.bundleIdentifier(), platform.clock()};
}
}  // namespace

ZVExtensionDataManager::ZVExtensionDataManager(Environment environment) {
  setEnvironment(std::move(environment));
}

ZVExtensionDataManager& ZVExtensionDataManager::sharedManager() {
  static ZVExtensionDataManager manager(platformEnvironment());
  std::lock_guard lock(sharedMutex);
  if (!sharedConfigured) {
    manager.setEnvironment(platformEnvironment());
    sharedConfigured = true;
  }
  return manager;
}

void ZVExtensionDataManager::resetSharedManager() {
  std::lock_guard lock(sharedMutex);
  sharedConfigured = false;
}

void ZVExtensionDataManager::setEnvironment(Environment environment) {
  if (!environment.clock) environment.clock = std::make_shared<SystemClock>();
  std::lock_guard lock(mutex_);
  environment_ = std::move(environment);
}

ZVExtensionDataManager::Environment ZVExtensionDataManager::environment() const {
  std::lock_guard lock(mutex_);
  return environment_;
}

std::shared_ptr<UserDefaults> ZVExtensionDataManager::standardUserDefaults() const {
  Environment e = environment();
  return UserDefaults::initWithSuiteName(e.bundleIdentifier, e.storeDirectory);
}

Value ZVExtensionDataManager::currentAppID() const {
  std::lock_guard lock(mutex_);
  return currentAppID_;
}

std::optional<std::string> ZVExtensionDataManager::appKey() const {
  Value id = currentAppID();
  if (!id.isString()) return std::nullopt;
  return std::string(id.string());
}

Value ZVExtensionDataManager::appDictionary(UserDefaults& suite,
                                            const std::optional<std::string>& key) {
  if (!key) return {};
  Value dict = suite.objectForKey(*key);
  return dict.isObject() ? dict : Value();
}

// ---- App group ----

void ZVExtensionDataManager::setAppGroupID(const std::optional<std::string>& appGroupID) {
  if (!appGroupID || appGroupID->empty()) return;
  if (auto standard = standardUserDefaults()) {
    standard->setObject(Value(*appGroupID), kAppGroupIDKey);
    standard->synchronize();
  }
}

std::optional<std::string> ZVExtensionDataManager::getAppGroupID() {
  auto standard = standardUserDefaults();
  if (!standard) return std::nullopt;
  Value id = standard->objectForKey(kAppGroupIDKey);
  if (!id.isString()) return std::nullopt;
  return std::string(id.string());
}

bool ZVExtensionDataManager::appGroupIDProvided() { return getAppGroupID().has_value(); }

std::shared_ptr<UserDefaults> ZVExtensionDataManager::getZovUserDefaults() {
  auto id = getAppGroupID();
  if (!id) return nullptr;
  return UserDefaults::initWithSuiteName(*id, environment().storeDirectory);
}

// Design note on the application id: only a string names a per-application dictionary. A nil id
// (a payload without "app_id") or an id of another kind (a number, a dictionary) is kept as the
// current id, as found, but nothing is ever stored under it: no dictionary is created, events are
// not recorded, and the pending notifications go to the top-level list. The suite is never touched
// with a key that is not the sender's own string. An empty string is a key like any other.
void ZVExtensionDataManager::configureDataManagerWithAppID(const Value& appID) {
  {
    std::lock_guard lock(mutex_);
    currentAppID_ = appID;
  }
  auto key = appKey();
  if (!key) return;
  auto suite = getZovUserDefaults();
  if (!suite) return;
  // Checked and written in one transaction, so that two processes configuring the same new id at
  // once cannot replace a dictionary that one of them has already filled.
  suite->transaction([&] {
    if (nullToNil(suite->objectForKey(*key)).isNil()) suite->setObject(json::object(), *key);
  });
  suite->synchronize();
}

// ---- Configuration written by the host application ----

std::optional<json::object> ZVExtensionDataManager::getQueryParams() {
  auto suite = getZovUserDefaults();
  if (!suite) return std::nullopt;
  // The per-application dictionary may hold its own "zov_params", but the parameters always come
  // from the top level, where the host application writes them; a per-application value alone
  // leaves the store unconfigured. A top-level value that is not a dictionary counts as none.
  Value params = queryParamsIn(*suite);
  if (!params) return std::nullopt;
  return params.mutableObjectCopy();
}

Value ZVExtensionDataManager::queryParamsIn(UserDefaults& suite) {
  Value params = suite.objectForKey(kParamsKey);
  return params.isObject() ? params : Value();
}

std::optional<json::object> ZVExtensionDataManager::getIdentifiers() {
  auto suite = getZovUserDefaults();
  if (!suite) return std::nullopt;
  // A value that is not a dictionary counts as absent, at either level.
  Value app = appDictionary(*suite, appKey());
  if (app) {
    Value own = ZVRichNotifUtils::validObjectForKey(kIdentifiersKey, app);
    if (own.isObject()) return own.mutableObjectCopy();
  }
  Value shared = suite->objectForKey(kIdentifiersKey);
  if (shared.isObject()) return shared.mutableObjectCopy();
  return std::nullopt;
}

Value ZVExtensionDataManager::endpointValue(std::string_view key, Value fallback) {
  auto suite = getZovUserDefaults();
  if (!suite) return fallback;
  Value app = appDictionary(*suite, appKey());
  if (app) {
    if (Value own = ZVRichNotifUtils::validObjectForKey(key, app)) return own;
  }
  if (Value shared = nullToNil(suite->objectForKey(key))) return shared;
  return fallback;
}

Value ZVExtensionDataManager::getZoVReportsHost() {
  return endpointValue(kReportsHostKey, Value(kDefaultReportsHost));
}

Value ZVExtensionDataManager::getZoVReportsScheme() {
  return endpointValue(kReportsSchemeKey, Value(kDefaultReportsScheme));
}

Value ZVExtensionDataManager::getZoVReportsPort() {
  return endpointValue(kReportsPortKey, Value(json::value(kDefaultReportsPort)));
}

Value ZVExtensionDataManager::getZoVReportsPath() {
  std::string path = fmt::format(kDefaultReportsPathFormat, currentAppID().description());
  return endpointValue(kReportsPathKey, Value(path));
}

// ---- Pending notifications ----

Value ZVExtensionDataManager::pendingIn(UserDefaults& suite,
                                        const std::optional<std::string>& key) {
  Value app = appDictionary(suite, key);
  if (app) return ZVRichNotifUtils::validObjectForKey(kPendingKey, app);
  return nullToNil(suite.objectForKey(kPendingKey));
}

void ZVExtensionDataManager::editPending(UserDefaults& suite, const std::optional<std::string>& key,
                                         const std::function<void(json::value& list)>& edit) {
  if (appDictionary(suite, key)) {
    suite.modifyObject(*key, [&](json::value& app) { edit(asDictionary(app)[kPendingKey]); });
  } else {
    suite.modifyObject(kPendingKey, edit);
  }
}

Value ZVExtensionDataManager::getPendingNotifications() {
  auto suite = getZovUserDefaults();
  if (!suite) return {};
  return pendingIn(*suite, appKey());
}

void ZVExtensionDataManager::updatePendingNotifications(const Value& list) {
  if (list.isNil()) return;
  auto suite = getZovUserDefaults();
  if (!suite) return;
  auto key = appKey();
  suite->transaction([&] { editPending(*suite, key, [&](json::value& v) { v = list.json(); }); });
  suite->synchronize();
}

void ZVExtensionDataManager::saveReceivedNotificationWithPayload(const Value& payload) {
  Value zentrova = ZVRichNotifUtils::validObjectForKey(kZentrovaKey, payload);
  if (zentrova.isNil() || payload.isNil()) return;
  auto suite = getZovUserDefaults();
  if (!suite) return;

  // The record: the whole payload, its "zentrova" stamped with the moment of saving, fraction kept.
  json::object stamped = zentrova.mutableObjectCopy();
  stamped[kReceivedEpochKey] = environment().clock->now();
  json::object record = payload.mutableObjectCopy();
  record[kZentrovaKey] = std::move(stamped);

  // Check the configuration, read, trim, append and write back as one step, so that a
  // notification saved by another process at the same moment is not lost.
  auto key = appKey();
  suite->transaction([&] {
    if (!queryParamsIn(*suite)) return;
    editPending(*suite, key, [&](json::value& v) {
      json::array& list = asList(v);
      if (list.size() >= kPendingTrimCount) list.erase(list.begin());
      list.push_back(std::move(record));
    });
  });
  suite->synchronize();
}

// ---- Card clicks ----

void ZVExtensionDataManager::saveClickedCardInfo(const Value& info) {
  if (info.isNil()) return;
  auto suite = getZovUserDefaults();
  if (!suite) return;
  suite->setObject(info, kClickInfoKey);
  suite->synchronize();
}

// ---- Events ----

Value ZVExtensionDataManager::eventsIn(UserDefaults& suite, const std::string& key) {
  Value app = appDictionary(suite, key);
  if (!app) return {};
  return ZVRichNotifUtils::validObjectForKey(kEventsKey, app);
}

void ZVExtensionDataManager::editEvents(UserDefaults& suite, const std::string& key,
                                        const std::function<void(json::value& events)>& edit) {
  suite.modifyObject(key, [&](json::value& app) { edit(asDictionary(app)[kEventsKey]); });
}

Value ZVExtensionDataManager::getReceivedEvents() {
  auto suite = getZovUserDefaults();
  auto key = appKey();
  if (!suite || !key) return {};
  return eventsIn(*suite, *key);
}

void ZVExtensionDataManager::updateReceivedEvents(const Value& events) {
  if (events.isNil()) return;
  auto suite = getZovUserDefaults();
  auto key = appKey();
  if (!suite || !key) return;
  editEvents(*suite, *key, [&](json::value& v) { v = events.json(); });
  suite->synchronize();
}

void ZVExtensionDataManager::saveEvent(const std::optional<std::string>& name,
                                       const std::shared_ptr<const ZVPushPayload>& payload) {
  if (!name || !payload) return;
  auto suite = getZovUserDefaults();
  auto key = appKey();
  if (!suite || !key) return;
  // Building the record has no effect on the store, so it happens before the store is locked.
  Value record = getEventDictWithName(*name, payload);
  if (record.isNil()) return;

  // Check the configuration, read the list, append and write back as one step, so that events
  // recorded by the other extension or the host application at the same moment are kept. (A
  // stored value that is not a list is replaced by a new one.)
  suite->transaction([&] {
    if (!queryParamsIn(*suite)) return;
    editEvents(*suite, *key, [&](json::value& v) { asList(v).push_back(record.json()); });
  });
  suite->synchronize();
}

Value ZVExtensionDataManager::getEventDictWithName(
    const std::string& name, const std::shared_ptr<const ZVPushPayload>& payload) {
  if (!payload || payload->zentrovaDict.isNil()) return {};
  json::object record;
  record["EVENT_ACTION"] = name;
  record["EVENT_ATTRS"] = statsEventAttributesFromPayload(payload);
  auto clock = environment().clock;
  record["EVENT_G_TIME"] = ZVRichNotifUtils::getGMTtime(*clock);
  record["EVENT_L_TIME"] = ZVRichNotifUtils::getLocalTime(*clock);
  record["N_I_E"] = 1;
  return Value(std::move(record));
}

json::object ZVExtensionDataManager::statsEventAttributesFromPayload(
    const std::shared_ptr<const ZVPushPayload>& payload) {
  if (!payload || payload->zentrovaDict.isNil()) return {};
  json::object attributes = payload->zentrovaDict.mutableObjectCopy();
  for (const char* key : kNonAttributeKeys) {
    ZVRichNotifUtils::removeValidObjectForKey(key, &attributes);
  }
  if (payload->richPush && !payload->richPush->templateDisplayName.isNil()) {
    attributes[kTemplateNameKey] = payload->richPush->templateDisplayName.json();
  }
  return attributes;
}

void ZVExtensionDataManager::resetEventsData() {
  auto suite = getZovUserDefaults();
  if (!suite) return;
  if (auto key = appKey()) {
    suite->transaction([&] {
      Value app = appDictionary(*suite, key);
      bool hasEvents = app && app.object().contains(kEventsKey);
      app = Value();  // let the stored dictionary be edited in place
      if (hasEvents) {
        suite->modifyObject(*key, [](json::value& v) { asDictionary(v).erase(kEventsKey); });
      }
    });
  }
  suite->synchronize();
}

}  // namespace zv
