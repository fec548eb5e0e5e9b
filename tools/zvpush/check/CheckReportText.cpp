// CheckReport's text and JUnit outputs.
#include <fmt/format.h>

#include <algorithm>
#include <boost/json.hpp>
#include <map>
#include <tuple>

#include "check/CheckReport.h"

namespace zvpush {

namespace {

std::string caseName(const boost::json::object& cell) {
  const auto& d = cell.at("device").as_object();
  return fmt::format("{:g}x{:g} {}", d.at("width").to_number<double>(),
                     d.at("height").to_number<double>(),
                     boost::json::value_to<std::string>(cell.at("style")));
}

}  // namespace

std::string CheckReport::text() const {
  // Findings equal but for the device share a line, in the order first seen; then lines equal
  // but for the style, seen at the same widths, share one too.
  using Key = std::tuple<std::string, int, std::string, std::string, std::string, std::string>;
  struct Line {
    const Finding* finding;
    std::string styles;
    std::vector<double> widths;
  };
  std::map<Key, std::size_t> index;
  std::vector<Line> lines;
  for (const auto& f : findings_) {
    Key key{
        f.file,   static_cast<int>(f.severity), f.code, f.view.value_or(""), f.style.value_or(""),
        f.message};
    auto [it, added] = index.try_emplace(key, lines.size());
    if (added) lines.push_back({&f, f.style.value_or(""), {}});
    if (f.width) lines[it->second].widths.push_back(*f.width);
  }
  std::vector<Line> merged;
  for (const auto& l : lines) {
    auto same = std::find_if(merged.begin(), merged.end(), [&](const Line& m) {
      const Finding &a = *m.finding, &b = *l.finding;
      return a.style && b.style && a.file == b.file && a.severity == b.severity &&
             a.code == b.code && a.view == b.view && a.message == b.message && m.widths == l.widths;
    });
    if (same != merged.end()) {
      same->styles += "," + l.styles;
    } else {
      merged.push_back(l);
    }
  }
  std::string out;
  for (const auto& l : merged) {
    std::string at;
    if (l.finding->style) {
      at = " " + l.styles + " ";
      for (std::size_t i = 0; i < l.widths.size(); ++i) {
        at += fmt::format("{}{:g}", i ? "," : "", l.widths[i]);
      }
    }
    out += fmt::format("{}: {}[{}]{}: {}\n", l.finding->file, severityName(l.finding->severity),
                       l.finding->code, at, l.finding->message);
  }
  bool fetched = !payloads_.empty() && payloads_.front().at("fetched").as_bool();
  if (!fetched) {
    out +=
        "note: media not fetched: media-unreachable, media-too-large and media-type-mismatch "
        "were not checked, and images only where the input has attachments (--fetch)\n";
  }
  return out + summaryLine() + "\n";
}

std::string CheckReport::junit() const {
  std::size_t tests = 0, failures = 0;
  std::string suites;
  for (const auto& p : payloads_) {
    const std::string file = boost::json::value_to<std::string>(p.at("file"));
    // The cases: what the payload itself says, then each preview.
    std::vector<std::pair<std::string, double>> names{{"payload", 0.0}};
    for (const auto& cell : p.at("matrix").as_array()) {
      const auto* seconds = cell.as_object().if_contains("seconds");
      names.push_back({caseName(cell.as_object()), seconds ? seconds->to_number<double>() : 0.0});
    }
    double total = 0;
    for (const auto& n : names) total += n.second;
    std::string cases;
    std::size_t suiteFailures = 0;
    for (const auto& [name, seconds] : names) {
      std::string failing, other;
      for (const auto& f : findings_) {
        if (f.file != file) continue;
        std::string of =
            f.style ? fmt::format("{:g}x{:g} {}", *f.width, *f.height, *f.style) : "payload";
        if (of != name) continue;
        std::string line = fmt::format("{}[{}] {}", severityName(f.severity), f.code, f.message);
        if (f.severity >= failOn_) {
          failing += fmt::format("    <failure type=\"{}\" message=\"{}\">{}</failure>\n",
                                 escapeMarkup(f.code), escapeMarkup(line), escapeMarkup(line));
        } else {
          other += line + "\n";
        }
      }
      ++tests;
      suiteFailures += !failing.empty();
      cases += fmt::format("  <testcase classname=\"{}\" name=\"{}\" time=\"{:.3f}\">\n{}",
                           escapeMarkup(file), escapeMarkup(name), seconds, failing);
      if (!other.empty()) cases += "    <system-out>" + escapeMarkup(other) + "</system-out>\n";
      cases += "  </testcase>\n";
    }
    failures += suiteFailures;
    suites += fmt::format(
        "<testsuite name=\"{}\" tests=\"{}\" failures=\"{}\" errors=\"0\" skipped=\"0\" "
        "time=\"{:.3f}\">\n{}</testsuite>\n",
        escapeMarkup(file), names.size(), suiteFailures, total, cases);
  }
  return fmt::format(
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<testsuites name=\"zvpush check\" tests=\"{}\" failures=\"{}\" errors=\"0\">\n{}"
      "</testsuites>\n",
      tests, failures, suites);
}

}  // namespace zvpush
