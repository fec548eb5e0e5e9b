// zvpush store, run as a separate process, reads and writes the suite that the extensions read.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <fstream>

#include "support/TestSupport.h"
#include "zentrova/ZVExtensionDataManager.h"

namespace zv {
namespace {

zvtest::CommandOutcome zvpush(const std::string& args) {
  return zvtest::runZvpush("store " + args);
}

TEST(StoreCommandTest, WritesWhatTheExtensionsRead) {
  zvtest::TempDir dir;
  std::string store = "--store " + dir.path().string();
  std::string group = store + " --app-group group.cli ";
  struct Step {
    std::string args;
    int exit;
    std::string out;
  } steps[] = {
      {group + R"(set zov_params '{"sdk": "1", "n": 443}')", 0, ""},
      {group + "set zov_reports_port 8443", 0, ""},
      {group + "get zov_reports_port", 0, "8443\n"},
      {group + "remove zov_reports_port", 0, ""},
      {group + "get zov_reports_port", 0, "null\n"},
      {group + "dump", 0, "{\n  \"zov_params\": {\n    \"sdk\": \"1\",\n    \"n\": 443\n  }\n}\n"},
      {group + "set k '{bad'", 2, ""},
      {group + "frob", 2, ""},
      {store + " dump", 2, ""},
      {store + " --app-group .. dump", 2, ""},
      {"--store " + (dir.path() / "file" / "sub").string() + " --app-group g set k 1", 1, ""},
  };
  std::ofstream(dir.path() / "file") << "x";
  for (const Step& step : steps) {
    zvtest::CommandOutcome run = zvpush(step.args);
    EXPECT_EQ(run.exit, step.exit) << step.args;
    EXPECT_EQ(run.out, step.out) << step.args;
  }

  ZVExtensionDataManager manager({dir.path(), "com.zentrova.extension", nullptr});
  manager.setAppGroupID("group.cli");
  EXPECT_EQ(boost::json::value(*manager.getQueryParams()),
            (boost::json::object{{"sdk", "1"}, {"n", 443}}));
}

}  // namespace
}  // namespace zv
