// zv::UrlSessionObserver watches the transfers of a URL session, as the phone's task metrics do:
// how much of each body has arrived and how each task ended. A session made with an observer in
// its configuration calls it on its delegate thread, progress many times a second while a task
// runs (and about once a second while it waits), and the end once, just before the task's
// completion. Tools use it to explain a download; the library itself never needs one.
#pragma once

#include <cstdint>
#include <optional>

#include "zentrova/Error.h"

namespace zv {

class UrlSessionTask;

class UrlSessionObserver {
 public:
  virtual ~UrlSessionObserver() = default;
  // received: body bytes so far; expected: the announced length, or -1 when unknown.
  virtual void taskProgressed(const UrlSessionTask& task, std::int64_t received,
                              std::int64_t expected) = 0;
  // status: the HTTP status of the last answer, 0 without one.
  virtual void taskFinished(const UrlSessionTask& task, long status, std::int64_t received,
                            const std::optional<Error>& error) = 0;
};

}  // namespace zv
