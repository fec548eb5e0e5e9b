// zvpush store: reads and writes an app group's store as the host application does, for example to
// configure "zov_params" before running `zvpush service`.
#include <iostream>

#include "common/ArgParser.h"
#include "common/Command.h"
#include "common/JsonIO.h"
#include "platform/foundation/ExactJson.h"
#include "zentrova/Exception.h"
#include "zentrova/Platform.h"
#include "zentrova/UserDefaults.h"

namespace zvpush {

namespace {

constexpr char kStoreUsage[] =
    "store [--store DIR] --app-group ID (dump | get KEY | set KEY JSON | remove KEY)";

void expectArguments(const Args& positional, size_t count, const std::string& action) {
  if (positional.size() != count) {
    throw UsageError("'" + action + "' takes " + std::to_string(count - 1) + " argument" +
                     (count == 2 ? "" : "s"));
  }
}

int runStore(const Args& args) {
  ArgParser parser({"--store", "--app-group"}, {});
  parser.parse(args);
  auto group = parser.value("--app-group");
  if (!group) throw UsageError("--app-group is required");
  const Args& positional = parser.positional();
  if (positional.empty()) throw UsageError("an action is required: dump, get, set or remove");
  const std::string& action = positional[0];

  if (auto dir = parser.value("--store")) zv::Platform::shared().setStoreDirectory(*dir);
  auto suite = zv::UserDefaults::initWithSuiteName(*group, zv::Platform::shared().storeDirectory());
  if (!suite) throw UsageError("'" + *group + "' cannot name an app group store");

  auto unavailable = [&] {
    std::cerr << "zvpush: the store of " << *group << " in "
              << zv::Platform::shared().storeDirectory().string() << " cannot be written\n";
    return kFailure;
  };

  if (action == "dump") {
    expectArguments(positional, 1, action);
    std::cout << pretty(suite->dictionaryRepresentation()) << "\n";
  } else if (action == "get") {
    expectArguments(positional, 2, action);
    zv::Value v = suite->objectForKey(positional[1]);
    std::cout << (v.isNil() ? std::string("null") : pretty(v.json())) << "\n";
  } else if (action == "set") {
    expectArguments(positional, 3, action);
    zv::Value v;
    try {
      v = zv::Value(zv::ExactJson::parse(positional[2]));
    } catch (const zv::Exception& e) {
      throw UsageError("the value is not JSON: " + e.reason());
    }
    if (!suite->setObject(v, positional[1])) return unavailable();
  } else if (action == "remove") {
    expectArguments(positional, 2, action);
    if (!suite->removeObject(positional[1])) return unavailable();
  } else {
    throw UsageError("unknown action '" + action + "' (dump, get, set or remove)");
  }
  return kOk;
}

}  // namespace

ZVPUSH_COMMAND("store", "read and write an app group's store as the host application does",
               kStoreUsage, runStore,
               "  --store DIR      the folder of the stores ($XDG_DATA_HOME/zentrova)\n"
               "  --app-group ID   the app group (required)\n"
               "  dump             the whole suite as one JSON object\n"
               "  get KEY          one value as JSON, or null\n"
               "  set KEY JSON     store a value\n"
               "  remove KEY       remove a value\n");

}  // namespace zvpush
