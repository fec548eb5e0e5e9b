#include "check/Finding.h"

#include <boost/json.hpp>

namespace zvpush {

namespace json = boost::json;

const char* severityName(Severity s) {
  switch (s) {
    case Severity::kInfo:
      return "info";
    case Severity::kWarning:
      return "warning";
    case Severity::kError:
      break;
  }
  return "error";
}

std::optional<Severity> severityNamed(const std::string& name) {
  for (Severity s : {Severity::kInfo, Severity::kWarning, Severity::kError}) {
    if (name == severityName(s)) return s;
  }
  return std::nullopt;
}

json::object Finding::toJson() const {
  json::value device = nullptr;
  if (width && height) device = json::object{{"width", *width}, {"height", *height}};
  return json::object{{"file", file},
                      {"device", device},
                      {"style", style ? json::value(*style) : json::value(nullptr)},
                      {"platformVersion", platformVersion},
                      {"severity", severityName(severity)},
                      {"code", code},
                      {"view", view ? json::value(*view) : json::value(nullptr)},
                      {"message", message},
                      {"details", details}};
}

Finding Finding::fromJson(const json::object& o) {
  Finding f;
  f.file = json::value_to<std::string>(o.at("file"));
  if (const auto* device = o.at("device").if_object()) {
    f.width = device->at("width").to_number<double>();
    f.height = device->at("height").to_number<double>();
  }
  if (o.at("style").is_string()) f.style = json::value_to<std::string>(o.at("style"));
  f.platformVersion = o.at("platformVersion").to_number<double>();
  f.severity =
      severityNamed(json::value_to<std::string>(o.at("severity"))).value_or(Severity::kError);
  f.code = json::value_to<std::string>(o.at("code"));
  if (o.at("view").is_string()) f.view = json::value_to<std::string>(o.at("view"));
  f.message = json::value_to<std::string>(o.at("message"));
  f.details = o.at("details").as_object();
  return f;
}

}  // namespace zvpush
