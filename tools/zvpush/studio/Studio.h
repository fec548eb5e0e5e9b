// zvpush studio's server: one page for the people who write pushes, and the requests it makes.
//   GET  /                the page (plain HTML, CSS and a small script; nothing from elsewhere)
//   GET  /api/examples    [{"name", "payload"}]: the *.json payloads under the root, their media
//                         URLs of the local media server pointed at this studio's /files/media/
//   GET  /files/PATH      a file under the root (never anything outside it)
//   POST /api/preview     {"payload": TEXT, "width", "platformVersion", "tap": {"x", "y", "dark"}}
//                         -> what inspect says (process, reasons, warnings), the service flow run
//                         for real (content only: no store, no report) with what became of each
//                         download, and the expanded notification drawn light and dark (PNG data
//                         URLs), with what the tap did. A payload that is not a JSON object gets
//                         400 {"error"}: the line the CLI would print.
// Request bodies over 1 MB get 413. Previews run one at a time (the content extension's objects
// are the process's own).
#pragma once

#include <httplib.h>

#include <boost/json/object.hpp>
#include <filesystem>
#include <mutex>
#include <string>

namespace zvpush {

class Studio {
 public:
  static constexpr std::size_t kMaxBody = 1024 * 1024;

  // root: the payloads and media offered; scratch: a folder for downloads and the click store.
  Studio(std::filesystem::path root, std::filesystem::path scratch);

  // Adds the routes.
  void install(httplib::Server& http);
  // The URL the studio is reached at ("http://127.0.0.1:PORT"), once its port is bound.
  void setOrigin(std::string origin) { origin_ = std::move(origin); }

  // One preview (see above). Throws InputError for a payload that cannot be read.
  boost::json::object preview(const boost::json::object& request);

 private:
  boost::json::value examples() const;

  std::filesystem::path root_;
  std::filesystem::path scratch_;
  std::string origin_;
  std::mutex mutex_;
  int runs_ = 0;
};

// The page, as served.
const char* studioPage();

}  // namespace zvpush
