// zvpush studio's server: one page for the people who write pushes, and the requests it makes.
//   GET  /                the page (plain HTML; nothing from elsewhere, nothing inline)
//   GET  /studio.js, /studio.css  its script and style
//   GET  /api/examples    [{"name", "payload"}]: the *.json payloads under the root, their media
//                         URLs of the local media server pointed at this studio's /files/media/
//                         (with ?token=, for the flow's downloads)
//   GET  /files/PATH      a file under the root (never anything outside it)
//   POST /api/preview     {"payload": TEXT, "width", "platformVersion", "tap": {"x", "y", "dark"}}
//                         -> what inspect says (process, reasons, warnings), the service flow run
//                         for real (content only: no store, no report) with what became of each
//                         download, and the expanded notification drawn light and dark (PNG data
//                         URLs), with what the tap did. A payload that is not a JSON object gets
//                         400 {"error"}: the line the CLI would print.
// What a request must carry to be answered is StudioGuard's; every answer forbids sniffing, framing
// and any script or style but the page's own. Request bodies over 1 MB get 413. Previews run one
// at a time (the content extension's objects are the process's own).
#pragma once

#include <httplib.h>

#include <boost/json/object.hpp>
#include <filesystem>
#include <mutex>
#include <string>

#include "studio/StudioGuard.h"

namespace zvpush {

class Studio {
 public:
  static constexpr std::size_t kMaxBody = 1024 * 1024;

  // root: the payloads and media offered; scratch: a folder for downloads and the click store;
  // guard: what requests must carry.
  Studio(std::filesystem::path root, std::filesystem::path scratch, StudioGuard guard);

  // Adds the routes.
  void install(httplib::Server& http);
  // Once the port is bound: the URL the studio's own flow reaches it at ("http://HOST:PORT").
  void listening(const std::string& host, int port);

  // One preview (see above). Throws InputError for a payload that cannot be read.
  boost::json::object preview(const boost::json::object& request);

 private:
  boost::json::value examples() const;

  std::filesystem::path root_;
  std::filesystem::path scratch_;
  StudioGuard guard_;
  std::string origin_;
  std::mutex mutex_;
  int runs_ = 0;
};

// The page, its script and its style, as served.
const char* studioPage();
const char* studioScript();
const char* studioStyle();

}  // namespace zvpush
