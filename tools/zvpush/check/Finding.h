// One thing zvpush check found in a payload: where (the file, and for what the laid-out preview
// showed, the device and style), how bad (error, warning or info), what (a stable code such as
// "low-contrast"), the view of the tree it is about, a sentence for a person and the figures
// behind it. Its JSON is what outside checks read:
//   {"file", "device": {"width", "height"} | null, "style": "light" | "dark" | null,
//    "platformVersion", "severity", "code", "view", "message", "details"}
#pragma once

#include <boost/json/object.hpp>
#include <optional>
#include <string>

namespace zvpush {

enum class Severity { kInfo = 0, kWarning = 1, kError = 2 };

const char* severityName(Severity s);
std::optional<Severity> severityNamed(const std::string& name);

struct Finding {
  std::string file;
  // The device and style of the preview it was read from; none for what the payload itself says.
  std::optional<double> width, height;
  std::optional<std::string> style;
  double platformVersion = 17.0;
  Severity severity = Severity::kError;
  std::string code;
  std::optional<std::string> view;
  std::string message;
  boost::json::object details;

  boost::json::object toJson() const;
  static Finding fromJson(const boost::json::object& o);
};

}  // namespace zvpush
