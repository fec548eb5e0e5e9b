// zvpush inspect PAYLOAD.json: how Zentrova reads a payload. Runs the service extension's own plan
// (the same function as zvpush service, without the store and the network) and prints whether the
// notification is processed, the envelope's fields, the rich push model, the texts it would show,
// the media that would be downloaded, the reasons in sentences (why the rich push was dropped or a
// media item left out), every message the library logged on the way, untouched, and the warnings,
// so a sender can see why a notification did or did not show its rich content.
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <iostream>
#include <mutex>
#include <string>
#include <vector>

#include "common/ArgParser.h"
#include "common/Command.h"
#include "common/JsonIO.h"
#include "model/ZVMedia.h"
#include "model/ZVPushAction.h"
#include "model/ZVPushCard.h"
#include "model/ZVPushPayload.h"
#include "model/ZVPushWidget.h"
#include "model/ZVRichNotifUtils.h"
#include "model/ZVRichPush.h"
#include "model/ZVRichPushMode.h"
#include "payload/PayloadReasons.h"
#include "payload/PayloadWarnings.h"
#include "platform/foundation/Log.h"
#include "service/ServicePlan.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Exception.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotificationRequest.h"

namespace zvpush {
namespace {

namespace json = boost::json;

// A property the payload did not give prints as null.
json::value valueJson(const zv::Value& v) { return v.isNil() ? json::value(nullptr) : v.json(); }

json::value colorJson(const zv::ColorRef& c) {
  if (!c) return nullptr;
  return json::array{c->red, c->green, c->blue, c->alpha};
}

template <class E>
json::value number(E e) {
  return static_cast<std::int64_t>(e);
}

json::array actionsJson(const std::vector<std::shared_ptr<zv::ZVPushAction>>& actions) {
  json::array out;
  for (const auto& a : actions) {
    out.push_back(json::object{{"actionName", number(a->actionName)},
                               {"actionType", number(a->actionType)},
                               {"value", valueJson(a->value)},
                               {"kvPairs", valueJson(a->kvPairs)}});
  }
  return out;
}

json::value widgetJson(const zv::ZVPushWidget& w) {
  return json::object{{"type", number(w.type)},
                      {"widgetId", w.widgetId},
                      {"content", valueJson(w.content)},
                      {"bgColor", colorJson(w.bgColor)},
                      {"actions", actionsJson(w.actions)}};
}

json::value cardJson(const zv::ZVPushCard& c) {
  json::array widgets;
  for (const auto& w : c.widgets) widgets.push_back(widgetJson(*w));
  return json::object{{"cardType", c.cardType},
                      {"cardID", c.cardID},
                      {"bgColor", colorJson(c.bgColor)},
                      {"widgets", std::move(widgets)},
                      {"actions", actionsJson(c.actions)}};
}

json::value modeJson(const std::shared_ptr<zv::ZVRichPushMode>& m) {
  if (!m) return nullptr;
  json::array cards;
  for (const auto& c : m->cards) cards.push_back(cardJson(*c));
  return json::object{{"templateType", number(m->templateType)},
                      {"autoStart", m->autoStart},
                      {"bgColor", colorJson(m->bgColor)},
                      {"cards", std::move(cards)}};
}

json::value richPushJson(const std::shared_ptr<zv::ZVRichPush>& r) {
  if (!r) return nullptr;
  return json::object{{"title", valueJson(r->title)},
                      {"subTitle", valueJson(r->subTitle)},
                      {"body", valueJson(r->body)},
                      {"category", valueJson(r->category)},
                      {"sound", valueJson(r->sound)},
                      {"templateDisplayName", valueJson(r->templateDisplayName)},
                      {"expandedMode", modeJson(r->expandedMode)},
                      {"defaultActions", actionsJson(r->defaultActions)}};
}

json::array mediaJson(const std::vector<std::shared_ptr<zv::ZVMedia>>& media) {
  json::array out;
  for (const auto& m : media) {
    out.push_back(json::object{
        {"url", m->mediaURL ? json::value(m->mediaURL->absoluteString()) : json::value()},
        {"mediaType", valueJson(m->mediaType)},
        {"attachmentID", m->attachmentID ? json::value(*m->attachmentID) : json::value()},
        {"fileName", m->getFileNameForMedia()}});
  }
  return out;
}

// Runs the service's own plan (the steps before the store and the network) and reports it: the
// envelope, the rich push, the texts the notification would show, the media it would download and
// every message logged on the way, the guard's included. Nothing is stored or fetched.
int runInspect(const Args& args) {
  ArgParser parser({}, {"--strict"});
  parser.parse(args);
  if (parser.positional().size() != 1) throw UsageError("expected one PAYLOAD.json");
  const std::string path = parser.positional()[0];
  zv::Value payload = readJsonObject(path);

  std::mutex mutex;
  json::array log;
  zv::log::setSinkReceiver([&](const std::string& m) {
    std::lock_guard lock(mutex);
    log.push_back(json::string(m));
  });
  auto request = zv::UNNotificationRequest::requestWithRemoteNotification("inspect", payload);
  auto plan = zv::ServicePlan::make(zv::ZVRichNotificationHandler::sharedHandler(), request, false);
  // What the service extension does with a failure: its guard logs the message, and the content
  // goes out without attachments.
  if (plan.failure)
    zv::ZVRichNotifUtils::logWithMessage(plan.guardMessage(zv::ServicePlan::Flow::kFull));
  const auto& envelope = plan.envelope;
  json::object out;
  out["process"] = envelope && envelope->shouldProcessPushNotification();
  out["campaignID"] = envelope ? valueJson(envelope->campaignID) : nullptr;
  out["appId"] = envelope ? valueJson(envelope->zovAppId) : nullptr;
  out["mediaAttachment"] = envelope ? valueJson(envelope->mediaAttachment) : nullptr;
  out["mediaType"] = envelope ? valueJson(envelope->mediaType) : nullptr;
  out["richPush"] = envelope ? richPushJson(envelope->richPush) : nullptr;
  out["content"] = json::object{{"title", plan.content->title()},
                                {"subtitle", plan.content->subtitle()},
                                {"body", plan.content->body()}};
  out["media"] = plan.failure ? json::array() : mediaJson(plan.media);
  out["reasons"] = PayloadReasons::explain(payload, plan);
  zv::log::setSinkReceiver({});
  out["log"] = std::move(log);
  json::array warnings = PayloadWarnings::check(payload, payload.description().size());
  bool warned = !warnings.empty();
  out["warnings"] = std::move(warnings);
  std::cout << pretty(out) << "\n";
  return parser.flag("--strict") && warned ? kFailure : kOk;
}

}  // namespace

ZVPUSH_COMMAND(
    "inspect", "how Zentrova reads a payload: envelope, rich push, media and log",
    "inspect PAYLOAD.json [--strict]", runInspect,
    "  PAYLOAD.json  the remote-notification payload (\"-\" reads stdin)\n"
    "  --strict      exit 1 when there is a warning (for a sender's CI)\n"
    "Runs the service's own plan without network or store and prints whether the\n"
    "notification is processed, its rich push, the media it would download, the reasons\n"
    "(why the rich push was dropped or a media item left out), the library's log and the\n"
    "warnings (what a sender most likely did not mean).\n");

}  // namespace zvpush
