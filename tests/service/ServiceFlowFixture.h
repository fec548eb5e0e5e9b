// A test fixture that runs the service flow against real components: a store in a temporary
// folder configured as the host application would, a local HTTP server that serves media and
// receives the reports, and a notification center preset with delivered notifications.
#pragma once

#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/LocalServer.h"
#include "support/ProcessStateReset.h"
#include "support/TestSupport.h"
#include "zentrova/Value.h"

namespace zv {
class UNNotificationContent;
class UserDefaults;
class NotificationCenter;
}  // namespace zv

namespace zvtest {

class ServiceFlowFixture : public ::testing::Test {
 protected:
  static constexpr char kAppGroup[] = "group.com.zentrova.tests";
  static constexpr char kAppId[] = "app-123";

  void SetUp() override;
  void TearDown() override;

  // Runs the full flow (or the content-only flow) and returns the content first handed back,
  // failing the test when the handler is not called `calls` times within 20 seconds. meanwhile
  // runs once the flow has started. Each call runs onCall (if set) with its index; what onCall
  // raises is raised by the handler. handlerCalls counts every call, counted once the flow's queues
  // and session are drained.
  std::shared_ptr<zv::UNNotificationContent> run(const boost::json::object& payload,
                                                 bool contentOnly = false,
                                                 const std::function<void()>& meanwhile = {},
                                                 int calls = 1);
  // A Zentrova payload: "aps" with an alert dictionary, "zentrova" with cid and app id, and the
  // given rich push (omitted when null).
  boost::json::object payload(const boost::json::value& richPush = nullptr) const;
  // A rich push of the given template whose cards hold one image widget for each URL.
  static boost::json::object richPush(const std::vector<std::string>& imageUrls,
                                      const std::string& templateType = "imageCarousel");
  // Events and pending notifications as stored for kAppId.
  zv::Value storedEvents() const;
  zv::Value pendingNotifications() const;
  std::vector<LocalServer::Request> requests(const std::string& method) const;
  // Serves a real PNG file under path.
  void servePng(const std::string& path);

  ProcessStateReset state;  // first: restores the process after everything else is gone
  TempDir dir;
  LocalServer server;
  LogCapture logs;
  std::shared_ptr<zv::UserDefaults> suite;
  std::shared_ptr<zv::NotificationCenter> center;
  std::function<void(int call, const std::shared_ptr<zv::UNNotificationContent>&)> onCall;
  int handlerCalls = 0;
};

// The bytes of a small real file under tests/data/media ("sample.png", ...).
std::string sampleMedia(const std::string& name);

}  // namespace zvtest
