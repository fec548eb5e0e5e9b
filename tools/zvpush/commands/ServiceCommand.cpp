// zvpush service: runs the notification-service flow on one remote-notification payload and prints
// the content handed to the content handler, as one JSON object.
#include <unistd.h>

#include <boost/json.hpp>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <random>

#include "common/ArgParser.h"
#include "common/Command.h"
#include "common/JsonIO.h"
#include "payload/DeliveredContent.h"
#include "payload/DownloadExplainer.h"
#include "platform/foundation/Clock.h"
#include "platform/foundation/Log.h"
#include "platform/net/UrlSession.h"
#include "platform/net/UrlSessionConfiguration.h"
#include "platform/notifications/ContentDelivery.h"
#include "platform/notifications/NotificationCenter.h"
#include "service/ServicePlan.h"
#include "service/ZVRichNotificationHandler.h"
#include "zentrova/Platform.h"
#include "zentrova/UNMutableNotificationContent.h"
#include "zentrova/UNNotificationAttachment.h"
#include "zentrova/UNNotificationRequest.h"
#include "zentrova/UNNotificationSound.h"
#include "zentrova/ZVRichNotification.h"

namespace zvpush {

namespace {

namespace json = boost::json;

// The CLI's standard store is one fixed suite, as one installed extension would have.
constexpr char kBundleIdentifier[] = "com.zentrova.zvpush.service";

std::string randomIdentifier() {
  std::random_device rd;
  std::uniform_int_distribution<int> hex(0, 15);
  std::string id = "zvpush-";
  for (int i = 0; i < 16; ++i) id.push_back("0123456789abcdef"[hex(rd)]);
  return id;
}

int run(const Args& args) {
  ArgParser p({"--store", "--app-group", "--delivered", "--tmp", "--ca-file", "--id", "--budget"},
              {"--content-only", "--log", "--explain"});
  p.parse(args);
  if (p.positional().size() != 1) throw UsageError("expected one PAYLOAD.json");
  zv::Value payload = readJsonObject(p.positional()[0]);

  auto& platform = zv::Platform::shared();
  platform.setBundleIdentifier(kBundleIdentifier);
  if (auto dir = p.value("--store")) platform.setStoreDirectory(std::filesystem::absolute(*dir));
  if (auto dir = p.value("--tmp")) platform.setTemporaryDirectory(std::filesystem::absolute(*dir));
  if (auto ca = p.value("--ca-file")) {
    if (::access(ca->c_str(), R_OK) != 0) {
      throw InputError("cannot read --ca-file " + *ca + ": " + std::strerror(errno));
    }
    platform.setExtraCaFile(*ca);
  }
  if (auto n = p.number("--delivered")) {
    if (*n < 0 || *n != static_cast<long>(*n)) throw UsageError("--delivered needs a count");
    platform.notificationCenter()->setShownCount(static_cast<size_t>(*n));
  }
  // The phone gives the service extension about 30 seconds, then shows the best attempt.
  double budget = p.number("--budget").value_or(30);
  if (!(budget > 0 && budget <= 86400)) throw UsageError("--budget needs seconds above 0");
  std::string identifier = p.value("--id").value_or(randomIdentifier());
  auto request = zv::UNNotificationRequest::requestWithRemoteNotification(identifier, payload);

  // --explain watches the session's transfers. The media list comes from the service's own plan,
  // made here before --log installs its receiver, so that its messages are not printed twice.
  std::shared_ptr<DownloadExplainer> explainer;
  std::vector<std::shared_ptr<zv::ZVMedia>> media;
  if (p.flag("--explain")) {
    using namespace std::chrono_literals;
    explainer = std::make_shared<DownloadExplainer>(
        stderr, ::isatty(STDERR_FILENO) ? DownloadExplainer::Clock::duration(3s)
                                        : DownloadExplainer::Clock::duration::zero());
    auto configuration = platform.urlSessionConfiguration();
    configuration.observer = explainer;
    platform.setUrlSession(zv::UrlSession::sessionWithConfiguration(configuration));
    media =
        zv::ServicePlan::make(zv::ZVRichNotificationHandler::sharedHandler(), request, false).media;
  }
  if (p.flag("--log")) {
    zv::log::setSinkReceiver([](const std::string& m) { std::fprintf(stderr, "%s\n", m.c_str()); });
  }
  if (auto group = p.value("--app-group")) zv::ZVRichNotification::setAppGroupID(*group);

  // The system's end of the content handler: the first content handed is the notification, taken
  // as it stands then (a badge that lands later is lost, as it would be on the phone). Later calls
  // are ignored, as the phone ignores them: the flow calls the handler again when it ends after the
  // budget, or when a guard catches an exception raised by the handler.
  zv::ContentDelivery delivery;
  if (p.flag("--content-only")) {
    zv::ZVRichNotification::getLocalNotificationContentForRequest(request,
                                                                  delivery.contentHandler());
  } else {
    zv::ZVRichNotification::handleRichNotificationRequest(request, delivery.contentHandler());
  }
  bool expired = !delivery.waitFor(std::chrono::duration<double>(budget));
  if (expired) {
    zv::ZVRichNotification::serviceExtensionTimeWillExpire();
    delivery.wait();
  }
  auto content = delivery.content();
  json::value result = describeDelivered(*content, identifier);
  if (expired) result.as_object()["expired"] = true;
  if (explainer) explainer->explain(media, *content, platform.temporaryDirectory() / "Attachments");
  std::cout << pretty(result) << std::endl;
  return kOk;
}

}  // namespace

ZVPUSH_COMMAND("service", "run the notification-service flow on a payload",
               "service PAYLOAD.json [--store DIR] [--app-group ID] [--delivered N] "
               "[--content-only] [--tmp DIR] [--ca-file PEM] [--id ID] [--budget S] [--log] "
               "[--explain]",
               run,
               "  PAYLOAD.json     the remote-notification payload (\"-\" reads stdin)\n"
               "  --store DIR      the folder of the stores ($XDG_DATA_HOME/zentrova)\n"
               "  --app-group ID   the app group the host configured (setAppGroupID)\n"
               "  --delivered N    how many notifications the center reports as shown (0)\n"
               "  --content-only   the content-only flow: no store, no report\n"
               "  --tmp DIR        the temporary folder; attachments go to DIR/Attachments\n"
               "  --ca-file PEM    one more trusted certificate authority\n"
               "  --id ID          the request's identifier (random)\n"
               "  --budget S       seconds before the best attempt is delivered (30)\n"
               "  --log            print every log-sink message on stderr\n"
               "  --explain        say on stderr what happened to each media item: its HTTP\n"
               "                   status or transfer error, the bytes received, and the\n"
               "                   attachment made or why not; on a terminal a slow download\n"
               "                   shows its progress every 3 s; the reports request's answer\n");

}  // namespace zvpush
