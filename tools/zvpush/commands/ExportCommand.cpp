// zvpush export PAYLOAD.json --simulator BUNDLE_ID: the payload as the phone simulator's push file
// (the one dropped on a simulator or given to its push command) expects it: the payload's own keys
// with "Simulator Target Bundle" naming the app that receives it. Printed on stdout, or written
// to -o FILE.
#include <boost/json/object.hpp>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <regex>

#include "common/ArgParser.h"
#include "common/Command.h"
#include "common/JsonIO.h"

namespace zvpush {

namespace {

constexpr char kTargetBundleKey[] = "Simulator Target Bundle";

int runExport(const Args& args) {
  ArgParser p({"--simulator", "-o"}, {});
  p.parse(args);
  if (p.positional().size() != 1) throw UsageError("expected one PAYLOAD.json");
  auto bundle = p.value("--simulator");
  if (!bundle) throw UsageError("export needs --simulator BUNDLE_ID");
  // A bundle identifier: letters, digits, hyphens and dots.
  static const std::regex identifier("[A-Za-z0-9-]+(\\.[A-Za-z0-9-]+)*");
  if (!std::regex_match(*bundle, identifier)) {
    throw UsageError("\"" + *bundle + "\" is not a bundle identifier (such as com.example.app)");
  }
  zv::Value payload = readJsonObject(p.positional()[0]);
  if (!payload.get("aps").isObject()) {
    throw InputError(p.positional()[0] + " has no \"aps\" dictionary, which the simulator needs");
  }
  boost::json::object out = payload.mutableObjectCopy();
  out[kTargetBundleKey] = *bundle;
  std::string text = pretty(out) + "\n";
  if (auto path = p.value("-o")) {
    std::ofstream file(*path, std::ios::binary | std::ios::trunc);
    if (!file || !(file << text) || !file.flush()) {
      throw InputError("cannot write " + *path + ": " + std::strerror(errno ? errno : EIO));
    }
    return kOk;
  }
  std::cout << text;
  return kOk;
}

}  // namespace

ZVPUSH_COMMAND("export", "the payload as the phone simulator's push file",
               "export PAYLOAD.json --simulator BUNDLE_ID [-o FILE]", runExport,
               "  PAYLOAD.json            the remote-notification payload (\"-\" reads stdin)\n"
               "  --simulator BUNDLE_ID   the app that receives it (required): added as\n"
               "                          \"Simulator Target Bundle\"\n"
               "  -o FILE                 write the file here (default: stdout)\n");

}  // namespace zvpush
