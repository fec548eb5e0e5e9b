#include "studio/Studio.h"

#include <stdio.h>

#include <boost/json.hpp>
#include <chrono>
#include <cstdlib>
#include <sstream>

#include "common/ArgParser.h"
#include "common/DataUrl.h"
#include "common/JsonIO.h"
#include "common/LocalHttp.h"
#include "model/ZVPushPayload.h"
#include "payload/ContentOnlyFlow.h"
#include "payload/DeliveredContent.h"
#include "payload/DownloadExplainer.h"
#include "payload/PayloadReasons.h"
#include "payload/PayloadWarnings.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/UniqueHandle.h"
#include "platform/graphics/PngWriter.h"
#include "platform/net/UrlSession.h"
#include "platform/net/UrlSessionConfiguration.h"
#include "preview/PreviewScene.h"
#include "service/ServicePlan.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Exception.h"
#include "zentrova/Platform.h"
#include "zentrova/Renderer.h"
#include "zentrova/UIViewController.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/UNNotificationRequest.h"
#include "zentrova/ZVExtensionDataManager.h"

namespace zvpush {

namespace fs = std::filesystem;
namespace json = boost::json;

namespace {

// The studio waits this long for the media before it delivers the best attempt, as the phone
// does after about 30 seconds; a page that waits longer is not a page anyone uses.
constexpr auto kBudget = std::chrono::seconds(10);
// The examples name the media server of the README (zvpush serve on port 8765).
constexpr char kExampleMediaServer[] = "http://127.0.0.1:8765/";

double numberOr(const json::object& o, const char* key, double fallback) {
  const json::value* v = o.if_contains(key);
  if (!v || !v->is_number()) return fallback;
  return v->to_number<double>();
}

// Standard error lines written into memory, for the download explanations.
struct MemoryLog {
  char* buffer = nullptr;
  std::size_t length = 0;
  zv::UniqueHandle<FILE, std::fclose> file{open_memstream(&buffer, &length)};
  ~MemoryLog() {
    file.reset();
    std::free(buffer);
  }
  json::array lines() {
    std::fflush(file.get());
    json::array out;
    std::istringstream in(std::string(buffer ? buffer : "", length));
    for (std::string line; std::getline(in, line);) {
      if (line.starts_with("zvpush: ")) line.erase(0, 8);
      out.push_back(json::string(line));
    }
    return out;
  }
};

}  // namespace

Studio::Studio(fs::path root, fs::path scratch, StudioGuard guard)
    : root_(std::move(root)), scratch_(std::move(scratch)), guard_(std::move(guard)) {
  // Card clicks land in a store of the studio's own.
  zv::Platform::shared().setStoreDirectory(scratch_ / "store");
  zv::ZVExtensionDataManager::sharedManager().setAppGroupID("group.zvpush.studio");
  PreviewScene::prepare();
}

void Studio::listening(const std::string& host, int port) {
  origin_ = "http://" + hostInUrl(host) + ":" + std::to_string(port);
  guard_.setPort(port);
}

json::value Studio::examples() const {
  std::vector<fs::path> files;
  std::error_code ec;
  for (const auto& entry : fs::directory_iterator(root_, ec)) {
    if (entry.path().extension() == ".json" && entry.is_regular_file()) files.push_back(entry);
  }
  std::sort(files.begin(), files.end());
  bool media = fs::is_directory(root_ / "media", ec);
  json::array out;
  for (const auto& file : files) {
    std::string text = readInput(file);
    // Each media URL of the README's server becomes this studio's file, with the token the
    // flow's download must show.
    const std::string query = guard_.token().empty() ? "" : "?token=" + guard_.token();
    for (std::size_t at; media && (at = text.find(kExampleMediaServer)) != std::string::npos;) {
      text.replace(at, std::strlen(kExampleMediaServer), origin_ + "/files/media/");
      std::size_t end = text.find('"', at);
      if (end != std::string::npos) text.insert(end, query);
    }
    out.push_back(json::object{{"name", file.stem().string()}, {"payload", text}});
  }
  return out;
}

json::object Studio::preview(const json::object& request) {
  std::lock_guard lock(mutex_);
  auto started = std::chrono::steady_clock::now();
  const json::value* text = request.if_contains("payload");
  if (!text || !text->is_string()) throw InputError("the request has no \"payload\" text");
  zv::Value payload;
  try {
    payload = zv::Value::parse(text->as_string());
  } catch (const zv::Exception& e) {
    throw InputError("payload: " + e.reason());
  }
  if (!payload.isObject()) throw InputError("payload is not a JSON object");
  PreviewSettings settings;
  settings.width = numberOr(request, "width", 375);
  settings.platformVersion = numberOr(request, "platformVersion", 17);
  settings.contentHidden =
      !request.contains("contentHidden") || request.at("contentHidden") == true;
  if (!(settings.width >= 200 && settings.width <= 1024)) {
    throw InputError("the width is from 200 to 1024 points");
  }
  if (!(settings.platformVersion >= 10 && settings.platformVersion < 100)) {
    throw InputError("the platform version is from 10 to 99");
  }

  // What inspect says.
  std::string id = "studio-" + std::to_string(++runs_);
  auto notification = zv::UNNotificationRequest::requestWithRemoteNotification(id, payload);
  auto& handler = zv::ZVRichNotificationHandler::sharedHandler();
  auto plan = zv::ServicePlan::make(handler, notification, false);
  json::object out;
  out["process"] = plan.envelope && plan.envelope->shouldProcessPushNotification();
  out["reasons"] = PayloadReasons::explain(payload, plan);
  out["warnings"] = PayloadWarnings::check(payload, payload.description().size());

  // The service flow, content only (no store, no report), downloading for real through a session
  // of this preview's own that tells what became of each download.
  fs::path tmp = scratch_ / "tmp";
  MemoryLog log;
  auto explainer = std::make_shared<DownloadExplainer>(log.file.get(),
                                                       DownloadExplainer::Clock::duration::zero());
  auto configuration = zv::Platform::shared().urlSessionConfiguration();
  configuration.temporaryDirectory = tmp;
  configuration.observer = explainer;
  auto flow = ContentOnlyFlow::run(notification, configuration, kBudget);
  if (flow.expired) out["expired"] = true;
  auto content = flow.content;
  explainer->explain(plan.media, *content, tmp / "Attachments");
  flow.session->shutdown();
  out["downloads"] = log.lines();
  json::value described = describeDelivered(*content, id);
  json::value thumbnail = nullptr;
  auto& attachments = described.as_object()["attachments"].as_array();
  const auto made = content->attachments();
  for (std::size_t i = 0; i < attachments.size() && i < made.size(); ++i) {
    const auto& a = made[i];
    attachments[i].as_object()["type"] = a->type();
    if (thumbnail.is_null() && a->type().starts_with("image/")) {
      thumbnail = json::string(dataUrl(a->type(), readInput(a->URL().filePath())));
    }
  }
  out["delivered"] = described;
  out["thumbnail"] = thumbnail;

  // The expanded notification, light and dark.
  zv::Value input(described);
  const json::object* tap = request.if_contains("tap") ? request.at("tap").if_object() : nullptr;
  out["tap"] = nullptr;
  for (bool dark : {false, true}) {
    settings.dark = dark;
    settings.tap.reset();
    if (tap && (tap->contains("dark") && tap->at("dark") == true) == dark) {
      settings.tap = zv::CGPoint{numberOr(*tap, "x", 0), numberOr(*tap, "y", 0)};
    }
    PreviewScene scene = PreviewScene::show(input, settings);
    if (settings.tap) out["tap"] = scene.tap;
    auto pixels = zv::Renderer(settings.scale).draw(*scene.root());
    fs::path png = scratch_ / "preview.png";
    json::value image = nullptr;
    if (pixels && zv::PngWriter::write(*pixels, png)) {
      image = json::string(dataUrl("image/png", readInput(png)));
    }
    auto kind = scene.templateKind();
    zv::CGSize size = scene.root()->frame().size;
    out[dark ? "dark" : "light"] =
        json::object{{"png", image},
                     {"size", json::array{size.width, size.height}},
                     {"template", kind ? json::value(*kind) : json::value(nullptr)}};
  }
  out["millis"] = std::chrono::duration_cast<std::chrono::milliseconds>(
                      std::chrono::steady_clock::now() - started)
                      .count();
  return out;
}

void Studio::install(httplib::Server& http) {  // Enough workers for a page's requests and the media
                                               // downloads it makes of this same server.
  http.new_task_queue = [] { return new httplib::ThreadPool(16); };
  http.set_tcp_nodelay(true);
  // Stopping waits for kept-alive connections to time out.
  http.set_keep_alive_timeout(1);
  refuseSharedPorts(http);
  http.set_payload_max_length(kMaxBody);
  auto answer = [](httplib::Response& res, int status, const json::value& body) {
    res.status = status;
    res.set_content(json::serialize(body), "application/json");
  };
  // Refused before the body is read, and so before anything runs.
  http.set_pre_routing_handler([this, answer](const httplib::Request& req, httplib::Response& res) {
    auto refusal = guard_.check(req);
    if (!refusal) return httplib::Server::HandlerResponse::Unhandled;
    answer(res, refusal->status, json::object{{"error", refusal->reason}});
    return httplib::Server::HandlerResponse::Handled;
  });
  http.set_post_routing_handler([](const httplib::Request&, httplib::Response& res) {
    res.set_header("X-Content-Type-Options", "nosniff");
    res.set_header("X-Frame-Options", "DENY");
    res.set_header("Content-Security-Policy",
                   "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
                   "connect-src 'self'; base-uri 'none'; form-action 'none'; "
                   "frame-ancestors 'none'");
    res.set_header("Referrer-Policy", "no-referrer");
  });
  http.Get("/", [](const httplib::Request&, httplib::Response& res) {
    res.set_content(studioPage(), "text/html; charset=utf-8");
  });
  http.Get("/studio.js", [](const httplib::Request&, httplib::Response& res) {
    res.set_content(studioScript(), "text/javascript; charset=utf-8");
  });
  http.Get("/studio.css", [](const httplib::Request&, httplib::Response& res) {
    res.set_content(studioStyle(), "text/css; charset=utf-8");
  });
  http.Get("/api/examples", [this, answer](const httplib::Request&, httplib::Response& res) {
    answer(res, 200, examples());
  });
  http.Get(R"(/files/(.+))", [this](const httplib::Request& req, httplib::Response& res) {
    auto file = resolveUnderRoot(root_, req.matches[1]);
    if (!file) {
      res.status = 404;
      return;
    }
    res.set_content(readInput(*file), contentTypeFor(*file));
  });
  http.Post("/api/preview", [this, answer](const httplib::Request& req, httplib::Response& res) {
    std::error_code ec;
    json::value body = json::parse(req.body, ec);
    if (ec || !body.is_object()) {
      answer(res, 400, json::object{{"error", "the request is not a JSON object"}});
      return;
    }
    try {
      answer(res, 200, preview(body.as_object()));
    } catch (const InputError& e) {
      answer(res, 400, json::object{{"error", e.what()}});
    } catch (const std::exception& e) {
      answer(res, 500, json::object{{"error", e.what()}});
    }
  });
  http.set_error_handler([answer](const httplib::Request&, httplib::Response& res) {
    if (!res.body.empty()) return;
    std::string why = res.status == 413   ? "the request body is over 1 MB"
                      : res.status == 404 ? "not found"
                                          : "HTTP " + std::to_string(res.status);
    answer(res, res.status, json::object{{"error", why}});
  });
}

}  // namespace zvpush
