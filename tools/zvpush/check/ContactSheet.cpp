// CheckReport's contact sheet: one HTML file, pictures inline, no scripts, no outside fonts.
#include <fmt/format.h>

#include <boost/json.hpp>
#include <fstream>

#include "check/CheckReport.h"
#include "common/ArgParser.h"
#include "common/DataUrl.h"
#include "common/JsonIO.h"

namespace zvpush {

namespace {

namespace json = boost::json;

constexpr char kStyle[] = R"(
body { font: 14px/1.4 system-ui, sans-serif; margin: 24px; background: #F8FAFC; color: #0F172A; }
h1 { font-size: 20px; margin: 0 0 4px; }
h2 { font-size: 16px; margin: 32px 0 8px; font-family: ui-monospace, monospace; }
.summary { color: #334155; margin: 0 0 16px; }
table { border-collapse: separate; border-spacing: 12px 8px; }
th { text-align: left; font-weight: 600; color: #334155; vertical-align: top; }
td { vertical-align: top; }
.cell { display: flex; gap: 10px; align-items: flex-start; }
.frame { padding: 8px; border-radius: 14px; }
.frame.light { background: #FFFFFF; box-shadow: 0 0 0 1px #CBD5E1; }
.frame.dark { background: #000000; }
img.preview { display: block; border-radius: 10px; }
.none { color: #64748B; font-style: italic; width: 160px; }
ul { margin: 0; padding-left: 18px; max-width: 300px; }
li { margin-bottom: 4px; }
.error { color: #B91C1C; } .warning { color: #92400E; } .info { color: #1E40AF; }
code { font-size: 12px; }
)";

std::string item(const Finding& f) {
  return fmt::format("<li class=\"{0}\"><code>{0}[{1}]</code> {2}</li>", severityName(f.severity),
                     escapeMarkup(f.code), escapeMarkup(f.message));
}

}  // namespace

bool CheckReport::writeContactSheet(const std::filesystem::path& dir) const {
  std::error_code ec;
  std::filesystem::create_directories(dir, ec);
  std::ofstream out(dir / "index.html", std::ios::binary);
  out << "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
         "<title>zvpush check</title><style>"
      << kStyle << "</style></head><body>\n<h1>zvpush check</h1>\n<p class=\"summary\">"
      << escapeMarkup(summaryLine()) << "</p>\n";
  for (const auto& p : payloads_) {
    const std::string file = json::value_to<std::string>(p.at("file"));
    out << "<section class=\"payload\"><h2>" << escapeMarkup(file) << "</h2>\n";
    std::string own;
    for (const auto& f : findings_) {
      if (f.file == file && !f.style) own += item(f);
    }
    if (!own.empty()) out << "<ul class=\"payload-findings\">" << own << "</ul>\n";
    // One row per device, the styles side by side.
    std::vector<std::string> styles;
    for (const auto& c : p.at("matrix").as_array()) {
      auto s = json::value_to<std::string>(c.at("style"));
      if (std::find(styles.begin(), styles.end(), s) == styles.end()) styles.push_back(s);
    }
    const auto& matrix = p.at("matrix").as_array();
    if (matrix.empty()) {
      out << "</section>\n";
      continue;
    }
    out << "<table><tr><th>device</th>";
    for (const auto& s : styles) out << "<th>" << escapeMarkup(s) << "</th>";
    out << "</tr>\n";
    for (std::size_t i = 0; i < matrix.size(); i += styles.size()) {
      const auto& device = matrix[i].at("device").as_object();
      double w = device.at("width").to_number<double>(),
             h = device.at("height").to_number<double>();
      out << fmt::format("<tr><th>{:g} &times; {:g}</th>", w, h);
      for (std::size_t k = i; k < i + styles.size() && k < matrix.size(); ++k) {
        const auto& cell = matrix[k].as_object();
        const auto style = json::value_to<std::string>(cell.at("style"));
        out << "<td><div class=\"cell\"><div class=\"frame " << escapeMarkup(style) << "\">";
        std::string png;
        if (cell.at("png").is_string()) {
          try {
            png = readInput(json::value_to<std::string>(cell.at("png")));
          } catch (const UsageError&) {
          }
        }
        if (!png.empty()) {
          const auto& size = cell.at("size").as_array();
          out << fmt::format(
                     "<img class=\"preview\" width=\"{:g}\" height=\"{:g}\" alt=\"{} {} "
                     "{:g}\" src=\"",
                     size[0].to_number<double>(), size[1].to_number<double>(), escapeMarkup(file),
                     escapeMarkup(style), w)
              << dataUrl("image/png", png) << "\">";
        } else {
          out << "<div class=\"none\">no preview</div>";
        }
        out << "</div>";
        std::string list;
        for (const auto& f : findings_) {
          if (f.file == file && f.style == style && f.width == w) list += item(f);
        }
        if (!list.empty()) out << "<ul>" << list << "</ul>";
        out << "</div></td>";
      }
      out << "</tr>\n";
    }
    out << "</table></section>\n";
  }
  out << "</body></html>\n";
  return static_cast<bool>(out);
}

}  // namespace zvpush
