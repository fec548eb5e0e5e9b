#include "check/MediaFetch.h"

#include <fmt/format.h>

#include <boost/json.hpp>
#include <chrono>

#include "model/ZVMedia.h"
#include "payload/ContentOnlyFlow.h"
#include "payload/DeliveredContent.h"
#include "payload/TransferLog.h"
#include "platform/net/UrlSession.h"
#include "platform/net/UrlSessionConfiguration.h"
#include "service/ServicePlan.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Platform.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/UNNotificationRequest.h"

namespace zvpush {

namespace {

namespace json = boost::json;
namespace fs = std::filesystem;
using Attachment = zv::UNNotificationAttachment;

// As long as the phone gives the service extension.
constexpr auto kBudget = std::chrono::seconds(30);

std::string megabytes(std::uintmax_t bytes) {
  return fmt::format("{:.1f} MB", static_cast<double>(bytes) / Attachment::kMegabyte);
}

// Why a download did not become an attachment, when the network is to blame.
std::optional<std::string> unreachable(const std::optional<TransferLog::Transfer>& t) {
  if (!t) return "the download did not start";
  if (!t->finished) return "no answer within the service's time";
  if (t->error && t->error->code == zv::UrlSession::kBodyTooLargeError) return std::nullopt;
  if (t->error) return "the transfer failed: " + t->error->localizedDescription;
  if (t->status != 200) return fmt::format("the server answered {}, not 200", t->status);
  return std::nullopt;
}

}  // namespace

MediaFetch::MediaFetch(fs::path folder) : folder_(std::move(folder)) {}

MediaFetch::~MediaFetch() {
  std::error_code ec;
  fs::remove_all(folder_, ec);
}

std::uintmax_t MediaFetch::limitFor(const std::string& type) {
  if (type == "image/gif") return 50 * Attachment::kMegabyte;
  // A declared kind ("audio") stands for its types when the bytes have none.
  std::string kind = type.find('/') == std::string::npos ? type : Attachment::mediaKindOfType(type);
  if (kind == "audio") return Attachment::kMaxAudioBytes;
  if (kind == "video") return Attachment::kMaxVideoBytes;
  return Attachment::kMaxImageBytes;
}

zv::Value MediaFetch::deliver(const zv::Value& payload, const Finding& stamp,
                              json::array& findings) {
  auto request = zv::UNNotificationRequest::requestWithRemoteNotification("check", payload);
  auto& handler = zv::ZVRichNotificationHandler::sharedHandler();
  auto plan = zv::ServicePlan::make(handler, request, false);
  auto transfers = std::make_shared<TransferLog>();
  auto configuration = zv::Platform::shared().urlSessionConfiguration();
  configuration.temporaryDirectory = folder_;
  configuration.observer = transfers;
  auto flow = ContentOnlyFlow::run(request, configuration, kBudget);
  auto content = flow.content;
  flow.session->shutdown();

  auto add = [&](const char* code, const std::string& url, std::string message,
                 json::object details) {
    Finding f = stamp;
    f.code = code;
    f.message = std::move(message);
    details["url"] = url;
    f.details = std::move(details);
    findings.push_back(f.toJson());
  };
  const fs::path attachments = folder_ / "Attachments";
  for (const auto& m : plan.failure ? decltype(plan.media){} : plan.media) {
    if (!m->mediaURL) continue;
    const std::string url = m->mediaURL->absoluteString();
    const std::string declared = m->mediaType.isString() ? std::string(m->mediaType.string()) : "";
    auto transfer = transfers->of(url);
    if (auto why = unreachable(transfer)) {
      add("media-unreachable", url, url + ": " + *why,
          json::object{{"status", transfer ? transfer->status : 0}});
      continue;
    }
    // The bytes as they arrived: the attachment made of them, or the file the check refused.
    std::shared_ptr<Attachment> made;
    for (const auto& a : content->attachments()) {
      if (m->attachmentID && a->identifier() == *m->attachmentID) made = a;
    }
    std::string type = made ? made->type() : "";
    std::uintmax_t bytes =
        transfer->received > 0 ? static_cast<std::uintmax_t>(transfer->received) : 0;
    std::error_code ec;
    fs::path file =
        made ? fs::path(made->URL().filePath()) : attachments / m->getFileNameForMedia();
    if (auto size = fs::file_size(file, ec); !ec) bytes = size;
    bool cutOff = transfer->error && transfer->error->code == zv::UrlSession::kBodyTooLargeError;
    std::string kind = Attachment::mediaKindOfType(type);
    std::uintmax_t limit = limitFor(type.empty() ? declared : type);
    if (cutOff || bytes > limit) {
      add("media-too-large", url,
          fmt::format("{} is {}{}, the phone takes at most {} for {}", url, cutOff ? "over " : "",
                      megabytes(bytes), megabytes(limit), type.empty() ? declared : type),
          json::object{{"bytes", bytes}, {"limit", limit}, {"type", type}});
      continue;
    }
    bool known = declared == "image" || declared == "audio" || declared == "video";
    if (!made || (known && kind != declared)) {
      add("media-type-mismatch", url,
          made ? fmt::format("{} is declared {} but its bytes are {} ({})", url, declared,
                             kind.empty() ? "of no media kind" : kind, type)
               : fmt::format("{} is declared {} but its bytes are of no media kind the phone "
                             "attaches",
                             url, declared.empty() ? "(no type)" : declared),
          json::object{{"declared", declared}, {"type", type}});
    }
  }
  return zv::Value(describeDelivered(*content, "check"));
}

}  // namespace zvpush
