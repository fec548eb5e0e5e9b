#include "check/CheckReport.h"

#include <fmt/format.h>

#include <boost/json.hpp>

namespace zvpush {

namespace json = boost::json;

CheckReport::CheckReport(std::vector<json::object> payloads, Severity failOn, std::size_t previews)
    : payloads_(std::move(payloads)), failOn_(failOn), previews_(previews) {
  for (const auto& p : payloads_) {
    for (const auto& f : p.at("findings").as_array())
      findings_.push_back(Finding::fromJson(f.as_object()));
  }
}

std::size_t CheckReport::count(Severity s) const {
  std::size_t n = 0;
  for (const auto& f : findings_) n += f.severity == s;
  return n;
}

bool CheckReport::failed() const {
  for (const auto& f : findings_) {
    if (f.severity >= failOn_) return true;
  }
  return false;
}

std::string CheckReport::summaryLine() const {
  auto plural = [](std::size_t n, const char* word) {
    return fmt::format("{} {}{}", n, word, n == 1 ? "" : "s");
  };
  return fmt::format(
      "zvpush check: {}, {}: {}, {}, {}; {} (--fail-on {})", plural(payloads_.size(), "payload"),
      plural(previews_, "preview"), plural(count(Severity::kError), "error"),
      plural(count(Severity::kWarning), "warning"), plural(count(Severity::kInfo), "info"),
      failed() ? "fails" : "passes", severityName(failOn_));
}

json::object CheckReport::document() const {
  json::array payloads, findings;
  for (const auto& p : payloads_) {
    // The pictures drawn for the contact sheet live only as long as the run: not named here.
    json::array previews = p.at("matrix").as_array();
    for (auto& cell : previews) cell.as_object().erase("png");
    payloads.push_back(json::object{{"file", p.at("file")},
                                    {"fetched", p.at("fetched")},
                                    {"findings", p.at("findings").as_array().size()},
                                    {"previews", std::move(previews)}});
  }
  for (const auto& f : findings_) findings.push_back(f.toJson());
  return json::object{{"payloads", std::move(payloads)},
                      {"findings", std::move(findings)},
                      {"summary", json::object{{"payloads", payloads_.size()},
                                               {"previews", previews_},
                                               {"errors", count(Severity::kError)},
                                               {"warnings", count(Severity::kWarning)},
                                               {"infos", count(Severity::kInfo)},
                                               {"failOn", severityName(failOn_)},
                                               {"failed", failed()}}}};
}

std::string escapeMarkup(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      case '\'':
        out += "&#39;";
        break;
      default:
        // Control characters other than tab and newline have no place in XML 1.0.
        if (static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n') {
          out += ' ';
        } else {
          out += c;
        }
    }
  }
  return out;
}

}  // namespace zvpush
