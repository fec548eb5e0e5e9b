#include "platform/notifications/ContentDelivery.h"

#include "zentrova/UNNotificationContent.h"

namespace zv {

ContentDelivery::ContentDelivery() : state_(std::make_shared<State>()) {}

ContentDelivery::ContentHandler ContentDelivery::contentHandler() const {
  return [state = state_](const std::shared_ptr<UNNotificationContent>& content) {
    // Taken outside the lock: copying reads the content under its own lock.
    auto shown = content ? content->copy() : std::make_shared<UNNotificationContent>();
    {
      std::lock_guard lock(state->mutex);
      ++state->calls;
      // The notification is already on screen after the first call: a later one is ignored.
      if (state->content) return;
      state->content = std::move(shown);
    }
    state->shown.notify_all();
  };
}

bool ContentDelivery::waitFor(std::chrono::duration<double> timeout) const {
  std::unique_lock lock(state_->mutex);
  return state_->shown.wait_for(lock, timeout, [&] { return state_->content != nullptr; });
}

void ContentDelivery::wait() const {
  std::unique_lock lock(state_->mutex);
  state_->shown.wait(lock, [&] { return state_->content != nullptr; });
}

std::shared_ptr<UNNotificationContent> ContentDelivery::content() const {
  std::lock_guard lock(state_->mutex);
  return state_->content;
}

int ContentDelivery::calls() const {
  std::lock_guard lock(state_->mutex);
  return state_->calls;
}

}  // namespace zv
