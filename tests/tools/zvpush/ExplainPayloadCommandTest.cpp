#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>
#include <fstream>

#include "platform/foundation/Value.h"
#include "support/TestSupport.h"

namespace {

// Runs "zvpush inspect" on a file with the given contents; the exit status and the output
// (stdout and stderr together).
std::pair<int, std::string> inspect(const std::string& contents) {
  zvtest::TempDir dir;
  std::ofstream(dir.path() / "p.json") << contents;
  auto run = zvtest::runZvpush("inspect " + (dir.path() / "p.json").string() + " 2>&1");
  return {run.exit, run.out};
}

TEST(ExplainPayloadCommandTest, ExplainsWhyThereIsNoRichContentOrMedia) {
  auto [status, out] = inspect(zvtest::readFile(ZV_SOURCE_DIR "/examples/missing-title.json"));
  zv::Value v = zv::Value::parse(out);
  EXPECT_TRUE(v.get("richPush").isNull());
  EXPECT_EQ(v.get("log"), zv::Value::parse(R"(["Mandatory params missing exception : %@"])"));
  EXPECT_EQ(v.get("media").array().size(), 1u);  // without rich push the top-level media counts

  v = zv::Value::parse(inspect(R"({"zentrova":{"cid":"c","media-attachment":5}})").second);
  EXPECT_TRUE(v.get("media").array().empty());
  EXPECT_EQ(v.get("log"),
            zv::Value::parse(R"(["Exception in creating attachment Rich )"
                             R"(notification: expected a string but found number"])"));
}

TEST(ExplainPayloadCommandTest, InputThatIsNotAJsonObjectIsAUsageError) {
  for (std::string text : {"{\"a\":", "[1,2]", "\"\xFF\"", ""}) {
    auto [status, out] = inspect(text);
    EXPECT_EQ(status, 2) << text;
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1) << out;
  }
}

}  // namespace
