// zv::UrlSessionConfiguration holds what a URL session is created with: the cache policy its
// requests default to, how long a task may stay without any data moving before it fails, the extra
// certificate authorities it trusts, the folder its downloads are written to and who watches its
// transfers. Sessions never
// keep a URL cache.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/foundation/FileManager.h"
#include "platform/net/UrlRequest.h"
#include "platform/net/UrlSessionObserver.h"

namespace zv {

struct UrlSessionConfiguration {
  // The platform's default configuration: protocol cache policy, 60-second time-out.
  static UrlSessionConfiguration defaultSessionConfiguration() { return {}; }

  int requestCachePolicy = UrlRequest::kUseProtocolCachePolicy;
  // Seconds without data before a task times out. A task uses the shorter of this and its
  // request's own time-out, so a session made with a short value (tests) shortens every task.
  double timeoutIntervalForRequest = 60.0;
  // A PEM file of certificate authorities trusted beside the system's ("" for none).
  std::string extraCaFile{};
  // Where download tasks write their files (made when missing).
  std::filesystem::path temporaryDirectory = FileManager::processTemporaryDirectory();
  // Told of every task's progress and end (none by default).
  std::shared_ptr<UrlSessionObserver> observer{};
};

}  // namespace zv
