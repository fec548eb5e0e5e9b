// zv::UrlSessionConfiguration holds what a URL session is created with: the cache policy its
// requests default to, and how long a task may stay without any data moving before it fails.
// Sessions never keep a URL cache.
#pragma once

#include "platform/net/UrlRequest.h"

namespace zv {

struct UrlSessionConfiguration {
  // The platform's default configuration: protocol cache policy, 60-second time-out.
  static UrlSessionConfiguration defaultSessionConfiguration() { return {}; }

  int requestCachePolicy = UrlRequest::kUseProtocolCachePolicy;
  // Seconds without data before a task times out. A task uses the shorter of this and its
  // request's own time-out, so a session made with a short value (tests) shortens every task.
  double timeoutIntervalForRequest = 60.0;
};

}  // namespace zv
