// What a host application's two notification extensions do with Zentrova, in one program:
//  1. the host configures the store it shares with its extensions (the app group, the reporting
//     settings);
//  2. the notification-service extension hands the incoming request to Zentrova, which rewrites
//     it, downloads its media and reports it, then gets the content back;
//  3. the notification-content extension shows the delivered notification: Zentrova adds its
//     template to the controller's view, which is drawn here into a PNG.
// Usage: zentrova-host PAYLOAD.json OUT.png [REPORTS_PORT]
#include <zentrova/zentrova.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <future>
#include <iostream>
#include <mutex>
#include <sstream>

namespace {

constexpr char kAppGroup[] = "group.com.example.host";

zv::Value readPayload(const char* path) {
  std::ifstream in(path);
  std::stringstream text;
  text << in.rdbuf();
  return zv::Value::parse(text.str());
}

// The host application's part: the store shared with the extensions, and where reports go.
void configureStore(int reportsPort) {
  zv::ZVRichNotification::setAppGroupID(kAppGroup);
  auto store =
      zv::UserDefaults::initWithSuiteName(kAppGroup, zv::Platform::shared().storeDirectory());
  store->setObject(zv::Value::parse(R"({"sdk": "zentrova-host"})"), "zov_params");
  store->setObject(zv::Value("127.0.0.1"), "zov_reports_host");
  store->setObject(zv::Value("http"), "zov_reports_scheme");
  store->setObject(zv::Value::parse(std::to_string(reportsPort)), "zov_reports_port");
}

// The notification-service extension: the delivered content, or the best attempt after the 30
// seconds a phone allows.
std::shared_ptr<zv::UNNotificationContent> serviceExtension(const zv::Value& payload) {
  auto request = zv::UNNotificationRequest::requestWithRemoteNotification("host-1", payload);
  // The system shows the first content handed and ignores later calls: the flow calls the handler
  // again when it ends after the 30 seconds, or when a guard catches an exception the handler
  // raised. The handler may run on any thread and outlive this function.
  struct Delivery {
    std::once_flag first;
    std::promise<std::shared_ptr<zv::UNNotificationContent>> shown;
  };
  auto delivery = std::make_shared<Delivery>();
  auto future = delivery->shown.get_future();
  zv::ZVRichNotification::handleRichNotificationRequest(
      request, [delivery](const std::shared_ptr<zv::UNNotificationContent>& content) {
        std::call_once(delivery->first, [&] { delivery->shown.set_value(content); });
      });
  if (future.wait_for(std::chrono::seconds(30)) != std::future_status::ready) {
    zv::ZVRichNotification::serviceExtensionTimeWillExpire();
  }
  return future.get();
}

// The notification-content extension: the expanded view of the notification, drawn to a PNG.
bool contentExtension(const std::shared_ptr<zv::UNNotificationContent>& content, const char* png) {
  auto notification = zv::UNNotification::notificationWithRequest(
      zv::UNNotificationRequest::requestWithIdentifier("host-1", content), 0);
  auto controller = std::make_shared<zv::UIViewController>();
  controller->setView(zv::UIView::make({{0, 0}, {375, 0}}));
  zv::ZVPushTemplateHandler::sharedInstance().addPushTemplateToController(controller, notification);
  controller->view()->layoutIfNeeded();
  return zv::Renderer(2).writePng(*controller->view(), png);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 3) {
    std::fprintf(stderr, "usage: zentrova-host PAYLOAD.json OUT.png [REPORTS_PORT]\n");
    return 2;
  }
  std::printf("zentrova %s\n", zv::kVersionString);
  configureStore(argc > 3 ? std::atoi(argv[3]) : 8765);
  zv::Value payload;
  try {
    payload = readPayload(argv[1]);
  } catch (const zv::Exception& e) {
    std::fprintf(stderr, "%s: %s\n", argv[1], e.reason().c_str());
    return 2;
  }
  auto content = serviceExtension(payload);
  std::printf("delivered \"%s\" with %zu attachment(s)\n", content->title().c_str(),
              content->attachments().size());
  if (!contentExtension(content, argv[2])) {
    std::fprintf(stderr, "cannot write %s\n", argv[2]);
    return 1;
  }
  std::printf("wrote %s\n", argv[2]);
  return 0;
}
