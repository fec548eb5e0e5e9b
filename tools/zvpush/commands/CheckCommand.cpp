// zvpush check: the sender's gate over many payloads, devices and styles. For each payload (a
// bare one, or the output of zvpush service; a folder means its *.json) it says what inspect says,
// then lays the content extension out for every device width and style as zvpush preview does and
// reads the findings from the laid-out tree: low contrast, cut text, blurry or oversized images;
// with --fetch also the media the phone would refuse. Prints them as text, JSON or JUnit XML,
// optionally writes an HTML contact sheet of every preview, and exits 1 when a finding reaches
// --fail-on.
//
// The batch runs in -j worker processes that each load the fonts and interface files once and then
// take the payloads one at a time (the content side is single-threaded, see check/WorkerPool.h).
// A payload that cannot be read, or whose worker dies on it, becomes an error finding; the others
// are still checked.
#include <unistd.h>

#include <algorithm>
#include <boost/json.hpp>
#include <filesystem>
#include <iostream>
#include <sstream>

#include "common/ArgParser.h"
#include "common/Command.h"
#include "common/JsonIO.h"
#ifdef ZVPUSH_CONTENT
#include "check/CheckReport.h"
#include "check/PayloadCheck.h"
#include "check/WorkerPool.h"
#include "common/ScratchFolder.h"
#else
#include "common/ContentProgram.h"
#endif

namespace zvpush {

namespace {

#ifdef ZVPUSH_CONTENT

namespace json = boost::json;
namespace fs = std::filesystem;

struct Options {
  std::vector<std::string> files;
  CheckSettings settings;
  std::string format = "text";
  std::optional<fs::path> report;
  Severity failOn = Severity::kError;
  int jobs = 1;
};

std::vector<std::string> split(const std::string& list) {
  std::vector<std::string> out;
  std::stringstream in(list);
  for (std::string item; std::getline(in, item, ',');) out.push_back(item);
  return out;
}

// The payload files: each operand, a folder giving its *.json; sorted by path so that shards are
// stable; the K-th of N shards takes every N-th file from the K-th on.
std::vector<std::string> payloadFiles(const std::vector<std::string>& operands, int shard,
                                      int shards) {
  std::vector<std::string> all;
  for (const auto& operand : operands) {
    std::error_code ec;
    if (!fs::is_directory(operand, ec)) {
      all.push_back(operand);
      continue;
    }
    for (const auto& entry : fs::directory_iterator(operand, ec)) {
      if (entry.path().extension() == ".json" && !entry.is_directory()) {
        all.push_back(entry.path().string());
      }
    }
  }
  std::sort(all.begin(), all.end());
  all.erase(std::unique(all.begin(), all.end()), all.end());
  std::vector<std::string> mine;
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (static_cast<int>(i % shards) == shard - 1) mine.push_back(all[i]);
  }
  return mine;
}

Options parse(const Args& given) {
  // -jN as make takes it, beside -j N.
  Args args;
  for (const auto& a : given) {
    if (a.size() > 2 && a.starts_with("-j") && std::isdigit(static_cast<unsigned char>(a[2]))) {
      args.push_back("-j");
      args.push_back(a.substr(2));
    } else {
      args.push_back(a);
    }
  }
  ArgParser p({"--devices", "--styles", "--platform-version", "--format", "--report", "--fail-on",
               "-j", "--shard"},
              {"--default-content-hidden", "--fetch"});
  p.parse(args);
  if (p.positional().empty()) throw UsageError("check needs at least one PAYLOAD or DIR");
  Options o;
  if (auto devices = p.value("--devices")) {
    o.settings.widths.clear();
    for (const auto& w : split(*devices)) {
      char* end = nullptr;
      double width = std::strtod(w.c_str(), &end);
      if (w.empty() || *end || !(width >= 200 && width <= 1024)) {
        throw UsageError("--devices needs widths from 200 to 1024 points, as 320,375");
      }
      // Each device once, in the order given.
      auto& widths = o.settings.widths;
      if (std::find(widths.begin(), widths.end(), width) == widths.end()) widths.push_back(width);
    }
  }
  if (auto styles = p.value("--styles")) {
    o.settings.styles.clear();
    for (const auto& s : split(*styles)) {
      if (s != "light" && s != "dark") throw UsageError("--styles takes light, dark or both");
      auto& chosen = o.settings.styles;
      if (std::find(chosen.begin(), chosen.end(), s) == chosen.end()) chosen.push_back(s);
    }
    if (o.settings.styles.empty()) throw UsageError("--styles takes light, dark or both");
  }
  o.settings.contentHidden = p.flag("--default-content-hidden");
  o.settings.fetch = p.flag("--fetch");
  o.settings.platformVersion = p.number("--platform-version").value_or(17.0);
  if (!(o.settings.platformVersion >= 10 && o.settings.platformVersion < 100)) {
    throw UsageError("--platform-version is from 10 to 99");
  }
  o.format = p.value("--format").value_or("text");
  if (o.format != "text" && o.format != "json" && o.format != "junit") {
    throw UsageError("--format is text, json or junit");
  }
  if (auto r = p.value("--report")) o.report = *r;
  auto failOn = severityNamed(p.value("--fail-on").value_or("error"));
  if (!failOn || *failOn == Severity::kInfo) throw UsageError("--fail-on is error or warning");
  o.failOn = *failOn;
  long cores = ::sysconf(_SC_NPROCESSORS_ONLN);
  double jobs = p.number("-j").value_or(cores > 0 ? static_cast<double>(cores) : 1);
  if (!(jobs >= 1 && jobs <= 64) || jobs != static_cast<int>(jobs)) {
    throw UsageError("-j needs a whole number from 1 to 64");
  }
  o.jobs = static_cast<int>(jobs);
  int shard = 1, shards = 1;
  if (auto s = p.value("--shard")) {
    char slash = 0;
    std::istringstream in(*s);
    if (!(in >> shard >> slash >> shards) || slash != '/' || !in.eof() || shards < 1 || shard < 1 ||
        shard > shards) {
      throw UsageError("--shard needs K/N with 1 <= K <= N");
    }
  }
  o.files = payloadFiles(p.positional(), shard, shards);
  if (o.files.empty() && shards == 1)
    throw UsageError("no payload found (a folder gives its *.json)");
  return o;
}

int check(Options o) {
  // The store card clicks would land in, the fetched media and the previews: all scratch. The
  // content side is made ready in each worker, not here: see PayloadCheck::run.
  ScratchFolder scratch("zvpush-check");
  o.settings.scratch = scratch.path;
  if (o.report) {
    o.settings.previews = scratch.path / "previews";
    fs::create_directories(*o.settings.previews);
  }

  std::vector<json::object> results(o.files.size());
  WorkerPool::run(
      o.files.size(), o.jobs,
      [&](std::size_t i) { return json::value(PayloadCheck::run(o.files[i], i, o.settings)); },
      [&](std::size_t i, json::value result) {
        if (auto* r = result.if_object(); r && r->contains("findings")) {
          results[i] = std::move(*r);
          return;
        }
        Finding f;
        f.file = o.files[i];
        f.platformVersion = o.settings.platformVersion;
        f.code = "check-failed";
        f.message =
            "the check of this payload failed: " + json::value_to<std::string>(result.at("error"));
        results[i] = json::object{{"file", o.files[i]},
                                  {"fetched", o.settings.fetch},
                                  {"findings", json::array{f.toJson()}},
                                  {"matrix", json::array()}};
      },
      [&](std::size_t i, const std::string& why) {
        Finding f;
        f.file = o.files[i];
        f.platformVersion = o.settings.platformVersion;
        f.code = "check-crashed";
        f.message = "the check stopped on this payload: its worker was " + why;
        results[i] = json::object{{"file", o.files[i]},
                                  {"fetched", o.settings.fetch},
                                  {"findings", json::array{f.toJson()}},
                                  {"matrix", json::array()}};
      });

  CheckReport report(std::move(results), o.failOn,
                     o.files.size() * o.settings.widths.size() * o.settings.styles.size());
  if (o.format == "json") {
    std::cout << pretty(report.document()) << "\n";
  } else if (o.format == "junit") {
    std::cout << report.junit();
  } else {
    std::cout << report.text();
  }
  if (o.report && !report.writeContactSheet(*o.report)) {
    std::cerr << "zvpush: cannot write " << (*o.report / "index.html").string() << "\n";
    return kFailure;
  }
  return report.failed() ? kFailure : kOk;
}

#endif

int run(const Args& args) {
#ifdef ZVPUSH_CONTENT
  return check(parse(args));
#else
  return runContentProgram("check", args);
#endif
}

}  // namespace

ZVPUSH_COMMAND(
    "check", "the sender's gate: findings over many payloads, devices and styles",
    "check PAYLOAD|DIR... [--devices 320,375,390,414,430] [--styles light,dark] "
    "[--default-content-hidden] [--platform-version V] [--fetch] [--format text|json|junit] "
    "[--report DIR] [--fail-on error|warning] [-j N] [--shard K/N]",
    run,
    "  PAYLOAD|DIR              payloads (bare, or the output of zvpush service); a folder\n"
    "                           gives its *.json\n"
    "  --devices W,...          screen widths in points (320,375,390,414,430); heights and\n"
    "                           scales are the phones' (568, 812, 844, 896, 932; 2x up to 375)\n"
    "  --styles S,...           light, dark or both (light,dark)\n"
    "  --default-content-hidden the host hides the system's text: the body view shows\n"
    "  --platform-version V     the phone's system version (17.0)\n"
    "  --fetch                  download the media as the service does and check them\n"
    "                           (unreachable, too large, of another type than declared)\n"
    "  --format F               text (default), json or junit\n"
    "  --report DIR             also write DIR/index.html: every preview with its findings\n"
    "  --fail-on S              exit 1 when a finding is at least error (default) or warning\n"
    "  -j N                     worker processes (the number of cores)\n"
    "  --shard K/N              check only the K-th of N slices of the sorted payloads\n"
    "Findings: payload-reason, inspect's warnings, low-contrast (WCAG 2.1: 4.5:1, 3:1 from\n"
    "24 points or 18.66 bold), truncated-text, upscaled-image, oversized-image,\n"
    "media-unreachable, media-too-large, media-type-mismatch; unreadable-payload,\n"
    "preview-failed, check-failed and check-crashed for a payload that could not be checked.\n"
    "Exit 0 when nothing reaches --fail-on, 1 when something does, 2 for a usage error.\n");

}  // namespace zvpush
