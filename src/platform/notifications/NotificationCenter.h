// zv::NotificationCenter is the port behind UNUserNotificationCenter: the list of this
// application's notifications that are still shown. Linux has no such list, so the real default is
// an in-process list that the host, the CLI ("--delivered N") or a test presets; it starts empty.
//
// Queries are answered on a thread of the center's own, never on the caller's, one at a time and
// in the order they were asked, with a snapshot of the list taken when the answer is given. A test
// can hold the answers back and release them later (to have the center answer after the
// notification was handed back). Destroying the center releases the gate and answers the queries
// already asked first. Every operation is safe from any thread.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/foundation/Clock.h"
#include "platform/foundation/OperationQueue.h"
#include "zentrova/UNNotification.h"

namespace zv {

class NotificationCenter {
 public:
  using Notifications = std::vector<std::shared_ptr<UNNotification>>;
  using Completion = std::function<void(const Notifications& delivered)>;

  // The clock stamps the notifications of setShownCount (the system clock when null).
  explicit NotificationCenter(std::shared_ptr<Clock> clock = nullptr);

  void setDeliveredNotifications(Notifications notifications);
  void addDeliveredNotification(std::shared_ptr<UNNotification> notification);
  // Replaces the list with count shown notifications of empty content, identified "shown-1",
  // "shown-2", ..., delivered now.
  void setShownCount(size_t count);
  // While held, queries wait unanswered; releasing answers them in order.
  void holdAnswers();
  void releaseAnswers();
  ~NotificationCenter();

  // Calls completion with the delivered notifications, later, on the center's thread.
  void getDeliveredNotifications(Completion completion);

 private:
  std::shared_ptr<Clock> clock_;
  // Shared with the queued answers, which may outlive the center by one answer when the center is
  // released from inside a completion.
  struct List {
    std::mutex mutex;
    Notifications delivered;
    std::condition_variable released;
    bool held = false;
  };
  std::shared_ptr<List> list_;
  OperationQueue answers_;  // declared last: destroyed (and drained) first
};

}  // namespace zv
