#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "platform/foundation/Value.h"
#include "support/TestSupport.h"

namespace {

struct CliRun {
  int status;
  std::string out;  // stdout and stderr together
};

CliRun inspect(const std::string& file) {
  std::string cmd = std::string(ZVPUSH_PATH) + " inspect '" + file + "' 2>&1";
  FILE* p = popen(cmd.c_str(), "r");
  std::string out;
  char buf[4096];
  for (size_t n; (n = fread(buf, 1, sizeof buf, p)) > 0;) out.append(buf, n);
  int status = pclose(p);
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, out};
}

TEST(InspectCommandTest, ExplainsExamplesAndMediaOfTheWrongKind) {
  std::string examples = std::string(ZV_SOURCE_DIR) + "/examples/";
  zv::Value v = zv::Value::parse(inspect(examples + "missing-title.json").out);
  EXPECT_TRUE(v.get("process").boolValue());
  EXPECT_TRUE(v.get("richPush").isNull());
  EXPECT_EQ(v.get("log"), zv::Value::parse(R"(["Mandatory params missing exception : %@"])"));
  EXPECT_EQ(v.get("media").array().size(), 1u);  // without rich push the top-level media counts

  v = zv::Value::parse(inspect(examples + "carousel.json").out);
  EXPECT_EQ(v.get("media").array().size(), 3u);
  EXPECT_EQ(v.get("richPush").get("expandedMode").get("templateType").integerValue(), 1);

  zvtest::TempDir dir;
  std::ofstream(dir.path() / "n.json") << R"({"zentrova":{"cid":"c","media-attachment":5}})";
  v = zv::Value::parse(inspect((dir.path() / "n.json").string()).out);
  EXPECT_TRUE(v.get("media").array().empty());
  EXPECT_EQ(v.get("log"),
            zv::Value::parse(R"(["Exception in creating attachment Rich notification: )"
                             R"(expected a string but found number"])"));
}

TEST(InspectCommandTest, InputThatIsNotAJsonObjectIsAUsageError) {
  zvtest::TempDir dir;
  for (std::string text : {"{\"a\":", "[1,2]", "\"\xFF\"", ""}) {
    std::ofstream(dir.path() / "bad.json") << text;
    CliRun r = inspect((dir.path() / "bad.json").string());
    EXPECT_EQ(r.status, 2) << text;
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 1) << r.out;
  }
  EXPECT_EQ(inspect((dir.path() / "missing.json").string()).status, 2);
}

}  // namespace
