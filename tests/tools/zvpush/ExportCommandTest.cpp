// zvpush export --simulator: the payload with "Simulator Target Bundle", on stdout or in a file,
// in the payload's own key order; and the inputs the simulator could not use, refused with one
// line.
#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <fstream>

#include "support/TestSupport.h"

namespace zvtest {
namespace {

namespace json = boost::json;

TEST(ExportCommandTest, AddsTheTargetBundleAndRefusesWhatTheSimulatorCannotUse) {
  TempDir dir;
  auto payload = dir.path() / "p.json";
  std::ofstream(payload)
      << R"({"aps": {"alert": "hi", "badge": 3}, "n": 1.50, "zentrova": {"cid": "c"}})";
  auto run = runZvpush("export " + payload.string() + " --simulator com.example.app --compact");
  ASSERT_EQ(run.exit, 0);
  EXPECT_EQ(run.out,
            "{\"aps\":{\"alert\":\"hi\",\"badge\":3},\"n\":1.5,\"zentrova\":{\"cid\":\"c\"},"
            "\"Simulator Target Bundle\":\"com.example.app\"}\n");
  auto file = dir.path() / "out.apns";
  ASSERT_EQ(
      runZvpush("export " + payload.string() + " --simulator=com.example.app -o " + file.string())
          .exit,
      0);
  EXPECT_EQ(json::parse(readFile(file)).at("Simulator Target Bundle"), "com.example.app");

  std::ofstream(dir.path() / "noaps.json") << R"({"zentrova": {}})";
  struct Case {
    std::string args, says;
  } refused[] = {
      {payload.string(), "export needs --simulator BUNDLE_ID"},
      {payload.string() + " --simulator 'com example'", "is not a bundle identifier"},
      {(dir.path() / "noaps.json").string() + " --simulator a.b", "no \"aps\" dictionary"},
      {payload.string() + " --simulator a.b -o /dev/full", "cannot write /dev/full"},
  };
  for (const auto& c : refused) {
    auto r = runZvpush("export " + c.args + " 2>&1");
    EXPECT_EQ(r.exit, 2) << c.args;
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 1) << r.out;
    EXPECT_NE(r.out.find(c.says), std::string::npos) << r.out;
  }
}

}  // namespace
}  // namespace zvtest
