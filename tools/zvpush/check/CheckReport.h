// What zvpush check found in a batch, and the ways it says so:
//   text   one line per finding as compilers print them ("carousel.json: warning[low-contrast]
//          light 375: ..."), findings equal but for the device grouped on one line, then a
//          summary line;
//   json   one document {"payloads", "findings", "summary"} with every finding ungrouped;
//   junit  one test case per payload x device x style (and one for what the payload itself
//          says), failed by the findings that reach --fail-on, as CI test reporters read it;
//   html   a contact sheet: every preview of every payload, light and dark side by side, the
//          findings beside each; one self-contained file (pictures inline, no scripts, no fonts
//          fetched).
#pragma once

#include <boost/json/object.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "check/Finding.h"

namespace zvpush {

class CheckReport {
 public:
  // payloads: each worker's answer ({"file", "findings", "matrix", "fetched"}), in file order.
  CheckReport(std::vector<boost::json::object> payloads, Severity failOn, std::size_t previews);

  // True when some finding reaches the --fail-on severity.
  bool failed() const;
  // "zvpush check: 9 payloads, 90 previews: 2 errors, 3 warnings, 1 info; fails (--fail-on error)"
  std::string summaryLine() const;

  std::string text() const;
  boost::json::object document() const;
  std::string junit() const;
  // Writes DIR/index.html; false when it cannot be written.
  bool writeContactSheet(const std::filesystem::path& dir) const;

 private:
  std::size_t count(Severity s) const;

  std::vector<boost::json::object> payloads_;
  std::vector<Finding> findings_;
  Severity failOn_;
  std::size_t previews_;
};

// Text escaped for XML and HTML (&, <, >, ", ').
std::string escapeMarkup(const std::string& text);

}  // namespace zvpush
