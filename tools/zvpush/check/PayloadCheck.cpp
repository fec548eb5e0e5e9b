#include "check/PayloadCheck.h"

#include <malloc.h>
#include <unistd.h>

#include <boost/json.hpp>
#include <chrono>

#include "check/Device.h"
#include "check/MediaFetch.h"
#include "check/TreeFindings.h"
#include "common/ArgParser.h"
#include "common/JsonIO.h"
#include "payload/PayloadReasons.h"
#include "payload/PayloadWarnings.h"
#include "preview/PreviewScene.h"
#include "service/ServicePlan.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Exception.h"
#include "zentrova/Platform.h"
#include "zentrova/Renderer.h"
#include "zentrova/UIView.h"
#include "zentrova/UNNotificationRequest.h"
#include "zentrova/ZVExtensionDataManager.h"
#include "zentrova/ZVPushTemplateHandler.h"
#include "zentrova/ZVRichNotification.h"

namespace zvpush {

namespace {

namespace json = boost::json;

Finding stampFor(const std::string& file, const CheckSettings& s) {
  Finding f;
  f.file = file;
  f.platformVersion = s.platformVersion;
  return f;
}

// "path: message", or the message alone for the payload as a whole.
std::string at(const json::object& said) {
  auto path = json::value_to<std::string>(said.at("path"));
  auto message = json::value_to<std::string>(said.at("message"));
  return path.empty() ? message : path + ": " + message;
}

// What inspect says about the payload: its reasons (the rich push dropped, a template that shows
// nothing, media left out) as errors, its warnings as warnings.
void inspect(const zv::Value& payload, const Finding& stamp, json::array& out) {
  auto request = zv::UNNotificationRequest::requestWithRemoteNotification("check", payload);
  auto plan = zv::ServicePlan::make(zv::ZVRichNotificationHandler::sharedHandler(), request, false);
  for (const auto& reason : PayloadReasons::explain(payload, plan)) {
    const auto& r = reason.as_object();
    Finding f = stamp;
    f.code = "payload-reason";
    f.message = at(r);
    f.details = json::object{{"path", r.at("path")}};
    out.push_back(f.toJson());
  }
  for (const auto& warning : PayloadWarnings::check(payload, payload.description().size())) {
    const auto& w = warning.as_object();
    Finding f = stamp;
    f.severity = Severity::kWarning;
    f.code = json::value_to<std::string>(w.at("code"));
    f.message = at(w);
    f.details = json::object{{"path", w.at("path")}};
    out.push_back(f.toJson());
  }
}

}  // namespace

json::object PayloadCheck::run(const std::string& file, std::size_t index, const CheckSettings& s) {
  // The worker makes the content side ready on its first payload: fonts, interface files and a
  // scratch store for card clicks. Not in the parent before forking: Pango may have started a
  // thread of its own by then, and a fork copies none of its locks' owners. When the fonts cannot
  // be loaded this throws, and the payload is reported failed with the reason.
  static const bool ready = [&] {
    // A store of the worker's own: workers that shared one would lock each other out of it.
    zv::Platform::shared().setStoreDirectory(s.scratch / ("store-" + std::to_string(::getpid())));
    zv::ZVExtensionDataManager::sharedManager().setAppGroupID("group.zvpush.check");
    try {
      PreviewScene::prepare();
    } catch (const zv::Exception& e) {
      throw std::runtime_error(e.reason());
    }
    return true;
  }();
  (void)ready;
  // One renderer (and font map) for every preview this worker draws, at one pixel per point:
  // the contact sheet shows many previews, not the phone's sharpness.
  static const zv::Renderer renderer(1);
  const Finding stamp = stampFor(file, s);
  json::array findings, matrix;
  json::object out{{"file", file}, {"fetched", s.fetch}};
  zv::Value input;
  try {
    input = readJsonObject(file);
  } catch (const UsageError& e) {
    Finding f = stamp;
    f.code = "unreadable-payload";
    f.message = e.what();
    findings.push_back(f.toJson());
    out["findings"] = std::move(findings);
    out["matrix"] = std::move(matrix);
    return out;
  }
  const bool delivered = input.get("userInfo").isObject();
  const zv::Value payload = delivered ? input.get("userInfo") : input;
  inspect(payload, stamp, findings);
  if (s.fetch) {
    MediaFetch fetch(s.scratch / ("fetch-" + std::to_string(index)));
    input = fetch.deliver(payload, stamp, findings);
  }

  for (double width : s.widths) {
    const Device device = Device::ofWidth(width);
    for (const std::string& style : s.styles) {
      PreviewSettings settings;
      settings.width = device.width;
      settings.screenHeight = device.height;
      settings.scale = device.scale;
      settings.platformVersion = s.platformVersion;
      settings.dark = style == "dark";
      settings.contentHidden = s.contentHidden;
      Finding here = stamp;
      here.width = device.width;
      here.height = device.height;
      here.style = style;
      json::object cell{
          {"device", json::object{{"width", device.width}, {"height", device.height}}},
          {"style", style},
          {"template", nullptr},
          {"size", nullptr},
          {"png", nullptr}};
      const auto started = std::chrono::steady_clock::now();
      try {
        // Each preview is a fresh extension: the handler keeps dark once it has shown it.
        zv::ZVPushTemplateHandler::resetSharedInstance();
        PreviewScene scene = PreviewScene::show(input, settings);
        const auto& root = scene.root();
        for (const Finding& f : TreeFindings::read(*root, here, device)) {
          findings.push_back(f.toJson());
        }
        auto kind = scene.templateKind();
        cell["template"] = kind ? json::value(*kind) : json::value(nullptr);
        cell["size"] = json::array{root->frame().size.width, root->frame().size.height};
        if (s.previews) {
          auto png = *s.previews / (std::to_string(index) + "-" + std::to_string(int(width)) + "-" +
                                    style + ".png");
          if (renderer.writePng(*root, png)) cell["png"] = png.string();
        }
      } catch (const std::exception& e) {
        here.code = "preview-failed";
        here.message = std::string("the content extension could not show it: ") + e.what();
        findings.push_back(here.toJson());
      }
      cell["seconds"] =
          std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
      matrix.push_back(std::move(cell));
    }
  }
  malloc_trim(0);
  out["findings"] = std::move(findings);
  out["matrix"] = std::move(matrix);
  return out;
}

}  // namespace zvpush
