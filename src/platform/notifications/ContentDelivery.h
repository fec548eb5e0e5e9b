// zv::ContentDelivery is the system's end of a notification-service extension's content handler,
// for one request: the handler the system gives the extension, and the notification it shows.
//
// The system shows the first content it is handed and ignores every later call. An extension may
// well call its handler more than once: after its time ran out and its best attempt was shown, its
// own flow still ends and delivers, and a failure guard that catches an exception raised by the
// handler itself delivers once more. By then the notification is on screen, so a later call changes
// nothing. The content is taken as it stands at the first call (a copy): what lands on it
// afterwards, such as a badge counted too late, is not shown.
//
// The handler may be called from any thread and may outlive this object.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>

namespace zv {

class UNNotificationContent;

class ContentDelivery {
 public:
  using ContentHandler = std::function<void(const std::shared_ptr<UNNotificationContent>&)>;

  ContentDelivery();

  // The content handler to give the extension.
  ContentHandler contentHandler() const;

  // Waits until the first call has come, at most timeout; true once it has.
  bool waitFor(std::chrono::duration<double> timeout) const;
  void wait() const;

  // The content shown (as it was at the first call), or nullptr before the first call.
  std::shared_ptr<UNNotificationContent> content() const;
  // Every call so far, the ignored ones included.
  int calls() const;

 private:
  struct State {
    mutable std::mutex mutex;
    std::condition_variable shown;
    std::shared_ptr<UNNotificationContent> content;
    int calls = 0;
  };
  std::shared_ptr<State> state_;
};

}  // namespace zv
